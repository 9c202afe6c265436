#ifndef SNMPTRAPRECEIVER_H
#define SNMPTRAPRECEIVER_H

#include "muxcore_snmp_export.h"
#include "snmp/snmpclient.h"
#include "snmp/snmptarget.h"

#include <QHash>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class SnmpTrapReceiverPrivate;

/**
 * Receives SNMP notifications on a UDP port, driven by the Qt event loop.
 *
 * Takes version 1 traps, version 2c traps and informs (informs are
 * acknowledged), and version 3 traps from users made known with addUser(). Each notification becomes one
 * trapReceived() with the sender's address and its variables as a variable set, with values mapped as
 * SnmpClient describes and OIDs in oidForm(), ready for TrapVisualUnit.
 *
 * A version 1 trap is turned into the version 2 form: sysUpTime.0
 * (1.3.6.1.2.1.1.3.0, its time stamp as `uint`), snmpTrapOID.0
 * (1.3.6.1.6.3.1.1.4.1.0; for generic traps 0 to 5 the OID
 * 1.3.6.1.6.3.1.1.5.(generic + 1), for enterprise-specific ones the
 * enterprise followed by .0 and the specific number), snmpTrapAddress.0
 * (1.3.6.1.6.3.18.1.3.0, the agent address as dotted text),
 * snmpTrapEnterprise.0 (1.3.6.1.6.3.1.1.4.3.0), then its own variables.
 *
 * Notifications with a community not in communities(), unknown users, bad
 * keys and malformed datagrams are dropped without a signal. Cost: one UDP
 * socket and one socket notifier while listening.
 */
class MUXCORE_SNMP_EXPORT SnmpTrapReceiver : public QObject
{
    Q_OBJECT
public:
    /** A receiver that is not yet listening. */
    explicit SnmpTrapReceiver(QObject *parent = nullptr);
    /** Stops listening. */
    ~SnmpTrapReceiver() override;

    /**
     * Starts listening on the address and UDP port (162 is the standard
     * port and needs privileges; 0 picks a free one, see serverPort()).
     * Listening again first closes the earlier socket. Returns false with
     * errorString() set when the port cannot be bound (in use, no rights).
     */
    bool listen(const QHostAddress &address = QHostAddress::LocalHost, quint16 port = 162);
    /** Stops listening; no signal follows. */
    void close();
    /** True between a successful listen() and close(). */
    bool isListening() const;
    /** The bound UDP port while listening, else 0. */
    quint16 serverPort() const;
    /** Why the last listen() or addUser() failed. */
    QString errorString() const;

    /**
     * Makes a version 3 user known: its name, the sending engine's id in
     * hexadecimal (as given to net-snmp's tools, "0x" optional) and its
     * protocols and passphrases (at least 8 characters each). Returns false
     * with errorString() set when the values are refused. Traps of users
     * not added are dropped.
     */
    bool addUser(const QString &engineId, const QString &user, SnmpTarget::AuthProtocol authProtocol,
        const QString &authPassphrase, SnmpTarget::PrivProtocol privProtocol = SnmpTarget::NoPriv,
        const QString &privPassphrase = QString());

    /** The communities accepted for version 1 and 2c; empty (the default) accepts any. */
    QStringList communities() const;
    /** Sets communities(). */
    void setCommunities(const QStringList &communities);

    /** The form of OIDs in trapReceived(); SnmpClient::LeadingDot by default. */
    SnmpClient::OidForm oidForm() const;
    /** Chooses the form of OIDs of later traps. */
    void setOidForm(SnmpClient::OidForm form);

signals:
    /** A notification arrived from source (the datagram's sender) with its variables. */
    void trapReceived(const QHostAddress &source, const QHash<QString, QVariant> &variables);

private:
    friend class SnmpTrapReceiverPrivate;
    std::unique_ptr<SnmpTrapReceiverPrivate> d;
};

#endif // SNMPTRAPRECEIVER_H
