#include "snmpendpoints.h"

#include "faultplan.h"

#include <simulatedunit.h>
#include <unitlayout.h>

// net-snmp's configuration header comes first, before any other of its headers.
#include <net-snmp/net-snmp-config.h>
// clang-format off
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/library/large_fd_set.h>
// clang-format on

#include <QDir>
#include <QSocketNotifier>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <netinet/in.h>
#include <sys/socket.h>

// Not in net-snmp's installed headers: sets up the community and user
// directives (rwcommunity, rwuser) and the access check behind them.
extern "C" void init_vacm_conf(void);

using namespace UnitLayout;

namespace {

const char appName[] = "demoagent";

using Oid = std::vector<oid>;

Oid toOid(const QString &text)
{
    Oid name;
    const QStringList parts = text.split(QLatin1Char('.'), Qt::SkipEmptyParts);
    name.reserve(static_cast<size_t>(parts.size()));
    for (const QString &part : parts)
        name.push_back(part.toULong());
    return name;
}

QString toText(const oid *name, size_t length)
{
    QString text;
    for (size_t i = 0; i < length; ++i) {
        if (i > 0)
            text += QLatin1Char('.');
        text += QString::number(name[i]);
    }
    return text;
}

bool isAddressOid(const QString &oid)
{
    return oid == oidSystem() + QStringLiteral(".1") || oid == oidSystem() + QStringLiteral(".2");
}

struct Row
{
    Oid name;
    QVariant value;
    bool address = false;
};

bool rowBefore(const Row &row, const Oid &name)
{
    return row.name < name;
}

// The large table is the same for every unit and lies after all of its own
// variables, so a walk simply goes on into it.
std::vector<Row> &largeTable()
{
    static std::vector<Row> rows;
    return rows;
}

void fillLargeTable(int count)
{
    std::vector<Row> &rows = largeTable();
    rows.clear();
    rows.reserve(static_cast<size_t>(count));
    const Oid base = toOid(enterpriseArc() + QStringLiteral(".99.1"));
    for (int i = 1; i <= count; ++i) {
        Row row;
        row.name = base;
        row.name.push_back(static_cast<oid>(i));
        row.value = i;
        rows.push_back(std::move(row));
    }
}

void setValue(netsnmp_variable_list *var, const Row &row)
{
    const QVariant &value = row.value;
    if (value.userType() == QMetaType::QString) {
        if (row.address) {
            const QStringList parts = value.toString().split(QLatin1Char('.'));
            unsigned char bytes[4] = {};
            for (int i = 0; i < 4 && i < parts.size(); ++i)
                bytes[i] = static_cast<unsigned char>(parts.at(i).toUInt());
            snmp_set_var_typed_value(var, ASN_IPADDRESS, bytes, 4);
            return;
        }
        const QByteArray bytes = value.toString().toLatin1();
        snmp_set_var_typed_value(var, ASN_OCTET_STR, bytes.constData(), static_cast<size_t>(bytes.size()));
    } else if (value.userType() == QMetaType::UInt) {
        const u_long counter = value.toUInt();
        snmp_set_var_typed_value(var, ASN_COUNTER, &counter, sizeof(counter));
    } else {
        const long integer = value.toLongLong();
        snmp_set_var_typed_value(var, ASN_INTEGER, &integer, sizeof(integer));
    }
}

QVariant valueOf(const netsnmp_variable_list *var)
{
    switch (var->type) {
    case ASN_INTEGER:
        return static_cast<int>(*var->val.integer);
    case ASN_OCTET_STR:
        return QString::fromLatin1(
            reinterpret_cast<const char *>(var->val.string), static_cast<int>(var->val_len));
    case ASN_IPADDRESS: {
        const unsigned char *b = var->val.string;
        return var->val_len == 4 ? QStringLiteral("%1.%2.%3.%4").arg(b[0]).arg(b[1]).arg(b[2]).arg(b[3])
                                 : QString();
    }
    default:
        return QVariant();
    }
}

} // namespace

struct SnmpEndpoints::Unit
{
    int key = 0;
    int port = 0;
    SimulatedUnit *unit = nullptr;
    netsnmp_transport *transport = nullptr;
    std::unique_ptr<QSocketNotifier> notifier;
    std::vector<Row> rows; // sorted; empty when stale
    QHash<QString, QVariant> variables;

    const std::vector<Row> &table()
    {
        if (!rows.empty())
            return rows;
        variables = unit->variables();
        rows.reserve(static_cast<size_t>(variables.size()));
        for (auto it = variables.cbegin(); it != variables.cend(); ++it)
            rows.push_back({toOid(it.key()), it.value(), isAddressOid(it.key())});
        std::sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) { return a.name < b.name; });
        return rows;
    }
    const Row *find(const Oid &name)
    {
        const std::vector<Row> &own = table();
        const std::vector<Row> *parts[] = {&own, &largeTable()};
        for (const std::vector<Row> *part : parts) {
            auto it = std::lower_bound(part->begin(), part->end(), name, rowBefore);
            if (it != part->end() && it->name == name)
                return &*it;
        }
        return nullptr;
    }
    const Row *next(const Oid &name)
    {
        const std::vector<Row> &own = table();
        const std::vector<Row> *parts[] = {&own, &largeTable()};
        for (const std::vector<Row> *part : parts) {
            auto it = std::upper_bound(
                part->begin(), part->end(), name, [](const Oid &n, const Row &row) { return n < row.name; });
            if (it != part->end())
                return &*it;
        }
        return nullptr;
    }
};

namespace {

int checkSet(SnmpEndpoints::Unit *unit, const netsnmp_variable_list *var)
{
    const QString oid = toText(var->name, var->name_length);
    const bool control = oid == oidControl();
    unit->table();
    if (!control && !unit->variables.contains(oid))
        return SNMP_ERR_NOCREATION;
    if (!SimulatedUnit::isWritable(oid))
        return SNMP_ERR_NOTWRITABLE;
    const QVariant current = control ? QVariant(0) : unit->variables.value(oid);
    if (current.userType() != QMetaType::QString)
        return var->type == ASN_INTEGER ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGTYPE;
    if (var->type == ASN_IPADDRESS && isAddressOid(oid))
        return var->val_len == 4 ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGLENGTH;
    if (var->type != ASN_OCTET_STR)
        return SNMP_ERR_WRONGTYPE;
    return var->val_len <= static_cast<size_t>(cfgLabelSize) ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGLENGTH;
}

int handleRequests(netsnmp_mib_handler *, netsnmp_handler_registration *, netsnmp_agent_request_info *reqinfo,
    netsnmp_request_info *requests)
{
    SnmpEndpoints *endpoints = SnmpEndpoints::instance();
    SnmpEndpoints::Unit *unit = endpoints ? endpoints->unitForSession(reqinfo->asp->session) : nullptr;
    if (!unit)
        return SNMP_ERR_GENERR;
    QHash<QString, QVariant> set;
    for (netsnmp_request_info *request = requests; request; request = request->next) {
        netsnmp_variable_list *var = request->requestvb;
        const Oid name(var->name, var->name + var->name_length);
        switch (reqinfo->mode) {
        case MODE_GET:
            if (const Row *row = unit->find(name))
                setValue(var, *row);
            else
                netsnmp_set_request_error(reqinfo, request, SNMP_NOSUCHINSTANCE);
            break;
        case MODE_GETNEXT:
            // Past the last row the request is left alone: the agent moves on
            // to the next registration or answers endOfMibView.
            if (const Row *row = unit->next(name)) {
                snmp_set_var_objid(var, row->name.data(), row->name.size());
                setValue(var, *row);
            }
            break;
        case MODE_SET_RESERVE1:
            if (const int error = checkSet(unit, var))
                netsnmp_set_request_error(reqinfo, request, error);
            break;
        case MODE_SET_ACTION:
            set.insert(toText(var->name, var->name_length), valueOf(var));
            break;
        default:
            break;
        }
    }
    if (reqinfo->mode == MODE_SET_ACTION) {
        const bool done = unit->unit->applySet(set);
        unit->rows.clear();
        if (!done)
            netsnmp_set_request_error(reqinfo, requests, SNMP_ERR_GENERR);
    }
    return SNMP_ERR_NOERROR;
}

} // namespace

SnmpEndpoints *SnmpEndpoints::self = nullptr;

SnmpEndpoints::SnmpEndpoints(const Options &options, FaultPlan *faults, QObject *parent)
    : QObject(parent)
    , options(options)
    , faults(faults)
    , alarms(new QTimer(this))
{
    self = this;
    fillLargeTable(options.tableRows);
    // net-snmp's own timers (USM bookkeeping, engine time) run from here.
    connect(alarms, &QTimer::timeout, this, [] {
        run_alarms();
        netsnmp_check_outstanding_agent_requests();
    });
}

SnmpEndpoints::~SnmpEndpoints()
{
    units.clear(); // notifiers first; the transports go with net-snmp's sessions
    if (started)
        snmp_shutdown(appName);
    self = nullptr;
}

bool SnmpEndpoints::start()
{
    // Everything comes from the command line: no configuration or state
    // files of the machine, no MIB files, and nothing written to disk.
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 0); // a master agent
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
    setenv("MIBS", "", 1);
    QDir(stateDir.path()).mkdir(QStringLiteral("cert_indexes")); // else net-snmp announces that it made it
    netsnmp_ds_set_string(
        NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_PERSISTENT_DIR, stateDir.path().toLocal8Bit().constData());
    snmp_enable_stderrlog();
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS, 1);
    if (init_agent(appName) != 0)
        return false;
    init_vacm_conf();

    // Loopback managers only, read and write.
    QByteArray line = "rwcommunity " + options.community.toUtf8() + " 127.0.0.1";
    netsnmp_config_remember(line.data());
    if (!options.v3User.isEmpty()) {
        line = "createUser " + options.v3User.toUtf8() + " SHA \"" + options.authPass.toUtf8() + "\" AES \""
            + options.privPass.toUtf8() + "\"";
        netsnmp_config_remember(line.data());
        line = "rwuser " + options.v3User.toUtf8() + " priv";
        netsnmp_config_remember(line.data());
    }
    init_snmp(appName);
    started = true;

    static const oid arc[] = {1, 3, 6, 1, 4, 1, 32473};
    netsnmp_handler_registration *registration = netsnmp_create_handler_registration(
        appName, handleRequests, arc, OID_LENGTH(arc), HANDLER_CAN_RWRITE);
    if (!registration || netsnmp_register_handler(registration) != MIB_REGISTERED_OK)
        return false;
    alarms->start(500);
    return true;
}

bool SnmpEndpoints::addUnit(int key, SimulatedUnit *unit, int port)
{
    const QByteArray endpoint = "udp:127.0.0.1:" + QByteArray::number(port);
    netsnmp_transport *transport = netsnmp_transport_open_server(appName, endpoint.constData());
    if (!transport)
        return false;
    if (netsnmp_register_agent_nsap(transport) == 0) {
        netsnmp_transport_free(transport);
        return false;
    }
    auto entry = std::make_unique<Unit>();
    entry->key = key;
    entry->port = port;
    entry->unit = unit;
    entry->transport = transport;
    const int socket = transport->sock;
    entry->notifier = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    connect(entry->notifier.get(), &QSocketNotifier::activated, this, [this, socket] { onReadable(socket); });
    bySocket.insert(socket, entry.get());
    byKey.insert(key, entry.get());
    units.push_back(std::move(entry));
    return true;
}

SnmpEndpoints::Unit *SnmpEndpoints::unitForSession(void *session)
{
    if (Unit *known = bySession.value(session))
        return known;
    netsnmp_transport *transport
        = snmp_sess_transport(snmp_sess_pointer(static_cast<netsnmp_session *>(session)));
    Unit *unit = transport ? bySocket.value(transport->sock) : nullptr;
    if (unit)
        bySession.insert(session, unit);
    return unit;
}

void SnmpEndpoints::onReadable(int socket)
{
    Unit *unit = bySocket.value(socket);
    if (!unit)
        return;
    if (faults->drop(unit->key) || unit->unit->isRestarting()) {
        char discard[2048];
        while (recv(socket, discard, sizeof(discard), MSG_DONTWAIT) > 0) { }
        return;
    }
    netsnmp_large_fd_set readable;
    netsnmp_large_fd_set_init(&readable, socket + 1);
    NETSNMP_LARGE_FD_SET(socket, &readable);
    snmp_read2(&readable);
    netsnmp_large_fd_set_cleanup(&readable);
    netsnmp_check_outstanding_agent_requests();
}

void SnmpEndpoints::invalidate()
{
    for (const auto &unit : units)
        unit->rows.clear();
}

void SnmpEndpoints::sendTrap(int key, const QHash<QString, QVariant> &variables)
{
    if (options.trapPort <= 0)
        return;
    Unit *unit = byKey.value(key);
    if (!unit)
        return;
    netsnmp_pdu *pdu = snmp_pdu_create(SNMP_MSG_TRAP2);
    pdu->version = SNMP_VERSION_2c;
    const QByteArray community = options.community.toUtf8();
    pdu->community = static_cast<u_char *>(malloc(static_cast<size_t>(community.size()) + 1));
    memcpy(pdu->community, community.constData(), static_cast<size_t>(community.size()) + 1);
    pdu->community_len = static_cast<size_t>(community.size());
    pdu->reqid = snmp_get_next_reqid();

    // sysUpTime.0 and snmpTrapOID.0 lead, as every v2 notification must.
    static const oid upTime[] = {1, 3, 6, 1, 2, 1, 1, 3, 0};
    const u_long ticks = netsnmp_get_agent_uptime();
    snmp_pdu_add_variable(pdu, upTime, OID_LENGTH(upTime), ASN_TIMETICKS, &ticks, sizeof(ticks));
    const QString trapOid = QStringLiteral("1.3.6.1.6.3.1.1.4.1.0");
    const Oid trapName = toOid(trapOid);
    const Oid trapValue = toOid(variables.value(trapOid).toString());
    snmp_pdu_add_variable(pdu, trapName.data(), trapName.size(), ASN_OBJECT_ID, trapValue.data(),
        trapValue.size() * sizeof(oid));
    for (auto it = variables.cbegin(); it != variables.cend(); ++it) {
        if (it.key() == trapOid)
            continue;
        const Row row {toOid(it.key()), it.value(), false};
        netsnmp_variable_list *var = snmp_add_null_var(pdu, row.name.data(), row.name.size());
        if (var)
            setValue(var, row);
    }

    const long port = unit->port;
    const Oid portName = toOid(oidEndpointPort());
    snmp_pdu_add_variable(pdu, portName.data(), portName.size(), ASN_INTEGER, &port, sizeof(port));

    // The trap leaves from the unit's own socket, as a real unit's would.
    netsnmp_session session;
    snmp_sess_init(&session);
    session.version = SNMP_VERSION_2c;
    size_t size = 1024;
    size_t length = 0;
    auto *buffer = static_cast<u_char *>(malloc(size));
    if (buffer && snmp_build(&buffer, &size, &length, &session, pdu) == 0) {
        sockaddr_in to {};
        to.sin_family = AF_INET;
        to.sin_port = htons(static_cast<uint16_t>(options.trapPort));
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        // net-snmp encodes from the end of the buffer backwards.
        const u_char *packet = (pdu->flags & UCD_MSG_FLAG_FORWARD_ENCODE) ? buffer : buffer + size - length;
        sendto(unit->transport->sock, packet, length, 0, reinterpret_cast<sockaddr *>(&to), sizeof(to));
    }
    free(buffer);
    snmp_free_pdu(pdu);
}
