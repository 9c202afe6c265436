#ifndef TRAPWORDS_H
#define TRAPWORDS_H

#include <QCoreApplication>
#include <QHash>
#include <QString>
#include <QVariant>

// Turns a demo unit's trap, as its variables arrive by OID, into the words an
// operator reads in the trap list: the port, the event and the severity. A
// variable it does not know is kept under its OID, so nothing is lost.
class TrapWords
{
    Q_DECLARE_TR_FUNCTIONS(TrapWords)
public:
    // Readable name to readable value; alarm is the level the transport read
    // from the trap, used when the trap itself does not carry one.
    static QHash<QString, QVariant> describe(const QHash<QString, QVariant> &variables, int alarm);
    static QString severity(int alarm);

private:
    static QString portState(int state);
    static QString upTime(qulonglong ticks);
};

#endif // TRAPWORDS_H
