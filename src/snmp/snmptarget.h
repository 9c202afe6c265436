#ifndef SNMPTARGET_H
#define SNMPTARGET_H

#include "muxcore_snmp_export.h"

#include <QHostAddress>
#include <QMetaType>
#include <QString>

/**
 * The address and credentials of one SNMP agent, as a plain value.
 *
 * The host is a numeric address on purpose: resolving a name would block
 * the event loop. Version 1 and 2c use the community; version 3 uses the
 * user with User-based Security (authentication and privacy chosen by the
 * two protocols; privacy needs authentication). A target is checked only
 * when a client sends with it: a target that cannot be used makes the
 * operation return 0 with SnmpClient::errorString() set.
 */
struct MUXCORE_SNMP_EXPORT SnmpTarget
{
    /** The SNMP protocol version. */
    enum Version {
        V1, ///< SNMPv1: community, GETNEXT walks, error status noSuchName for missing objects.
        V2c, ///< SNMPv2c: community, GETBULK walks, exceptions for missing objects.
        V3 ///< SNMPv3 with User-based Security; the agent's engine is discovered on first use.
    };

    /** The authentication protocol of a version 3 user. */
    enum AuthProtocol {
        NoAuth, ///< No authentication (security level noAuthNoPriv).
        MD5, ///< HMAC-MD5-96.
        SHA ///< HMAC-SHA-96 (SHA-1).
    };

    /** The privacy (encryption) protocol of a version 3 user. */
    enum PrivProtocol {
        NoPriv, ///< No encryption.
        DES, ///< CBC-DES.
        AES ///< CFB128-AES-128.
    };

    /** The agent's address; a null address makes every operation fail to send. */
    QHostAddress host;
    /** The agent's UDP port, 1 to 65535. */
    quint16 port = 161;
    /** The protocol version. */
    Version version = V2c;
    /** The community of version 1 and 2c. */
    QString community = QStringLiteral("public");
    /** The security name (user) of version 3. */
    QString user;
    /** The authentication protocol of version 3. */
    AuthProtocol authProtocol = NoAuth;
    /** The authentication passphrase of version 3, at least 8 characters. */
    QString authPassphrase;
    /** The privacy protocol of version 3; needs an authentication protocol. */
    PrivProtocol privProtocol = NoPriv;
    /** The privacy passphrase of version 3, at least 8 characters. */
    QString privPassphrase;
    /** The time in milliseconds to wait for each answer before a retry, 1 or more. */
    int timeout = 1000;
    /** How often a request is sent again when no answer came, 0 or more. */
    int retries = 1;
};

Q_DECLARE_METATYPE(SnmpTarget)

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) && !defined(MUXCORE_SNMP_NO_QHOSTADDRESS_METATYPE)
/**
 * Qt 5 does not declare QHostAddress a meta-type, yet trap signals carry
 * one through queued connections and QVariant. A host that declares it
 * itself defines MUXCORE_SNMP_NO_QHOSTADDRESS_METATYPE before including.
 */
Q_DECLARE_METATYPE(QHostAddress)
#endif

#endif // SNMPTARGET_H
