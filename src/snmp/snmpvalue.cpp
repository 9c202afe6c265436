#include "snmp/snmpvalue_p.h"

#include <QHostAddress>

#include <limits>

bool SnmpValue::parseOid(const QString &text, Oid *result)
{
    result->clear();
    int at = text.startsWith(QLatin1Char('.')) ? 1 : 0;
    if (at >= text.size())
        return false;
    while (at <= text.size()) {
        quint64 arc = 0;
        int digits = 0;
        for (; at < text.size() && text.at(at) != QLatin1Char('.'); ++at, ++digits) {
            const ushort c = text.at(at).unicode();
            if (c < '0' || c > '9')
                return false;
            arc = arc * 10 + (c - '0');
            if (arc > std::numeric_limits<quint32>::max())
                return false;
        }
        if (digits == 0 || result->size() >= MAX_OID_LEN)
            return false;
        result->append(oid(arc));
        ++at; // past the dot, or past the end
    }
    return true;
}

QString SnmpValue::formatOid(const oid *arcs, size_t count, SnmpClient::OidForm form)
{
    QString text;
    text.reserve(int(count) * 4);
    for (size_t i = 0; i < count; ++i) {
        if (i > 0 || form == SnmpClient::LeadingDot)
            text += QLatin1Char('.');
        text += QString::number(arcs[i]);
    }
    return text;
}

bool SnmpValue::toVariant(const netsnmp_variable_list *variable, SnmpClient::OidForm form, QVariant *value)
{
    const auto bytes = [variable] {
        return variable->val.string ? QString::fromLatin1(
                   reinterpret_cast<const char *>(variable->val.string), int(variable->val_len))
                                    : QString();
    };
    switch (variable->type) {
    case ASN_INTEGER:
        *value = variable->val.integer ? int(qint32(*variable->val.integer)) : 0;
        return true;
    case ASN_COUNTER:
    case ASN_GAUGE:
    case ASN_TIMETICKS:
    case ASN_UINTEGER:
        *value = variable->val.integer ? uint(quint32(*variable->val.integer)) : 0u;
        return true;
    case ASN_COUNTER64:
        *value = variable->val.counter64 ? qulonglong(quint64(quint32(variable->val.counter64->high)) << 32
                     | quint32(variable->val.counter64->low))
                                         : qulonglong(0);
        return true;
    case ASN_OCTET_STR:
    case ASN_OPAQUE:
    case ASN_BIT_STR:
        *value = bytes();
        return true;
    case ASN_IPADDRESS:
        if (variable->val.string && variable->val_len == 4) {
            const u_char *b = variable->val.string;
            *value = QStringLiteral("%1.%2.%3.%4").arg(b[0]).arg(b[1]).arg(b[2]).arg(b[3]);
        } else {
            *value = bytes();
        }
        return true;
    case ASN_OBJECT_ID:
        *value = variable->val.objid ? formatOid(variable->val.objid, variable->val_len / sizeof(oid), form)
                                     : QString();
        return true;
    case ASN_NULL:
        *value = QVariant();
        return true;
    default: // the exceptions, and types no unit uses
        return false;
    }
}

u_char SnmpValue::typeFor(const QVariant &value)
{
    switch (int(value.userType())) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::UChar:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float: {
        bool ok = false;
        const qlonglong number = value.toLongLong(&ok);
        if (ok && number >= std::numeric_limits<qint32>::min()
            && number <= std::numeric_limits<qint32>::max())
            return ASN_INTEGER;
        const qulonglong positive = value.toULongLong(&ok);
        if (ok && positive <= std::numeric_limits<quint32>::max())
            return ASN_GAUGE;
        return 0;
    }
    case QMetaType::QString:
    case QMetaType::QByteArray:
        return ASN_OCTET_STR;
    default:
        if (value.userType() == qMetaTypeId<QHostAddress>()
            && value.value<QHostAddress>().protocol() == QAbstractSocket::IPv4Protocol)
            return ASN_IPADDRESS;
        return 0;
    }
}

namespace {

// Numbers that are whole, in the given range; text that spells one too, so
// that a value typed into a form can go to a numeric variable.
bool wholeNumber(const QVariant &value, qlonglong low, qulonglong high, qulonglong *result)
{
    bool ok = false;
    if (value.userType() == QMetaType::Double || value.userType() == QMetaType::Float) {
        const double d = value.toDouble();
        if (!(d >= double(low) && d <= double(high)) || d != double(qlonglong(d)))
            return false;
    }
    if (low < 0) {
        const qlonglong n = value.toLongLong(&ok);
        if (!ok || n < low || (n > 0 && qulonglong(n) > high))
            return false;
        *result = qulonglong(n);
        return true;
    }
    const qulonglong n = value.toULongLong(&ok);
    if (!ok || n > high)
        return false;
    *result = n;
    return true;
}

QByteArray octets(const QVariant &value)
{
    if (value.userType() == QMetaType::QByteArray)
        return value.toByteArray();
    const QString text = value.toString();
    for (const QChar c : text) {
        if (c.unicode() > 0xFF)
            return text.toUtf8();
    }
    return text.toLatin1();
}

} // namespace

bool SnmpValue::append(netsnmp_pdu *pdu, const Oid &name, const QVariant &value, u_char type)
{
    if (type == 0)
        type = typeFor(value);
    qulonglong number = 0;
    switch (type) {
    case ASN_INTEGER: {
        if (!wholeNumber(
                value, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), &number))
            return false;
        const long n = long(qint32(number));
        return snmp_pdu_add_variable(pdu, name.constData(), size_t(name.size()), type, &n, sizeof n);
    }
    case ASN_COUNTER:
    case ASN_GAUGE:
    case ASN_TIMETICKS:
    case ASN_UINTEGER: {
        if (!wholeNumber(value, 0, std::numeric_limits<quint32>::max(), &number))
            return false;
        const u_long n = u_long(number);
        return snmp_pdu_add_variable(pdu, name.constData(), size_t(name.size()), type, &n, sizeof n);
    }
    case ASN_COUNTER64: {
        if (!wholeNumber(value, 0, std::numeric_limits<quint64>::max(), &number))
            return false;
        counter64 n;
        n.high = u_long(number >> 32);
        n.low = u_long(number & 0xFFFFFFFFu);
        return snmp_pdu_add_variable(pdu, name.constData(), size_t(name.size()), type, &n, sizeof n);
    }
    case ASN_OCTET_STR:
    case ASN_OPAQUE:
    case ASN_BIT_STR: {
        if (value.userType() != QMetaType::QString && value.userType() != QMetaType::QByteArray
            && !value.canConvert<QString>())
            return false;
        const QByteArray data = octets(value);
        return snmp_pdu_add_variable(
            pdu, name.constData(), size_t(name.size()), type, data.constData(), size_t(data.size()));
    }
    case ASN_IPADDRESS: {
        // Dotted text or an address; else four raw bytes, the library's byte
        // string form of an IP address.
        QHostAddress address
            = value.userType() == qMetaTypeId<QHostAddress>() ? value.value<QHostAddress>() : QHostAddress();
        QByteArray raw;
        if (address.isNull() && value.userType() == QMetaType::QString)
            address = QHostAddress(value.toString());
        if (address.protocol() == QAbstractSocket::IPv4Protocol) {
            const quint32 ip = address.toIPv4Address();
            raw = QByteArray(1, char(ip >> 24)) + char(ip >> 16) + char(ip >> 8) + char(ip);
        } else if (value.userType() == QMetaType::QString || value.userType() == QMetaType::QByteArray) {
            raw = octets(value);
        }
        if (raw.size() != 4)
            return false;
        return snmp_pdu_add_variable(pdu, name.constData(), size_t(name.size()), type, raw.constData(), 4);
    }
    case ASN_OBJECT_ID: {
        Oid target;
        if (value.userType() != QMetaType::QString || !parseOid(value.toString(), &target))
            return false;
        return snmp_pdu_add_variable(pdu, name.constData(), size_t(name.size()), type, target.constData(),
            size_t(target.size()) * sizeof(oid));
    }
    default:
        return false;
    }
}

bool SnmpValue::needsRemembering(u_char type)
{
    return type != ASN_INTEGER && type != ASN_OCTET_STR && type != ASN_NULL;
}

void SnmpValue::readSession(void *session, int socket)
{
    netsnmp_large_fd_set fds;
    netsnmp_large_fd_set_init(&fds, socket + 1);
    NETSNMP_LARGE_FD_SET(socket, &fds);
    snmp_sess_read2(session, &fds);
    netsnmp_large_fd_set_cleanup(&fds);
}

void SnmpValue::initLibrary()
{
    static const bool done = [] {
        // The host's or user's net-snmp files must not change how this
        // library talks, nor may it leave files behind.
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
        netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
        // OIDs stay numeric here, so MIB files would only cost start-up time
        // and warnings about the ones a system lacks.
        static char noMibs[] = "mibs :";
        netsnmp_config_remember(noMibs);
        init_snmp("muxcore-snmp");
        return true;
    }();
    Q_UNUSED(done)
}

QString SnmpValue::statusName(long status)
{
    static const char *const names[] = {"noError", "tooBig", "noSuchName", "badValue", "readOnly", "genErr",
        "noAccess", "wrongType", "wrongLength", "wrongEncoding", "wrongValue", "noCreation",
        "inconsistentValue", "resourceUnavailable", "commitFailed", "undoFailed", "authorizationError",
        "notWritable", "inconsistentName"};
    if (status >= 0 && status < long(sizeof names / sizeof *names))
        return QString::fromLatin1(names[status]);
    return QStringLiteral("error %1").arg(status);
}

QByteArray SnmpValue::transportSpec(const QHostAddress &address, quint16 port)
{
    if (address.protocol() == QAbstractSocket::IPv6Protocol)
        return "udp6:[" + address.toString().toLatin1() + "]:" + QByteArray::number(port);
    return "udp:" + address.toString().toLatin1() + ':' + QByteArray::number(port);
}
