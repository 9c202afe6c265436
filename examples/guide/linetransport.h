#ifndef LINETRANSPORT_H
#define LINETRANSPORT_H

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QTimer>

#include <functional>

class Map;
class QIODevice;

// Carries the map's requests over one serial line (a QSerialPort, or any
// QIODevice): one request at a time, since every unit on the bus hears it;
// a reply is complete when the model's framing says so, and a unit that
// stays silent gets an error after the timeout, so the scan goes on.
//! [line-class]
class LineTransport : public QObject
{
    Q_OBJECT
public:
    using FrameComplete = std::function<bool(const QByteArray &reply)>;

    LineTransport(
        Map *map, QIODevice *line, FrameComplete complete, int timeoutMs, QObject *parent = nullptr);

private:
    void enqueue(int key, const QByteArray &request);
    void sendNext();
    void readReply();
    void giveUp();

    Map *map;
    QIODevice *line;
    FrameComplete complete;
    QTimer timeout;
    QList<QPair<unsigned short, QByteArray>> queue;
    int current = -1; // key of the request on the line, -1 when idle
    QByteArray reply;
};
//! [line-class]

#endif // LINETRANSPORT_H
