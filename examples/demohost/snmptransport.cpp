#include "snmptransport.h"

#include <unitlayout.h>

#include <device/map.h>
#include <snmp/snmpclient.h>
#include <snmp/snmptrapreceiver.h>

#include <QDataStream>
#include <QIODevice>
#include <QTimer>

using namespace UnitLayout;

SnmpTransport::SnmpTransport(Map *map, QObject *parent)
    : QObject(parent)
    , map(map)
    , receiver(new SnmpTrapReceiver(this))
{
    connect(map, &Map::request, this, &SnmpTransport::onRequest);
    receiver->setOidForm(SnmpClient::NoLeadingDot);
    connect(receiver, &SnmpTrapReceiver::trapReceived, this, &SnmpTransport::onTrap);
}

SnmpTransport::~SnmpTransport() = default;

void SnmpTransport::addUnit(unsigned short key, const SnmpTarget &target)
{
    auto *client = new SnmpClient(target, this);
    // The form the demo's items are written in.
    client->setOidForm(SnmpClient::NoLeadingDot);
    clients.insert(key, client);
    targets.insert(key, target);
    auto answer = [this, key](int id, const QByteArray &bytes) {
        if (pending.value(key) != id)
            return;
        pending.remove(key);
        if (!map)
            return;
        if (bytes.isEmpty()) {
            ++errors;
            map->replyError(key);
        } else {
            map->answer(key, bytes);
        }
    };
    connect(client, &SnmpClient::finished, this, [answer](int id, const QHash<QString, QVariant> &variables) {
        QByteArray bytes;
        QDataStream out(&bytes, QIODevice::WriteOnly);
        out << quint8(resultDone) << variables;
        answer(id, bytes);
    });
    connect(client, &SnmpClient::failed, this, [answer](int id) { answer(id, QByteArray()); });
}

quint16 SnmpTransport::listenForTraps()
{
    return receiver->listen(QHostAddress::LocalHost, 0) ? receiver->serverPort() : 0;
}

void SnmpTransport::onRequest(int key, const QByteArray &request)
{
    const auto unitKey = static_cast<unsigned short>(key);
    SnmpClient *client = clients.value(unitKey);
    if (!client)
        return; // a unit of another transport
    QDataStream in(request);
    quint8 operation = 0;
    in >> operation;
    int id = 0;
    if (operation == SnmpGet) {
        QString subtree;
        in >> subtree;
        id = client->walk(subtree);
    } else if (operation == SnmpSet) {
        QHash<QString, QVariant> variables;
        in >> variables;
        id = client->set(variables);
    }
    if (id == 0) {
        // Answered from the loop, as a reply would be, not inside the request.
        ++errors;
        QTimer::singleShot(0, this, [this, unitKey] {
            if (map)
                map->replyError(unitKey);
        });
        return;
    }
    pending.insert(unitKey, id);
}

void SnmpTransport::onTrap(const QHostAddress &source, const QHash<QString, QVariant> &variables)
{
    const QVariant port = variables.value(oidEndpointPort());
    for (auto it = targets.cbegin(); it != targets.cend(); ++it) {
        if (it->host.isEqual(source) && (!port.isValid() || port.toInt() == it->port)) {
            emit trap(it.key(), variables.value(oidAlarmLevel()).toInt(), variables);
            return;
        }
    }
}
