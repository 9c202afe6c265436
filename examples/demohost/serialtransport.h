#ifndef SERIALTRANSPORT_H
#define SERIALTRANSPORT_H

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>

class Map;
class QSerialPort;
class QTimer;

// The host's transport for units on serial lines: one port per unit. A
// request goes out as it stands; the answer is gathered until its frame is
// complete (its length follows from the command and result bytes) and handed
// to Map::answer, or, when the reply time-out passes first, Map::replyError.
class SerialTransport : public QObject
{
    Q_OBJECT
public:
    explicit SerialTransport(Map *map, int replyTimeoutMs = 1000, QObject *parent = nullptr);
    ~SerialTransport() override;

    // The unit under the map's key is on this line (a device path). The line
    // opens at once; false when it cannot.
    bool addUnit(unsigned short key, const QString &path);
    bool hasUnit(unsigned short key) const { return lines.contains(key); }
    // A closed line answers nothing: every request to it fails.
    void setLineOpen(unsigned short key, bool open);
    int errorCount() const { return errors; }

private:
    struct Line
    {
        QSerialPort *port = nullptr;
        QTimer *timeout = nullptr;
        QByteArray reply;
        bool waiting = false;
    };
    void onRequest(int key, const QByteArray &request);
    void onReadyRead(unsigned short key);
    void fail(unsigned short key);

    QPointer<Map> map;
    int replyTimeoutMs;
    QHash<unsigned short, Line> lines;
    int errors = 0;
};

#endif // SERIALTRANSPORT_H
