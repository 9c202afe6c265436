// The demo host: a small but complete host application of the MuxCore
// library. By default it starts demoagent beside it and manages the agent's
// units over real UDP and pseudo-terminals.
//
//   demohost [--units N] [--seed N] [--lang CODE] [--offscreen DIR [--seconds S]]
//            [--simulated] [--agent ADDRESS:PORT ...]
//            [--community NAME] [--v3-user NAME --auth-pass TEXT --priv-pass TEXT]
//
// With --offscreen it runs without a display for a few seconds of traffic,
// writes screenshots of the main window and of one configuration window into
// DIR and exits.
#include "hostwindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>

#include <sys/resource.h>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("main", text);
}

// One descriptor per serial line and per SNMP client: a thousand units need
// more than the usual soft limit of 1024.
void raiseDescriptorLimit()
{
    rlimit limit {};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

struct CommandLine
{
    QCommandLineOption units {QStringLiteral("units"), tr("Number of units (1 to 2000)."),
        QStringLiteral("N"), QStringLiteral("12")};
    QCommandLineOption seed {QStringLiteral("seed"), tr("Seed of the simulated traffic."),
        QStringLiteral("N"), QStringLiteral("1")};
    QCommandLineOption offscreen {QStringLiteral("offscreen"),
        tr("Run without a display and write screenshots into DIR."), QStringLiteral("DIR")};
    QCommandLineOption seconds {QStringLiteral("seconds"),
        tr("Seconds of traffic before the screenshots (default 4)."), QStringLiteral("S"),
        QStringLiteral("4")};
    QCommandLineOption layout {
        QStringLiteral("layout"), tr("File that keeps the topology layout."), QStringLiteral("FILE")};
    QCommandLineOption lang {QStringLiteral("lang"),
        tr("Language of the library's texts (default: the system's)."), QStringLiteral("CODE")};
    QCommandLineOption simulated {QStringLiteral("simulated"), tr("Simulate the units inside the host.")};
    QCommandLineOption agent {QStringLiteral("agent"),
        tr("Add a unit at an SNMP agent started elsewhere (repeatable); no demoagent is started."),
        QStringLiteral("ADDRESS:PORT")};
    QCommandLineOption community {QStringLiteral("community"), tr("SNMP community (default public)."),
        QStringLiteral("NAME"), QStringLiteral("public")};
    QCommandLineOption user {
        QStringLiteral("v3-user"), tr("SNMPv3 user, SHA and AES."), QStringLiteral("NAME")};
    QCommandLineOption auth {
        QStringLiteral("auth-pass"), tr("Its authentication pass phrase."), QStringLiteral("TEXT")};
    QCommandLineOption priv {
        QStringLiteral("priv-pass"), tr("Its privacy pass phrase."), QStringLiteral("TEXT")};
    QCommandLineParser parser;

    void process(const QApplication &app)
    {
        parser.setApplicationDescription(tr("Demo host of the MuxCore library."));
        parser.addHelpOption();
        parser.addOptions(
            {units, seed, offscreen, seconds, layout, lang, simulated, agent, community, user, auth, priv});
        parser.process(app);
    }
};

bool parseEndpoint(const QString &text, const SnmpTarget &credentials, SnmpTarget &target)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool ok = false;
    const uint port = text.mid(colon + 1).toUInt(&ok);
    target = credentials;
    target.host = QHostAddress(text.left(colon));
    target.port = static_cast<quint16>(port);
    return colon > 0 && ok && port > 0 && port < 65536 && !target.host.isNull();
}

// The options of the window from the command line; false with a message.
bool readOptions(const CommandLine &line, HostWindow::Options &options, QString &message)
{
    const QCommandLineParser &parser = line.parser;
    bool ok = false;
    options.units = parser.value(line.units).toInt(&ok);
    if (!ok || options.units < 1 || options.units > 2000) {
        message = tr("--units takes a number from 1 to 2000.");
        return false;
    }
    options.network.seed = parser.value(line.seed).toUInt(&ok);
    if (!ok) {
        message = tr("--seed takes a whole number.");
        return false;
    }
    options.topologyFile = parser.value(line.layout);
    options.simulated = parser.isSet(line.simulated);
    options.credentials.community = parser.value(line.community);
    if (parser.isSet(line.user)) {
        options.credentials.version = SnmpTarget::V3;
        options.credentials.user = parser.value(line.user);
        options.credentials.authProtocol = SnmpTarget::SHA;
        options.credentials.authPassphrase = parser.value(line.auth);
        options.credentials.privProtocol = SnmpTarget::AES;
        options.credentials.privPassphrase = parser.value(line.priv);
    }
    for (const QString &endpoint : parser.values(line.agent)) {
        SnmpTarget target;
        if (!parseEndpoint(endpoint, options.credentials, target)) {
            message = tr("--agent takes a numeric address and a port, such as 127.0.0.1:1161.");
            return false;
        }
        options.agents.append(target);
    }
    // demoagent is built beside the host.
    if (!options.simulated && options.agents.isEmpty())
        options.agentProgram
            = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("demoagent"));
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    // The platform is chosen when QApplication is built, so look ahead.
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--offscreen") == 0)
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    raiseDescriptorLimit();
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // Qt 6 does both by itself: follow the screen's scale, and draw the
    // library's @2x icons there instead of blowing up the small ones.
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("MuxCore"));
    QApplication::setApplicationName(QStringLiteral("demohost"));

    CommandLine line;
    line.process(app);

    // Before any window exists: the library fills its dictionaries once, in the language then in force.
    QTranslator translator;
    const QLocale locale = line.parser.isSet(line.lang) ? QLocale(line.parser.value(line.lang)) : QLocale();
    if (translator.load(
            locale, QStringLiteral("muxcore"), QStringLiteral("_"), QStringLiteral(":/translations")))
        QCoreApplication::installTranslator(&translator);

    QTextStream err(stderr);
    HostWindow::Options options;
    QString message;
    if (!readOptions(line, options, message)) {
        err << message << '\n';
        return 2;
    }
    bool ok = false;
    const double runSeconds = line.parser.value(line.seconds).toDouble(&ok);
    if (!ok || runSeconds < 0 || runSeconds > 3600) {
        err << tr("--seconds takes a number from 0 to 3600.") << '\n';
        return 2;
    }

    HostWindow window(options);
    window.resize(1280, 800);
    window.show();
    if (!window.start()) {
        err << window.startError() << '\n';
        return 1;
    }

    if (line.parser.isSet(line.offscreen)) {
        const QString folder = line.parser.value(line.offscreen);
        QObject::connect(&window, &HostWindow::screenshotsTaken, &app, [&](bool taken, const QString &text) {
            QTextStream out(taken ? stdout : stderr);
            out << text << '\n' << window.statusText() << '\n';
            app.exit(taken ? 0 : 1);
        });
        QTimer::singleShot(static_cast<int>(runSeconds * 1000), &window,
            [&window, folder] { window.takeScreenshots(folder); });
    }
    return app.exec();
}
