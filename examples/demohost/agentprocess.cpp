#include "agentprocess.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QUdpSocket>

AgentProcess::AgentProcess(QObject *parent)
    : QObject(parent)
{
}

AgentProcess::~AgentProcess()
{
    stop();
}

bool AgentProcess::start(const QString &program, const QStringList &arguments)
{
    // A port the system gives out is free now; the ports after it most
    // likely too. If not, the agent says so and another range is tried,
    // below the system's own range, where only explicit binds (another
    // agent's block, say) can be in the way.
    for (int attempt = 0; attempt < 10; ++attempt) {
        QUdpSocket probe;
        probe.bind(QHostAddress(QHostAddress::LocalHost), 0);
        int port = probe.localPort();
        probe.close();
        if (attempt > 0 || port <= 0 || port > 60000)
            port = 10000 + static_cast<int>(QRandomGenerator::global()->bounded(17000));
        if (startOnce(program, arguments, port))
            return true;
    }
    return false;
}

bool AgentProcess::startOnce(const QString &program, const QStringList &arguments, int port)
{
    stop();
    found.clear();
    process = new QProcess(this);
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process->start(program, QStringList {QStringLiteral("--snmp-port"), QString::number(port)} + arguments);
    if (!process->waitForStarted(5000)) {
        error = tr("%1 could not be started: %2").arg(program, process->errorString());
        return false;
    }
    QDeadlineTimer deadline(15000);
    while (!deadline.hasExpired()) {
        if (!process->canReadLine() && !process->waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            break;
        while (process->canReadLine()) {
            const QString line = QString::fromLocal8Bit(process->readLine()).trimmed();
            if (line == QLatin1String("ready"))
                return true;
            const QStringList parts = line.split(QLatin1Char(' '));
            if (parts.size() == 4 && parts.at(0) == QLatin1String("unit"))
                found.append({parts.at(1).toInt(), parts.at(2) == QLatin1String("snmp"), parts.at(3)});
        }
    }
    error = tr("%1 did not report ready.").arg(program);
    stop();
    return false;
}

void AgentProcess::stop()
{
    if (!process)
        return;
    if (process->state() != QProcess::NotRunning) {
        process->terminate();
        if (!process->waitForFinished(5000)) {
            process->kill();
            process->waitForFinished(2000);
        }
    }
    delete process;
    process = nullptr;
}
