#include "snmp/snmpclient.h"

#include "snmp/snmpvalue_p.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>
#include <QVector>

#include <climits>
#include <cstdlib>
#include <utility>

namespace {

int clientCallback(int op, netsnmp_session *session, int reqid, netsnmp_pdu *pdu, void *magic);

} // namespace

class SnmpClientPrivate
{
public:
    enum Kind { Get, Walk, Set };

    struct Request
    {
        Kind kind = Get;
        SnmpValue::Oid root; // of a walk
        SnmpValue::Oid last; // the walk's latest OID
        QHash<QString, QVariant> variables;
    };

    struct Outcome
    {
        int id;
        SnmpClient::Error error;
        QString message;
        QHash<QString, QVariant> variables;
    };

    explicit SnmpClientPrivate(SnmpClient *client, const SnmpTarget &t)
        : q(client)
        , target(t)
    {
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, q, [this] { onTimeout(); });
    }

    ~SnmpClientPrivate() { closeSession(); }

    bool openSession();
    void closeSession();
    int start(Kind kind, netsnmp_pdu *pdu, const SnmpValue::Oid &root = SnmpValue::Oid());
    bool send(int id, netsnmp_pdu *pdu);
    void startDiscovery();
    netsnmp_pdu *nextWalkPdu(const Request &request) const;
    void received(int id, netsnmp_pdu *pdu);
    void fail(int id, SnmpClient::Error error, const QString &message);
    void onReadable();
    void onTimeout();
    void afterIo();
    void rearm();
    int callback(int op, int reqid, netsnmp_pdu *pdu);

    SnmpClient *q;
    SnmpTarget target;
    SnmpClient::OidForm form = SnmpClient::LeadingDot;
    int maxVariables = 100000;
    int bulkSize = 20;
    QString error;

    void *session = nullptr;
    int socket = -1;
    QSocketNotifier *notifier = nullptr;
    QTimer timer;
    // Version 3: the agent's engine, found by a probe of our own before the
    // real session opens, since net-snmp's own probe would block.
    bool probing = false;
    QByteArray engineId;
    QVector<QPair<int, netsnmp_pdu *>> held;

    int nextId = 1;
    QHash<int, Request> requests;
    QHash<int, int> byReqid; // net-snmp's request id → ours
    QHash<long, int> reqidByMsgid; // version 3 message id → request id
    QVector<int> walksToContinue;
    QVector<Outcome> done;
    // Wire types other than INTEGER and OCTET STRING by OID (leading-dot
    // form), so that a set sends a value back as it came.
    QHash<QString, u_char> types;
};

namespace {

int clientCallback(int op, netsnmp_session *, int reqid, netsnmp_pdu *pdu, void *magic)
{
    return static_cast<SnmpClientPrivate *>(magic)->callback(op, reqid, pdu);
}

void setKey(const oid *protocol, size_t length, const QString &passphrase, u_char *key, size_t *keyLength)
{
    QByteArray pass = passphrase.toUtf8();
    generate_Ku(protocol, u_int(length), reinterpret_cast<u_char *>(pass.data()), size_t(pass.size()), key,
        keyLength);
}

// Checked before any datagram goes out, so that a target that cannot work
// is refused at once rather than after the engine discovery.
QString v3Problem(const SnmpTarget &target)
{
    const auto tooShort = [](const QString &pass) { return pass.toUtf8().size() < USM_LENGTH_P_MIN; };
    if (target.user.isEmpty())
        return SnmpClient::tr("A version 3 target needs a user.");
    if (target.authProtocol == SnmpTarget::NoAuth && target.privProtocol != SnmpTarget::NoPriv)
        return SnmpClient::tr("Privacy needs an authentication protocol.");
    if ((target.authProtocol != SnmpTarget::NoAuth && tooShort(target.authPassphrase))
        || (target.privProtocol != SnmpTarget::NoPriv && tooShort(target.privPassphrase)))
        return SnmpClient::tr("A passphrase must have at least 8 characters.");
    return QString();
}

} // namespace

bool SnmpClientPrivate::openSession()
{
    if (session)
        return true;
    if (target.host.isNull() || target.port == 0) {
        error = SnmpClient::tr("The target has no address.");
        return false;
    }
    if (target.timeout < 1 || target.retries < 0) {
        error = SnmpClient::tr("The target's timeout or retries are out of range.");
        return false;
    }
    if (target.version == SnmpTarget::V3) {
        error = v3Problem(target);
        if (!error.isEmpty())
            return false;
    }
    SnmpValue::initLibrary();
    netsnmp_session settings;
    snmp_sess_init(&settings);
    QByteArray peer = SnmpValue::transportSpec(target.host, target.port);
    settings.peername = peer.data();
    settings.timeout = long(target.timeout) * 1000;
    settings.retries = target.retries;
    settings.callback = clientCallback;
    settings.callback_magic = this;
    QByteArray community = target.community.toLatin1();
    QByteArray user = target.user.toUtf8();
    QByteArray anonymous;
    error.clear();
    if (target.version != SnmpTarget::V3) {
        settings.version = target.version == SnmpTarget::V1 ? SNMP_VERSION_1 : SNMP_VERSION_2c;
        settings.community = reinterpret_cast<u_char *>(community.data());
        settings.community_len = size_t(community.size());
    } else {
        settings.version = SNMP_VERSION_3;
        settings.flags |= SNMP_FLAGS_DONT_PROBE;
        probing = engineId.isEmpty();
        if (probing) {
            // The discovery probe of RFC 3414 4: no user, no security.
            settings.securityName = anonymous.data();
            settings.securityNameLen = 0;
            settings.securityLevel = SNMP_SEC_LEVEL_NOAUTH;
        } else {
            settings.securityName = user.data();
            settings.securityNameLen = size_t(user.size());
            settings.securityEngineID = reinterpret_cast<u_char *>(engineId.data());
            settings.securityEngineIDLen = size_t(engineId.size());
            settings.securityLevel = SNMP_SEC_LEVEL_NOAUTH;
            if (target.authProtocol != SnmpTarget::NoAuth) {
                settings.securityLevel = SNMP_SEC_LEVEL_AUTHNOPRIV;
                const bool md5 = target.authProtocol == SnmpTarget::MD5;
                settings.securityAuthProto = md5 ? usmHMACMD5AuthProtocol : usmHMACSHA1AuthProtocol;
                settings.securityAuthProtoLen = USM_AUTH_PROTO_SHA_LEN;
                settings.securityAuthKeyLen = USM_AUTH_KU_LEN;
                setKey(settings.securityAuthProto, settings.securityAuthProtoLen, target.authPassphrase,
                    settings.securityAuthKey, &settings.securityAuthKeyLen);
                if (target.privProtocol != SnmpTarget::NoPriv) {
                    settings.securityLevel = SNMP_SEC_LEVEL_AUTHPRIV;
                    settings.securityPrivProto
                        = target.privProtocol == SnmpTarget::DES ? usmDESPrivProtocol : usmAESPrivProtocol;
                    settings.securityPrivProtoLen = USM_PRIV_PROTO_AES_LEN;
                    settings.securityPrivKeyLen = USM_PRIV_KU_LEN;
                    setKey(settings.securityAuthProto, settings.securityAuthProtoLen, target.privPassphrase,
                        settings.securityPrivKey, &settings.securityPrivKeyLen);
                }
            }
            // net-snmp keeps localized keys per engine and user for the whole
            // process; new passphrases must replace the old ones.
            if (usmUser *old = usm_get_user(
                    settings.securityEngineID, settings.securityEngineIDLen, settings.securityName)) {
                usm_remove_user(old); // returns the list, not the user
                usm_free_user(old);
            }
        }
    }
    session = snmp_sess_open(&settings);
    if (!session) {
        error = SnmpClient::tr("Cannot open a session to %1 port %2: %3")
                    .arg(target.host.toString())
                    .arg(target.port)
                    .arg(QString::fromLocal8Bit(snmp_api_errstring(settings.s_snmp_errno)));
        probing = false;
        return false;
    }
    netsnmp_transport *transport = snmp_sess_transport(session);
    socket = transport ? transport->sock : -1;
    if (socket >= 0) {
        notifier = new QSocketNotifier(socket, QSocketNotifier::Read, q);
        QObject::connect(notifier, &QSocketNotifier::activated, q, [this] { onReadable(); });
    }
    return true;
}

void SnmpClientPrivate::closeSession()
{
    delete notifier;
    notifier = nullptr;
    timer.stop();
    if (session) {
        void *closing = session;
        session = nullptr; // the callback ignores what closing reports
        snmp_sess_close(closing);
    }
    socket = -1;
    probing = false;
    for (const auto &h : qAsConst(held))
        snmp_free_pdu(h.second);
    held.clear();
    requests.clear();
    byReqid.clear();
    reqidByMsgid.clear();
    walksToContinue.clear();
    done.clear();
}

int SnmpClientPrivate::start(Kind kind, netsnmp_pdu *pdu, const SnmpValue::Oid &root)
{
    if (!openSession()) {
        snmp_free_pdu(pdu);
        return 0;
    }
    const int id = nextId;
    nextId = nextId == INT_MAX ? 1 : nextId + 1;
    Request request;
    request.kind = kind;
    request.root = root;
    request.last = root;
    requests.insert(id, request);
    if (probing) {
        if (held.isEmpty())
            startDiscovery();
        held.append(qMakePair(id, pdu));
    } else if (!send(id, pdu)) {
        requests.remove(id);
        return 0;
    }
    error.clear();
    rearm();
    return id;
}

bool SnmpClientPrivate::send(int id, netsnmp_pdu *pdu)
{
    const int reqid = snmp_sess_async_send(session, pdu, clientCallback, this);
    if (reqid == 0) {
        int libError = 0;
        int sysError = 0;
        char *text = nullptr;
        snmp_sess_error(session, &sysError, &libError, &text);
        error = SnmpClient::tr("Cannot send to %1 port %2: %3")
                    .arg(target.host.toString())
                    .arg(target.port)
                    .arg(QString::fromLocal8Bit(text ? text : ""));
        free(text);
        snmp_free_pdu(pdu);
        return false;
    }
    byReqid.insert(reqid, id);
    if (target.version == SnmpTarget::V3)
        reqidByMsgid.insert(pdu->msgid, reqid);
    return true;
}

void SnmpClientPrivate::startDiscovery()
{
    // An empty GET from no one: the agent answers with a report that
    // carries its engine id (RFC 3414 4).
    netsnmp_pdu *probe = snmp_pdu_create(SNMP_MSG_GET);
    probe->version = SNMP_VERSION_3;
    probe->securityName = strdup("");
    probe->securityNameLen = 0;
    probe->securityLevel = SNMP_SEC_LEVEL_NOAUTH;
    probe->securityModel = SNMP_SEC_MODEL_USM;
    if (!usm_get_user(nullptr, 0, probe->securityName)) {
        usmUser *anonymous = usm_create_user();
        anonymous->name = strdup("");
        usm_add_user(anonymous);
    }
    const int reqid = snmp_sess_async_send(session, probe, clientCallback, this);
    if (reqid == 0)
        snmp_free_pdu(probe);
    else
        byReqid.insert(reqid, 0);
}

netsnmp_pdu *SnmpClientPrivate::nextWalkPdu(const Request &request) const
{
    netsnmp_pdu *pdu;
    if (target.version == SnmpTarget::V1) {
        pdu = snmp_pdu_create(SNMP_MSG_GETNEXT);
    } else {
        pdu = snmp_pdu_create(SNMP_MSG_GETBULK);
        pdu->non_repeaters = 0;
        pdu->max_repetitions = bulkSize;
    }
    snmp_add_null_var(pdu, request.last.constData(), size_t(request.last.size()));
    return pdu;
}

int SnmpClientPrivate::callback(int op, int reqid, netsnmp_pdu *pdu)
{
    if (op == NETSNMP_CALLBACK_OP_RESEND || !session)
        return 1;
    if (pdu && target.version == SnmpTarget::V3) {
        // A report on a message the agent could not decrypt or verify has
        // no request id; its message id still names the request.
        if (!byReqid.contains(reqid))
            reqid = reqidByMsgid.value(pdu->msgid, reqid);
        reqidByMsgid.remove(pdu->msgid);
    }
    if (!byReqid.contains(reqid))
        return 1;
    const int id = byReqid.take(reqid);

    if (id == 0) { // the discovery probe
        // The report comes as a security error, the engine id in its header.
        if (pdu && pdu->securityEngineIDLen > 0) {
            engineId = QByteArray(
                reinterpret_cast<const char *>(pdu->securityEngineID), int(pdu->securityEngineIDLen));
        } else {
            const QString message = op == NETSNMP_CALLBACK_OP_TIMED_OUT
                ? SnmpClient::tr("No answer from %1 port %2.").arg(target.host.toString()).arg(target.port)
                : SnmpClient::tr("The agent at %1 port %2 did not name its engine.")
                      .arg(target.host.toString())
                      .arg(target.port);
            for (const auto &h : qAsConst(held)) {
                fail(h.first,
                    op == NETSNMP_CALLBACK_OP_TIMED_OUT ? SnmpClient::TimeoutError : SnmpClient::SendError,
                    message);
                snmp_free_pdu(h.second);
            }
            held.clear();
        }
        return 1;
    }
    if (!requests.contains(id))
        return 1;
    if ((op == NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE || op == NETSNMP_CALLBACK_OP_SEC_ERROR) && pdu)
        received(id, pdu);
    else if (op == NETSNMP_CALLBACK_OP_TIMED_OUT)
        fail(id, SnmpClient::TimeoutError,
            SnmpClient::tr("No answer from %1 port %2 within %3 ms.")
                .arg(target.host.toString())
                .arg(target.port)
                .arg(qlonglong(target.timeout) * (target.retries + 1)));
    else
        fail(id, SnmpClient::SendError,
            SnmpClient::tr("The exchange with %1 port %2 broke off.")
                .arg(target.host.toString())
                .arg(target.port));
    return 1;
}

void SnmpClientPrivate::fail(int id, SnmpClient::Error error, const QString &message)
{
    requests.remove(id);
    done.append({id, error, message, {}});
}

void SnmpClientPrivate::received(int id, netsnmp_pdu *pdu)
{
    Request &request = requests[id];
    if (pdu->command == SNMP_MSG_REPORT || pdu->command == 0) {
        fail(id, SnmpClient::AuthenticationError,
            SnmpClient::tr("The agent refused the request: %1")
                .arg(QString::fromLocal8Bit(snmp_api_errstring(snmpv3_get_report_type(pdu)))));
        return;
    }
    if (pdu->errstat != SNMP_ERR_NOERROR) {
        // Version 1 ends a walk with noSuchName past the last object.
        if (request.kind == Walk && pdu->errstat == SNMP_ERR_NOSUCHNAME) {
            done.append({id, SnmpClient::NoError, QString(), request.variables});
            requests.remove(id);
            return;
        }
        QString name;
        long index = 1;
        for (netsnmp_variable_list *v = pdu->variables; v; v = v->next_variable, ++index) {
            if (index == pdu->errindex)
                name = SnmpValue::formatOid(v->name, v->name_length, form);
        }
        fail(id, SnmpClient::AgentError,
            name.isEmpty() ? SnmpValue::statusName(pdu->errstat)
                           : SnmpClient::tr("%1 (variable %2, %3)")
                                 .arg(SnmpValue::statusName(pdu->errstat))
                                 .arg(pdu->errindex)
                                 .arg(name));
        return;
    }
    bool ended = request.kind != Walk;
    int count = 0;
    for (netsnmp_variable_list *v = pdu->variables; v; v = v->next_variable) {
        ++count;
        if (request.kind == Walk) {
            if (v->type == SNMP_ENDOFMIBVIEW
                || snmp_oidtree_compare(
                       request.root.constData(), size_t(request.root.size()), v->name, v->name_length)
                    != 0) {
                ended = true;
                break;
            }
            if (snmp_oid_compare(
                    v->name, v->name_length, request.last.constData(), size_t(request.last.size()))
                <= 0) {
                fail(id, SnmpClient::NonIncreasingError,
                    SnmpClient::tr("The agent answered %1 after %2.")
                        .arg(SnmpValue::formatOid(v->name, v->name_length, form),
                            SnmpValue::formatOid(
                                request.last.constData(), size_t(request.last.size()), form)));
                return;
            }
            request.last = SnmpValue::Oid(v->name, v->name + v->name_length);
        }
        QVariant value;
        if (!SnmpValue::toVariant(v, form, &value))
            continue;
        if (request.variables.size() >= maxVariables) {
            fail(id, SnmpClient::TooManyVariablesError,
                SnmpClient::tr("The answer holds more than %1 variables.").arg(maxVariables));
            return;
        }
        const QString key = SnmpValue::formatOid(v->name, v->name_length, SnmpClient::LeadingDot);
        if (SnmpValue::needsRemembering(v->type)) {
            if (types.size() >= maxVariables)
                types.clear();
            types.insert(key, v->type);
        } else {
            types.remove(key);
        }
        request.variables.insert(SnmpValue::formatOid(v->name, v->name_length, form), value);
    }
    if (count == 0)
        ended = true; // an agent that answers nothing would loop the walk forever
    if (ended) {
        done.append({id, SnmpClient::NoError, QString(), request.variables});
        requests.remove(id);
    } else {
        walksToContinue.append(id);
    }
}

void SnmpClientPrivate::onReadable()
{
    if (!session)
        return;
    SnmpValue::readSession(session, socket);
    afterIo();
}

void SnmpClientPrivate::onTimeout()
{
    if (!session)
        return;
    snmp_sess_timeout(session);
    afterIo();
}

void SnmpClientPrivate::afterIo()
{
    if (probing && !engineId.isEmpty()) {
        // Discovered: reopen as the real session and send what waited.
        QVector<QPair<int, netsnmp_pdu *>> waiting;
        waiting.swap(held);
        delete notifier;
        notifier = nullptr;
        void *probe = session;
        session = nullptr;
        snmp_sess_close(probe);
        probing = false;
        byReqid.clear();
        const bool open = openSession();
        for (const auto &h : qAsConst(waiting)) {
            if (!open) {
                fail(h.first, SnmpClient::SendError, error);
                snmp_free_pdu(h.second);
            } else if (!send(h.first, h.second)) {
                fail(h.first, SnmpClient::SendError, error);
            }
        }
    }
    const QVector<int> walks = std::exchange(walksToContinue, {});
    for (int id : walks) {
        auto it = requests.constFind(id);
        if (it != requests.constEnd() && !send(id, nextWalkPdu(*it)))
            fail(id, SnmpClient::SendError, error);
    }
    rearm();
    QPointer<SnmpClient> guard(q);
    while (guard && !done.isEmpty()) {
        const Outcome outcome = done.takeFirst();
        if (outcome.error == SnmpClient::NoError)
            emit q->finished(outcome.id, outcome.variables);
        else
            emit q->failed(outcome.id, outcome.error, outcome.message);
    }
}

void SnmpClientPrivate::rearm()
{
    if (!session) {
        timer.stop();
        return;
    }
    int count = 0;
    int block = 1;
    timeval wait {};
    netsnmp_large_fd_set fds;
    netsnmp_large_fd_set_init(&fds, socket + 1);
    snmp_sess_select_info2(session, &count, &fds, &wait, &block);
    netsnmp_large_fd_set_cleanup(&fds);
    if (block)
        timer.stop();
    else
        timer.start(int(wait.tv_sec * 1000 + (wait.tv_usec + 999) / 1000));
}

SnmpClient::SnmpClient(const SnmpTarget &target, QObject *parent)
    : QObject(parent)
    , d(new SnmpClientPrivate(this, target))
{
    // For queued connections and QSignalSpy in hosts.
    qRegisterMetaType<SnmpClient::Error>();
    qRegisterMetaType<QHash<QString, QVariant>>();
}

SnmpClient::~SnmpClient() = default;

SnmpTarget SnmpClient::target() const
{
    return d->target;
}

void SnmpClient::setTarget(const SnmpTarget &target)
{
    d->closeSession();
    d->engineId.clear();
    d->types.clear();
    d->target = target;
}

SnmpClient::OidForm SnmpClient::oidForm() const
{
    return d->form;
}

void SnmpClient::setOidForm(OidForm form)
{
    d->form = form;
}

int SnmpClient::maxVariables() const
{
    return d->maxVariables;
}

void SnmpClient::setMaxVariables(int count)
{
    d->maxVariables = qMax(1, count);
}

int SnmpClient::bulkSize() const
{
    return d->bulkSize;
}

void SnmpClient::setBulkSize(int count)
{
    d->bulkSize = qBound(1, count, 1000);
}

int SnmpClient::get(const QStringList &oids)
{
    if (oids.isEmpty()) {
        d->error = SnmpClient::tr("No OIDs to read.");
        return 0;
    }
    netsnmp_pdu *pdu = snmp_pdu_create(SNMP_MSG_GET);
    SnmpValue::Oid name;
    for (const QString &text : oids) {
        if (!SnmpValue::parseOid(text, &name)) {
            snmp_free_pdu(pdu);
            d->error = SnmpClient::tr("\"%1\" is not an OID.").arg(text);
            return 0;
        }
        snmp_add_null_var(pdu, name.constData(), size_t(name.size()));
    }
    return d->start(SnmpClientPrivate::Get, pdu);
}

int SnmpClient::walk(const QString &subtree)
{
    SnmpValue::Oid root;
    if (!SnmpValue::parseOid(subtree, &root)) {
        d->error = SnmpClient::tr("\"%1\" is not an OID.").arg(subtree);
        return 0;
    }
    SnmpClientPrivate::Request request;
    request.last = root;
    return d->start(SnmpClientPrivate::Walk, d->nextWalkPdu(request), root);
}

int SnmpClient::set(const QHash<QString, QVariant> &variables)
{
    if (variables.isEmpty()) {
        d->error = SnmpClient::tr("No variables to write.");
        return 0;
    }
    netsnmp_pdu *pdu = snmp_pdu_create(SNMP_MSG_SET);
    SnmpValue::Oid name;
    for (auto it = variables.cbegin(); it != variables.cend(); ++it) {
        QString problem;
        if (!SnmpValue::parseOid(it.key(), &name))
            problem = SnmpClient::tr("\"%1\" is not an OID.").arg(it.key());
        else if (!SnmpValue::append(pdu, name, it.value(),
                     d->types.value(SnmpValue::formatOid(name.constData(), size_t(name.size()), LeadingDot))))
            problem = SnmpClient::tr("The value of %1 has no SNMP type.").arg(it.key());
        if (!problem.isEmpty()) {
            snmp_free_pdu(pdu);
            d->error = problem;
            return 0;
        }
    }
    return d->start(SnmpClientPrivate::Set, pdu);
}

QString SnmpClient::errorString() const
{
    return d->error;
}
