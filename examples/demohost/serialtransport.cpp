#include "serialtransport.h"

#include <unitlayout.h>

#include <device/map.h>

#include <QSerialPort>
#include <QTimer>

SerialTransport::SerialTransport(Map *map, int replyTimeoutMs, QObject *parent)
    : QObject(parent)
    , map(map)
    , replyTimeoutMs(replyTimeoutMs)
{
    connect(map, &Map::request, this, &SerialTransport::onRequest);
}

SerialTransport::~SerialTransport() = default;

bool SerialTransport::addUnit(unsigned short key, const QString &path)
{
    Line line;
    line.port = new QSerialPort(path, this);
    line.port->setBaudRate(QSerialPort::Baud115200);
    line.timeout = new QTimer(this);
    line.timeout->setSingleShot(true);
    connect(line.timeout, &QTimer::timeout, this, [this, key] { fail(key); });
    connect(line.port, &QSerialPort::readyRead, this, [this, key] { onReadyRead(key); });
    lines.insert(key, line);
    setLineOpen(key, true);
    return line.port->isOpen();
}

void SerialTransport::setLineOpen(unsigned short key, bool open)
{
    auto it = lines.find(key);
    if (it == lines.end() || it->port->isOpen() == open)
        return;
    if (!open) {
        it->port->close();
        return;
    }
    // Bytes left from before belong to nobody.
    if (it->port->open(QIODevice::ReadWrite))
        it->port->clear();
}

void SerialTransport::onRequest(int key, const QByteArray &request)
{
    const auto unitKey = static_cast<unsigned short>(key);
    auto it = lines.find(unitKey);
    if (it == lines.end())
        return; // a unit of another transport
    it->reply.clear();
    it->waiting = true;
    it->timeout->start(replyTimeoutMs);
    if (!it->port->isOpen() || it->port->write(request) != request.size())
        QTimer::singleShot(0, this, [this, unitKey] { fail(unitKey); });
}

void SerialTransport::onReadyRead(unsigned short key)
{
    auto it = lines.find(key);
    if (it == lines.end())
        return;
    const QByteArray bytes = it->port->readAll();
    if (!it->waiting)
        return; // late bytes of an answer given up on
    it->reply.append(bytes);
    const int length = UnitLayout::answerLength(it->reply);
    if (length == 0 || it->reply.size() < length)
        return;
    const QByteArray answer = it->reply.left(length);
    it->reply.clear();
    it->waiting = false;
    it->timeout->stop();
    if (map)
        map->answer(key, answer);
}

void SerialTransport::fail(unsigned short key)
{
    auto it = lines.find(key);
    if (it == lines.end() || !it->waiting)
        return;
    it->waiting = false;
    it->timeout->stop();
    it->reply.clear();
    ++errors;
    if (map)
        map->replyError(key);
}
