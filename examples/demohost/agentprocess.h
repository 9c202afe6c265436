#ifndef AGENTPROCESS_H
#define AGENTPROCESS_H

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class QProcess;

// demoagent run as a child of the host: started with the host's options, its
// unit lines read until it says "ready", stopped when this object goes.
class AgentProcess : public QObject
{
    Q_OBJECT
public:
    struct Unit
    {
        int key = 0;
        bool snmp = false;
        QString address; // "127.0.0.1:PORT" or the path of a pseudo-terminal
    };

    explicit AgentProcess(QObject *parent = nullptr);
    ~AgentProcess() override;

    // Starts the program and waits (at most a few seconds) for its units.
    // Tries further UDP ports when the first ones are taken. False with
    // errorString() when the agent did not come up.
    bool start(const QString &program, const QStringList &arguments);
    QList<Unit> units() const { return found; }
    QString errorString() const { return error; }

private:
    bool startOnce(const QString &program, const QStringList &arguments, int port);
    void stop();

    QProcess *process = nullptr;
    QList<Unit> found;
    QString error;
};

#endif // AGENTPROCESS_H
