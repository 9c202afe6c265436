#include "linetransport.h"

#include <device/map.h>

#include <QIODevice>

LineTransport::LineTransport(
    Map *map, QIODevice *line, FrameComplete complete, int timeoutMs, QObject *parent)
    : QObject(parent)
    , map(map)
    , line(line)
    , complete(std::move(complete))
{
    timeout.setSingleShot(true);
    timeout.setInterval(timeoutMs);
    connect(map, &Map::request, this, &LineTransport::enqueue);
    connect(line, &QIODevice::readyRead, this, &LineTransport::readReply);
    connect(&timeout, &QTimer::timeout, this, &LineTransport::giveUp);
}

//! [line-flow]
void LineTransport::enqueue(int key, const QByteArray &request)
{
    queue.append({static_cast<unsigned short>(key), request});
    if (current < 0)
        sendNext();
}

void LineTransport::sendNext()
{
    reply.clear();
    current = -1;
    if (queue.isEmpty())
        return;
    const auto next = queue.takeFirst();
    current = next.first;
    line->write(next.second);
    timeout.start();
}

void LineTransport::readReply()
{
    reply += line->readAll();
    if (current < 0 || !complete(reply))
        return; // noise between requests, or more bytes to come
    timeout.stop();
    map->answer(static_cast<unsigned short>(current), reply);
    sendNext();
}

void LineTransport::giveUp()
{
    map->replyError(static_cast<unsigned short>(current));
    sendNext();
}
//! [line-flow]
