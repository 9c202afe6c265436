#include "snmp/snmptrapreceiver.h"

#include "snmp/snmpvalue_p.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QVector>

#include <sys/socket.h>

class SnmpTrapReceiverPrivate
{
public:
    explicit SnmpTrapReceiverPrivate(SnmpTrapReceiver *receiver)
        : q(receiver)
    {
    }

    ~SnmpTrapReceiverPrivate() { close(); }

    void close();
    void onReadable();
    void received(netsnmp_pdu *pdu);
    QString oidText(std::initializer_list<oid> arcs) const
    {
        return SnmpValue::formatOid(arcs.begin(), arcs.size(), form);
    }

    SnmpTrapReceiver *q;
    void *session = nullptr;
    int socket = -1;
    quint16 port = 0;
    QSocketNotifier *notifier = nullptr;
    QString error;
    QStringList communities;
    SnmpClient::OidForm form = SnmpClient::LeadingDot;
    QVector<QPair<QHostAddress, QHash<QString, QVariant>>> traps;
};

namespace {

int trapCallback(int op, netsnmp_session *, int, netsnmp_pdu *pdu, void *magic)
{
    auto *d = static_cast<SnmpTrapReceiverPrivate *>(magic);
    if (op == NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE && pdu && d->session)
        d->received(pdu);
    return 1;
}

QHostAddress sourceOf(const netsnmp_pdu *pdu)
{
    if (!pdu->transport_data || pdu->transport_data_length < int(sizeof(netsnmp_indexed_addr_pair)))
        return QHostAddress();
    const auto *pair = static_cast<const netsnmp_indexed_addr_pair *>(pdu->transport_data);
    return QHostAddress(&pair->remote_addr.sa);
}

} // namespace

void SnmpTrapReceiverPrivate::close()
{
    delete notifier;
    notifier = nullptr;
    if (session) {
        void *closing = session;
        session = nullptr;
        snmp_sess_close(closing);
    }
    socket = -1;
    port = 0;
    traps.clear();
}

void SnmpTrapReceiverPrivate::received(netsnmp_pdu *pdu)
{
    if (pdu->command != SNMP_MSG_TRAP && pdu->command != SNMP_MSG_TRAP2 && pdu->command != SNMP_MSG_INFORM)
        return;
    if (pdu->version != SNMP_VERSION_3 && !communities.isEmpty()
        && !communities.contains(QString::fromLatin1(
            reinterpret_cast<const char *>(pdu->community), int(pdu->community ? pdu->community_len : 0))))
        return;
    QHash<QString, QVariant> variables;
    if (pdu->command == SNMP_MSG_TRAP) {
        // The version 2 form of a version 1 trap (RFC 3584 3.1).
        const QString enterprise = SnmpValue::formatOid(pdu->enterprise, pdu->enterprise_length, form);
        QString trapOid;
        if (pdu->trap_type >= 0 && pdu->trap_type <= 5)
            trapOid = oidText({1, 3, 6, 1, 6, 3, 1, 1, 5, oid(pdu->trap_type + 1)});
        else
            trapOid = SnmpValue::formatOid(pdu->enterprise, pdu->enterprise_length, SnmpClient::LeadingDot)
                          .mid(form == SnmpClient::LeadingDot ? 0 : 1)
                + QStringLiteral(".0.") + QString::number(pdu->specific_type);
        variables.insert(oidText({1, 3, 6, 1, 2, 1, 1, 3, 0}), uint(pdu->time));
        variables.insert(oidText({1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0}), trapOid);
        const u_char *a = pdu->agent_addr;
        variables.insert(oidText({1, 3, 6, 1, 6, 3, 18, 1, 3, 0}),
            QStringLiteral("%1.%2.%3.%4").arg(a[0]).arg(a[1]).arg(a[2]).arg(a[3]));
        variables.insert(oidText({1, 3, 6, 1, 6, 3, 1, 1, 4, 3, 0}), enterprise);
    }
    for (netsnmp_variable_list *v = pdu->variables; v; v = v->next_variable) {
        QVariant value;
        if (SnmpValue::toVariant(v, form, &value))
            variables.insert(SnmpValue::formatOid(v->name, v->name_length, form), value);
    }
    if (pdu->command == SNMP_MSG_INFORM) {
        netsnmp_pdu *reply = snmp_clone_pdu(pdu);
        if (reply) {
            reply->command = SNMP_MSG_RESPONSE;
            reply->errstat = 0;
            reply->errindex = 0;
            if (!snmp_sess_send(session, reply))
                snmp_free_pdu(reply);
        }
    }
    traps.append(qMakePair(sourceOf(pdu), variables));
}

void SnmpTrapReceiverPrivate::onReadable()
{
    if (!session)
        return;
    SnmpValue::readSession(session, socket);
    QPointer<SnmpTrapReceiver> guard(q);
    while (guard && !traps.isEmpty()) {
        const auto trap = traps.takeFirst();
        emit q->trapReceived(trap.first, trap.second);
    }
}

SnmpTrapReceiver::SnmpTrapReceiver(QObject *parent)
    : QObject(parent)
    , d(new SnmpTrapReceiverPrivate(this))
{
    qRegisterMetaType<QHostAddress>();
    qRegisterMetaType<QHash<QString, QVariant>>();
}

SnmpTrapReceiver::~SnmpTrapReceiver() = default;

bool SnmpTrapReceiver::listen(const QHostAddress &address, quint16 port)
{
    close();
    SnmpValue::initLibrary();
    const QByteArray endpoint = SnmpValue::transportSpec(address, port);
    netsnmp_transport *transport = netsnmp_transport_open_server("muxcore-snmp", endpoint.constData());
    if (!transport) {
        d->error = tr("Cannot listen on %1 port %2.").arg(address.toString()).arg(port);
        return false;
    }
    netsnmp_session settings;
    snmp_sess_init(&settings);
    settings.callback = trapCallback;
    settings.callback_magic = d.get();
    settings.isAuthoritative = SNMP_SESS_UNKNOWNAUTH;
    d->session = snmp_sess_add(&settings, transport, nullptr, nullptr);
    if (!d->session) {
        // snmp_sess_add has closed the transport.
        d->error = tr("Cannot listen on %1 port %2.").arg(address.toString()).arg(port);
        return false;
    }
    d->socket = transport->sock;
    sockaddr_storage bound {};
    socklen_t length = sizeof bound;
    if (getsockname(d->socket, reinterpret_cast<sockaddr *>(&bound), &length) == 0)
        d->port = ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6 *>(&bound)->sin6_port
                                                    : reinterpret_cast<sockaddr_in *>(&bound)->sin_port);
    d->notifier = new QSocketNotifier(d->socket, QSocketNotifier::Read, this);
    connect(d->notifier, &QSocketNotifier::activated, this, [this] { d->onReadable(); });
    d->error.clear();
    return true;
}

void SnmpTrapReceiver::close()
{
    d->close();
}

bool SnmpTrapReceiver::isListening() const
{
    return d->session != nullptr;
}

quint16 SnmpTrapReceiver::serverPort() const
{
    return d->port;
}

QString SnmpTrapReceiver::errorString() const
{
    return d->error;
}

bool SnmpTrapReceiver::addUser(const QString &engineId, const QString &user,
    SnmpTarget::AuthProtocol authProtocol, const QString &authPassphrase,
    SnmpTarget::PrivProtocol privProtocol, const QString &privPassphrase)
{
    SnmpValue::initLibrary();
    QString hex = engineId.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? engineId.mid(2) : engineId;
    const QByteArray engine = QByteArray::fromHex(hex.toLatin1());
    const QByteArray name = user.toUtf8();
    const auto invalid = [](const QString &text) {
        return text.isEmpty() || text.contains(QLatin1Char(' ')) || text.contains(QLatin1Char('"'));
    };
    d->error.clear();
    if (engine.size() < 5 || engine.size() > 32 || engine.toHex() != hex.toLatin1().toLower())
        d->error = tr("\"%1\" is not an engine id.").arg(engineId);
    else if (invalid(user) || name.size() > 32)
        d->error = tr("\"%1\" is not a user name.").arg(user);
    else if ((authProtocol != SnmpTarget::NoAuth && (authPassphrase.size() < 8 || invalid(authPassphrase)))
        || (privProtocol != SnmpTarget::NoPriv && (privPassphrase.size() < 8 || invalid(privPassphrase))))
        d->error = tr("A passphrase must have at least 8 characters and no blanks or quotes.");
    else if (authProtocol == SnmpTarget::NoAuth && privProtocol != SnmpTarget::NoPriv)
        d->error = tr("Privacy needs an authentication protocol.");
    if (!d->error.isEmpty())
        return false;
    // net-snmp's own createUser line does the key localisation.
    QByteArray line = "-e 0x" + engine.toHex() + ' ' + name;
    if (authProtocol != SnmpTarget::NoAuth) {
        line += authProtocol == SnmpTarget::MD5 ? " MD5 " : " SHA ";
        line += authPassphrase.toUtf8();
        if (privProtocol != SnmpTarget::NoPriv)
            line += (privProtocol == SnmpTarget::DES ? " DES " : " AES ") + privPassphrase.toUtf8();
    }
    if (usmUser *old = usm_get_user(
            reinterpret_cast<const u_char *>(engine.constData()), size_t(engine.size()), name.constData())) {
        usm_remove_user(old); // returns the list, not the user
        usm_free_user(old);
    }
    usm_parse_create_usmUser("createUser", line.data());
    if (!usm_get_user(
            reinterpret_cast<const u_char *>(engine.constData()), size_t(engine.size()), name.constData())) {
        d->error = tr("net-snmp refused the user %1.").arg(user);
        return false;
    }
    return true;
}

QStringList SnmpTrapReceiver::communities() const
{
    return d->communities;
}

void SnmpTrapReceiver::setCommunities(const QStringList &communities)
{
    d->communities = communities;
}

SnmpClient::OidForm SnmpTrapReceiver::oidForm() const
{
    return d->form;
}

void SnmpTrapReceiver::setOidForm(SnmpClient::OidForm form)
{
    d->form = form;
}
