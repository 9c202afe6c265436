#ifndef SNMPCLIENT_H
#define SNMPCLIENT_H

#include "muxcore_snmp_export.h"
#include "snmp/snmptarget.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

class SnmpClientPrivate;

/**
 * An asynchronous SNMP manager for one agent, driven by the Qt event loop.
 *
 * Each operation queues a request and returns at once with a request id;
 * its result comes later as exactly one finished() or failed() signal with
 * that id, at the latest when the target's timeout has passed once per try
 * (timeout × (retries + 1), per exchange of a walk). Several requests may be
 * outstanding at a time. Nothing ever blocks the calling thread.
 *
 * Variables are given and returned as a variable set, a
 * QHash<QString, QVariant> from OID text to value, the form the library's
 * memory maps load and save. OIDs are read in either dotted form and
 * handed out in the one form oidForm() selects. Values map as follows
 * (wire type → QVariant when received; QVariant → wire type when set):
 *
 * | Wire type                   | Received as                              |
 * |-----------------------------|------------------------------------------|
 * | INTEGER                     | `int`                                    |
 * | Counter32, Gauge32, TimeTicks | `uint`                                 |
 * | Counter64                   | `qulonglong`                             |
 * | OCTET STRING, Opaque        | `QString`, one character per byte (Latin-1) |
 * | IpAddress                   | `QString` in dotted decimal              |
 * | OBJECT IDENTIFIER           | `QString` in the client's OID form       |
 * | NULL                        | invalid `QVariant`                       |
 * | noSuchObject, noSuchInstance, endOfMibView | left out of the set       |
 *
 * A set sends each variable with the wire type its OID last arrived with at
 * this client, so values loaded from the agent go back as the agent expects
 * them (the client remembers the types other than INTEGER and OCTET STRING,
 * of at most maxVariables() OIDs). Any other OID takes its type from the value:
 * `bool` and the integer types → INTEGER when the value fits 32 bits signed,
 * else Gauge32 up to 4294967295, else refused; `double` → INTEGER when it is
 * a whole number in that range; `QString` → OCTET STRING of its Latin-1 bytes
 * (of its UTF-8 bytes when it holds a character above U+00FF);
 * `QByteArray` → OCTET STRING as it stands; `QHostAddress` (IPv4) →
 * IpAddress. Any other value makes set() return 0.
 *
 * Cost: one UDP socket (one file descriptor) and one socket notifier per
 * client while it has a session, and about 9 KiB of memory; the session
 * opens on the first request and stays open until the target changes or the
 * client is destroyed. Descriptors above FD_SETSIZE work, but a host with a
 * thousand clients needs a descriptor limit (RLIMIT_NOFILE) above the usual
 * soft limit of 1024.
 */
class MUXCORE_SNMP_EXPORT SnmpClient : public QObject
{
    Q_OBJECT
public:
    /** Why a request failed; carried by failed(). */
    enum Error {
        NoError, ///< No failure (never signalled).
        /**
         * No answer within the timeout after all retries. Version 1 and 2c
         * agents drop requests with a wrong community without a word, so a
         * wrong community also ends here.
         */
        TimeoutError,
        /**
         * Version 3 security refused the exchange: unknown user, wrong
         * authentication or privacy passphrase, unsupported security level,
         * or a message outside the time window.
         */
        AuthenticationError,
        /**
         * The agent answered with an error status (tooBig, noSuchName,
         * badValue, wrongType, notWritable, ...); the message begins with
         * the status name as the SNMP standards spell it and names the
         * variable it concerns.
         */
        AgentError,
        /** A walk got an OID that did not follow the one before it; the walk stops. */
        NonIncreasingError,
        /** The answers held more variables than maxVariables(); the rest is dropped. */
        TooManyVariablesError,
        /** The request could not be encoded or sent (socket failure, malformed answer). */
        SendError
    };
    Q_ENUM(Error)

    /** The form of the OID texts the client hands out. */
    enum OidForm {
        /**
         * ".1.3.6.1.2.1.1.1.0", the form of the library's own start
         * addresses (such as the G.826 counters'). Items whose start address
         * lacks the leading dot still match it, since they match by
         * substring; so this form reaches items written either way.
         */
        LeadingDot,
        /** "1.3.6.1.2.1.1.1.0", the form net-snmp's tools print with -On. */
        NoLeadingDot
    };
    Q_ENUM(OidForm)

    /** A client for the target; no socket is opened until the first request. */
    explicit SnmpClient(const SnmpTarget &target, QObject *parent = nullptr);
    /** Closes the session; requests still pending end without a signal. */
    ~SnmpClient() override;

    /** The agent this client talks to. */
    SnmpTarget target() const;
    /**
     * Points the client at another agent. Pending requests end without a
     * signal and the session is reopened on the next request.
     */
    void setTarget(const SnmpTarget &target);

    /** The form of handed-out OIDs; LeadingDot by default. */
    OidForm oidForm() const;
    /** Chooses the form of OIDs in later results. */
    void setOidForm(OidForm form);

    /**
     * The most variables one request may bring back (a walk counts all its
     * exchanges), 100000 by default, so that an agent cannot make the client
     * grow without bound.
     */
    int maxVariables() const;
    /** Sets maxVariables(); values below 1 are taken as 1. */
    void setMaxVariables(int count);

    /** The max-repetitions of each GETBULK exchange of a walk; 20 by default. */
    int bulkSize() const;
    /** Sets bulkSize(), from 1 to 1000 (clamped). */
    void setBulkSize(int count);

    /**
     * Reads the given variables in one GET.
     *
     * Returns the request id (above 0), or 0 when nothing was sent: no OIDs,
     * an OID that does not parse, or a target that cannot be used
     * (errorString() says why). finished() carries the variables the agent
     * has; with version 1 a missing one fails the whole request with
     * AgentError "noSuchName".
     */
    int get(const QStringList &oids);
    /**
     * Reads every variable below the subtree: GETNEXT exchanges with
     * version 1, GETBULK with 2c and 3.
     *
     * Returns the request id, or 0 when the subtree does not parse or the
     * target cannot be used. finished() carries all variables of the
     * subtree (empty when it holds none).
     */
    int walk(const QString &subtree);
    /**
     * Writes the variable set in one SET, typed as the class description
     * says.
     *
     * Returns the request id, or 0 for an empty set, an OID that does not
     * parse, a value with no wire type, or a target that cannot be used.
     * finished() carries the variables as the agent confirmed them.
     */
    int set(const QHash<QString, QVariant> &variables);

    /** Why the last operation returned 0; empty after one that was sent. */
    QString errorString() const;

signals:
    /** Request id succeeded; variables is its variable set. */
    void finished(int id, const QHash<QString, QVariant> &variables);
    /** Request id failed for error; message is a readable explanation. */
    void failed(int id, SnmpClient::Error error, const QString &message);

private:
    friend class SnmpClientPrivate;
    std::unique_ptr<SnmpClientPrivate> d;
};

#endif // SNMPCLIENT_H
