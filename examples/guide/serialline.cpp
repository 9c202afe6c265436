// Two units on one serial line, one of them switched off: the line transport
// answers the first, gives the second an error after the timeout, and the
// scan goes on. A loopback device stands in for the serial port. Exits 0 when
// both polls ended as expected, 1 otherwise.
#include "linetransport.h"
#include "tinymux.h"

#include <device/map.h>

#include <QApplication>
#include <QIODevice>
#include <QTimer>

namespace {

// The line with the units behind it: unit "1" answers a status request with
// its four-byte image a little later, unit "2" never answers.
class LoopbackLine : public QIODevice
{
public:
    LoopbackLine() { open(QIODevice::ReadWrite); }
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return pending.size() + QIODevice::bytesAvailable(); }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        const QByteArray chunk = pending.left(int(size));
        pending.remove(0, chunk.size());
        memcpy(data, chunk.constData(), size_t(chunk.size()));
        return chunk.size();
    }
    qint64 writeData(const char *data, qint64 size) override
    {
        if (QByteArray(data, int(size)) == "S1") {
            QTimer::singleShot(20, this, [this] {
                pending += QByteArray::fromHex("00001700"); // no alarm, 23 degrees, in two pieces
                emit readyRead();
            });
        }
        return size;
    }

private:
    QByteArray pending;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    Map map;
    auto *answering = new TinyMux(QStringLiteral("1"));
    auto *silent = new TinyMux(QStringLiteral("2"));
    map.addItem(QModelIndex(), answering, {});
    map.addItem(QModelIndex(), silent, {});

    //! [line-use]
    // With Qt SerialPort: QSerialPort port(QStringLiteral("ttyUSB0")); port.setBaudRate(9600);
    // port.open(QIODevice::ReadWrite); and pass &port. Status replies are four bytes.
    LoopbackLine line;
    LineTransport transport(
        &map, &line, [](const QByteArray &reply) { return reply.size() >= 4; }, 300);
    //! [line-use]

    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        if (!map.scanInproccess() && !answering->requestInProgress() && !silent->requestInProgress())
            app.exit(answering->temperature() == 23 ? 0 : 1);
    });
    map.startScan();
    watch.start(50);
    QTimer::singleShot(10000, &app, [&app] { app.exit(1); });
    return app.exec();
}
