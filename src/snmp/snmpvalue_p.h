#ifndef SNMPVALUE_P_H
#define SNMPVALUE_P_H

// Not installed: the conversion between net-snmp's variable bindings and
// variable sets, exported only so that the tests and fuzz targets reach it.

#include "muxcore_snmp_export.h"
#include "snmp/snmpclient.h"

#include <QByteArray>
#include <QHostAddress>
#include <QMetaType>
#include <QString>
#include <QVariant>
#include <QVector>

#include <net-snmp/library/large_fd_set.h>
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

class MUXCORE_SNMP_EXPORT SnmpValue
{
public:
    using Oid = QVector<oid>;

    // Dotted decimal with or without the leading dot; false for anything
    // else, for arcs over 32 bits and for more than MAX_OID_LEN arcs.
    static bool parseOid(const QString &text, Oid *result);
    static QString formatOid(const oid *arcs, size_t count, SnmpClient::OidForm form);

    // False for the exceptions (noSuchObject, noSuchInstance, endOfMibView)
    // and unknown types, which a variable set leaves out.
    static bool toVariant(const netsnmp_variable_list *variable, SnmpClient::OidForm form, QVariant *value);

    // The wire type a value takes when its OID's type is not known; 0 when
    // it has none.
    static u_char typeFor(const QVariant &value);
    // Appends the variable to the PDU as the given wire type, 0 meaning
    // typeFor(value). False, with nothing appended, when the value does not
    // fit the type.
    static bool append(netsnmp_pdu *pdu, const Oid &name, const QVariant &value, u_char type);

    // Readies net-snmp once per process (a host that set it up itself
    // keeps its set-up): no configuration files, no state written to disk.
    static void initLibrary();
    // Hands net-snmp what arrived on a single session's socket; descriptors
    // above FD_SETSIZE work too.
    static void readSession(void *session, int socket);
    // The name the SNMP standards give an error status, such as "wrongType".
    static QString statusName(long status);
    // The peer text net-snmp's transports take for the address and port.
    static QByteArray transportSpec(const QHostAddress &address, quint16 port);

    // True for the types a set must remember per OID: INTEGER and OCTET
    // STRING are what typeFor() picks for the values they arrive as.
    static bool needsRemembering(u_char type);
};

#endif // SNMPVALUE_P_H
