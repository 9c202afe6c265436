// The demo's units behind real wires: SNMP units through net-snmp's agent
// library, one UDP endpoint each on the loopback address, and serial units on
// pseudo-terminals.
//
//   demoagent --snmp-port PORT [--community NAME]
//             [--v3-user NAME --auth-pass TEXT --priv-pass TEXT]
//             [--units N] [--trap-port PORT]
//
// It prints "unit KEY snmp 127.0.0.1:PORT" or "unit KEY serial PATH" per unit,
// then "ready", and ends on SIGTERM or SIGINT.
#include "faultplan.h"
#include "seriallines.h"
#include "snmpendpoints.h"

#include <simulatedunit.h>
#include <unitlayout.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>

#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    // Nothing but write() is safe here; the Qt loop reads the pipe.
    [[maybe_unused]] const ssize_t ignored = write(signalPipe[1], &byte, 1);
}

// Each SNMP unit holds a socket and each serial unit two descriptors.
void raiseDescriptorLimit()
{
    rlimit limit {};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

struct Settings
{
    int snmpPort = 0;
    int units = 12;
    bool serial = true;
    quint32 seed = 1;
    double lossRate = 0.0;
    QSet<int> silent;
    int tickMs = 250;
    SnmpEndpoints::Options snmp;
};

// False with a message on stderr when the command line does not hold.
bool readCommandLine(const QCoreApplication &app, Settings &settings)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The demo's units on SNMP endpoints and serial lines."));
    parser.addHelpOption();
    const QCommandLineOption snmpPort(QStringLiteral("snmp-port"),
        QStringLiteral("First UDP port; each SNMP unit takes the next one."), QStringLiteral("PORT"));
    const QCommandLineOption community(QStringLiteral("community"), QStringLiteral("Read-write community."),
        QStringLiteral("NAME"), QStringLiteral("public"));
    const QCommandLineOption user(
        QStringLiteral("v3-user"), QStringLiteral("SNMPv3 user (SHA, AES)."), QStringLiteral("NAME"));
    const QCommandLineOption auth(QStringLiteral("auth-pass"),
        QStringLiteral("Its authentication pass phrase."), QStringLiteral("TEXT"));
    const QCommandLineOption priv(
        QStringLiteral("priv-pass"), QStringLiteral("Its privacy pass phrase."), QStringLiteral("TEXT"));
    const QCommandLineOption units(QStringLiteral("units"), QStringLiteral("Number of units."),
        QStringLiteral("N"), QStringLiteral("12"));
    const QCommandLineOption trapPort(QStringLiteral("trap-port"),
        QStringLiteral("UDP port on 127.0.0.1 that receives the traps."), QStringLiteral("PORT"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("Seed of the simulated traffic."),
        QStringLiteral("N"), QStringLiteral("1"));
    const QCommandLineOption loss(QStringLiteral("loss"), QStringLiteral("Share of requests lost (0 to 1)."),
        QStringLiteral("RATE"), QStringLiteral("0"));
    const QCommandLineOption silent(QStringLiteral("silent"),
        QStringLiteral("Units that never answer (comma-separated keys)."), QStringLiteral("KEYS"));
    const QCommandLineOption tick(QStringLiteral("tick-ms"),
        QStringLiteral("Milliseconds per simulated second."), QStringLiteral("MS"), QStringLiteral("250"));
    const QCommandLineOption table(QStringLiteral("table-rows"),
        QStringLiteral("Rows of a large table every SNMP unit serves."), QStringLiteral("N"),
        QStringLiteral("0"));
    const QCommandLineOption snmpOnly(
        QStringLiteral("snmp-only"), QStringLiteral("Every unit on SNMP, no serial lines."));
    parser.addOptions(
        {snmpPort, community, user, auth, priv, units, trapPort, seed, loss, silent, tick, table, snmpOnly});
    parser.process(app);

    QTextStream err(stderr);
    bool ok = true;
    auto number = [&](const QCommandLineOption &option, int low, int high) {
        bool good = false;
        const int value = parser.value(option).toInt(&good);
        if (!good || value < low || value > high) {
            err << QStringLiteral("--%1 takes a number from %2 to %3.\n")
                       .arg(option.names().first())
                       .arg(low)
                       .arg(high);
            ok = false;
        }
        return value;
    };
    if (!parser.isSet(snmpPort)) {
        err << "--snmp-port is required.\n";
        return false;
    }
    settings.snmpPort = number(snmpPort, 1024, 65535);
    settings.units = number(units, 1, 5000);
    settings.tickMs = number(tick, 10, 60000);
    settings.snmp.tableRows = number(table, 0, 1000000);
    if (parser.isSet(trapPort))
        settings.snmp.trapPort = number(trapPort, 1, 65535);
    settings.seed = parser.value(seed).toUInt();
    settings.lossRate = qBound(0.0, parser.value(loss).toDouble(), 1.0);
    for (const QString &key : parser.value(silent).split(QLatin1Char(','), Qt::SkipEmptyParts))
        settings.silent.insert(key.toInt());
    settings.serial = !parser.isSet(snmpOnly);
    settings.snmp.community = parser.value(community);
    settings.snmp.v3User = parser.value(user);
    settings.snmp.authPass = parser.value(auth);
    settings.snmp.privPass = parser.value(priv);
    if (!settings.snmp.v3User.isEmpty()
        && (settings.snmp.authPass.size() < 8 || settings.snmp.privPass.size() < 8)) {
        err << "--v3-user needs --auth-pass and --priv-pass of at least 8 characters each.\n";
        ok = false;
    }
    return ok;
}

bool watchSignals(QCoreApplication &app)
{
    if (pipe(signalPipe) != 0)
        return false;
    fcntl(signalPipe[0], F_SETFD, FD_CLOEXEC);
    fcntl(signalPipe[1], F_SETFD, FD_CLOEXEC);
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, &app);
    QObject::connect(notifier, &QSocketNotifier::activated, &app, &QCoreApplication::quit);
    struct sigaction action
    {
    };
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("demoagent"));
    Settings settings;
    if (!readCommandLine(app, settings))
        return 2;
    raiseDescriptorLimit();
    if (!watchSignals(app))
        return 1;

    QTextStream out(stdout);
    QTextStream err(stderr);
    FaultPlan faults(settings.seed, settings.lossRate, settings.silent);
    SnmpEndpoints snmp(settings.snmp, &faults);
    SerialLines serial(&faults);
    if (!snmp.start()) {
        err << "The SNMP agent could not be started.\n";
        return 1;
    }

    // Keys count from 1, as the host shows them; the plan of the network is
    // the one the demo host uses for its simulated units.
    std::vector<std::pair<int, std::unique_ptr<SimulatedUnit>>> units;
    int port = settings.snmpPort;
    for (int i = 0; i < settings.units; ++i) {
        const int key = i + 1;
        const bool isSnmp = !settings.serial || UnitLayout::isSnmpUnit(i);
        auto unit
            = std::make_unique<SimulatedUnit>(i, isSnmp, UnitLayout::firmwareOf(i), UnitLayout::unitIp(i));
        if (isSnmp) {
            if (port > 65535 || !snmp.addUnit(key, unit.get(), port)) {
                err << QStringLiteral("UDP port 127.0.0.1:%1 cannot be used.\n").arg(port);
                return 1;
            }
            out << QStringLiteral("unit %1 snmp 127.0.0.1:%2\n").arg(key).arg(port++);
        } else {
            const QString path = serial.addUnit(key, unit.get());
            if (path.isEmpty()) {
                err << "No pseudo-terminal is left.\n";
                return 1;
            }
            out << QStringLiteral("unit %1 serial %2\n").arg(key).arg(path);
        }
        units.emplace_back(key, std::move(unit));
    }
    out << "ready" << Qt::endl;

    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, &app, [&] {
        for (auto &entry : units) {
            const QList<SimulatedUnit::Event> events = entry.second->tick(faults.random());
            if (!entry.second->isSnmp())
                continue;
            for (const SimulatedUnit::Event &event : events)
                snmp.sendTrap(entry.first, event.variables);
        }
        snmp.invalidate();
    });
    ticker.start(settings.tickMs);
    return app.exec();
}
