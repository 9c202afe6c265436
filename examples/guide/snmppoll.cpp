// Polling a unit over SNMP with MuxCore::Snmp: the host's transport turns a
// unit's request into a GET and the variable set it brings back into the
// unit's answer. No agent listens on the port used here, so the poll fails
// the way a switched-off unit's does; exits 0 when that failure reached the
// unit and the scan went on, 1 otherwise.
#include "tinymux.h"

#include <device/map.h>
#include <snmp/snmpclient.h>

#include <QApplication>
#include <QDataStream>
#include <QTimer>
#include <QUdpSocket>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);

    quint16 silentPort = 0; // a free local port nobody answers on
    {
        QUdpSocket probe;
        probe.bind(QHostAddress(QHostAddress::LocalHost));
        silentPort = probe.localPort();
    }

    Map map;
    auto *unit = new TinyMux(QStringLiteral("127.0.0.1"));
    unit->setCurrentProtocolType(Core::IPT_SNMP_V1);
    map.addItem(QModelIndex(), unit, {});

    //! [snmp-transport]
    SnmpTarget target;
    target.host = QHostAddress(unit->getParameter(DeviceDescriptor::DP_ADDRESS).toString());
    target.port = silentPort; // 161 for a real agent
    target.version = SnmpTarget::V1;
    target.community = QStringLiteral("public");
    target.timeout = 300;
    target.retries = 0;
    SnmpClient client(target); // one client per unit; a host keeps them by key

    QHash<int, unsigned short> pending; // request id to unit key
    QObject::connect(&map, &Map::request, &client, [&](int key, QByteArray request) {
        QStringList oids;
        QDataStream in(request);
        in >> oids;
        const int id = client.get(oids);
        if (id == 0)
            map.replyError(key); // nothing was sent: client.errorString() says why
        else
            pending.insert(id, key);
    });
    QObject::connect(
        &client, &SnmpClient::finished, &map, [&](int id, const QHash<QString, QVariant> &variables) {
            QByteArray answer;
            QDataStream out(&answer, QIODevice::WriteOnly);
            out << variables;
            map.answer(pending.take(id), answer);
        });
    QObject::connect(&client, &SnmpClient::failed, &map, [&](int id) { map.replyError(pending.take(id)); });
    //! [snmp-transport]

    bool failed = false;
    QObject::connect(&client, &SnmpClient::failed, &app, [&failed] { failed = true; });
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &app, [&] {
        if (failed && !map.scanInproccess() && !unit->requestInProgress())
            app.exit(0);
    });
    watch.start(50);
    QTimer::singleShot(10000, &app, [&app] { app.exit(1); });
    map.startScan();
    return app.exec();
}
