// Variable bindings of any type, length and OID, as an agent or a trap
// sender may send them, turned into variable-set entries and back; and
// values of any kind a host may put into a set, turned into bindings.

#include "fuzzinput.h"

#include <snmp/snmpvalue_p.h>

#include <QHostAddress>

#include <cstring>

namespace {

const u_char wireTypes[] = {ASN_INTEGER, ASN_OCTET_STR, ASN_OBJECT_ID, ASN_IPADDRESS, ASN_COUNTER, ASN_GAUGE,
    ASN_TIMETICKS, ASN_COUNTER64, ASN_OPAQUE, ASN_NULL, ASN_BIT_STR, ASN_UINTEGER, SNMP_NOSUCHOBJECT,
    SNMP_NOSUCHINSTANCE, SNMP_ENDOFMIBVIEW};

SnmpValue::Oid arcs(FuzzInput &input)
{
    SnmpValue::Oid name(input.byte() % (MAX_OID_LEN + 8));
    for (oid &arc : name)
        arc = input.byte() < 200 ? input.byte() : input.dword();
    return name;
}

// The wire value as one comparable byte string.
QByteArray wireValue(const netsnmp_variable_list *v)
{
    switch (v->type) {
    case ASN_INTEGER:
        return QByteArray::number(qint32(*v->val.integer));
    case ASN_COUNTER:
    case ASN_GAUGE:
    case ASN_TIMETICKS:
    case ASN_UINTEGER:
        return QByteArray::number(quint32(*v->val.integer));
    case ASN_COUNTER64:
        return QByteArray::number(quint32(v->val.counter64->high)) + ':'
            + QByteArray::number(quint32(v->val.counter64->low));
    default:
        return QByteArray(reinterpret_cast<const char *>(v->val.string), int(v->val_len));
    }
}

void fromWire(FuzzInput &input, SnmpClient::OidForm form)
{
    const u_char type = wireTypes[input.byte() % sizeof wireTypes];
    SnmpValue::Oid name = arcs(input);
    if (name.isEmpty())
        name.append(1);
    const QByteArray raw = input.field();
    netsnmp_variable_list *list = nullptr;
    const long number = long(qint32(input.dword()));
    counter64 wide {input.dword(), input.dword()};
    SnmpValue::Oid target = arcs(input);
    const void *value = raw.constData();
    size_t length = size_t(raw.size());
    if (type == ASN_INTEGER || type == ASN_COUNTER || type == ASN_GAUGE || type == ASN_TIMETICKS
        || type == ASN_UINTEGER) {
        value = &number;
        length = sizeof number;
    } else if (type == ASN_COUNTER64) {
        value = &wide;
        length = sizeof wide;
    } else if (type == ASN_OBJECT_ID) {
        value = target.constData();
        length = size_t(target.size()) * sizeof(oid);
    }
    if (!snmp_varlist_add_variable(&list, name.constData(), size_t(name.size()), type, value, length))
        return;
    QVariant variant;
    const bool taken = SnmpValue::toVariant(list, form, &variant);
    FUZZ_CHECK(
        taken == (type != SNMP_NOSUCHOBJECT && type != SNMP_NOSUCHINSTANCE && type != SNMP_ENDOFMIBVIEW));

    // The name survives its text form.
    SnmpValue::Oid parsed;
    const QString text = SnmpValue::formatOid(list->name, list->name_length, form);
    FUZZ_CHECK(SnmpValue::parseOid(text, &parsed) == (list->name_length <= MAX_OID_LEN));
    if (list->name_length <= MAX_OID_LEN)
        FUZZ_CHECK(parsed == SnmpValue::Oid(list->name, list->name + list->name_length));

    // What arrived goes back unchanged, where the value maps back at all.
    const bool mapsBack = taken && type != ASN_NULL && !(type == ASN_IPADDRESS && length != 4)
        && !(type == ASN_OBJECT_ID && (target.isEmpty() || target.size() > MAX_OID_LEN));
    netsnmp_pdu *pdu = snmp_pdu_create(SNMP_MSG_SET);
    const bool sent = taken && SnmpValue::append(pdu, parsed, variant, type);
    FUZZ_CHECK(!mapsBack || sent);
    if (sent && mapsBack) {
        FUZZ_CHECK(pdu->variables->type == type);
        FUZZ_CHECK(wireValue(pdu->variables) == wireValue(list));
    }
    snmp_free_pdu(pdu);
    snmp_free_varbind(list);
}

QVariant hostValue(FuzzInput &input)
{
    const QByteArray raw = input.field();
    FuzzInput bytes(reinterpret_cast<const uint8_t *>(raw.constData()), size_t(raw.size()));
    const quint64 wide = quint64(bytes.dword()) << 32 | bytes.dword();
    double real;
    std::memcpy(&real, &wide, sizeof real);
    switch (input.byte() % 11) {
    case 0:
        return int(wide);
    case 1:
        return uint(wide);
    case 2:
        return qlonglong(wide);
    case 3:
        return qulonglong(wide);
    case 4:
        return real;
    case 5:
        return bool(wide & 1);
    case 6:
        return QString::fromUtf8(raw);
    case 7:
        return raw;
    case 8:
        return QVariant::fromValue(QHostAddress(quint32(wide)));
    case 9:
        return QStringList {QString::fromLatin1(raw)};
    default:
        return QVariant();
    }
}

void fromHost(FuzzInput &input, SnmpClient::OidForm form)
{
    const QVariant value = hostValue(input);
    const quint8 choice = input.byte();
    const u_char type = choice & 1 ? wireTypes[(choice >> 1) % sizeof wireTypes] : 0;
    SnmpValue::Oid name;
    if (!SnmpValue::parseOid(input.latin1Field(), &name))
        name = SnmpValue::Oid {1, 3, 6};
    netsnmp_pdu *pdu = snmp_pdu_create(SNMP_MSG_SET);
    if (SnmpValue::append(pdu, name, value, type)) {
        FUZZ_CHECK(pdu->variables && !pdu->variables->next_variable);
        FUZZ_CHECK(pdu->variables->type == (type ? type : SnmpValue::typeFor(value)));
        QVariant back;
        FUZZ_CHECK(SnmpValue::toVariant(pdu->variables, form, &back));
    } else {
        FUZZ_CHECK(!pdu->variables);
    }
    snmp_free_pdu(pdu);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    SnmpValue::initLibrary();
    FuzzInput input(data, size);
    while (!input.atEnd()) {
        const quint8 mode = input.byte();
        const auto form = mode & 2 ? SnmpClient::NoLeadingDot : SnmpClient::LeadingDot;
        if (mode & 1)
            fromHost(input, form);
        else
            fromWire(input, form);
    }
    return 0;
}
