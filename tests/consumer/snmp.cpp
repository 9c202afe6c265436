// The optional SNMP component, found as a component of the same package.
#include <snmp/snmpclient.h>
#include <snmp/snmptrapreceiver.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    SnmpTarget target;
    target.host = QHostAddress::LocalHost;
    SnmpClient client(target);
    if (client.get({QStringLiteral("not an oid")}) != 0 || client.errorString().isEmpty())
        return 1;
    SnmpTrapReceiver receiver;
    return receiver.listen(QHostAddress::LocalHost, 0) && receiver.serverPort() != 0 ? 0 : 2;
}
