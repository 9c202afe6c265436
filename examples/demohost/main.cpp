// The demo host: a small but complete host application of the MuxCore
// library, with a simulated network of E1 multiplexers behind it.
//
//   demohost [--units N] [--seed N] [--lang CODE] [--offscreen DIR [--seconds S]]
//
// With --offscreen it runs without a display for a few seconds of simulated
// traffic, writes screenshots of the main window and of one configuration
// window into DIR and exits.
#include "hostwindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>
#include <QTimer>
#include <QTranslator>

int main(int argc, char **argv)
{
    // The platform is chosen when QApplication is built, so look ahead.
    for (int i = 1; i < argc; ++i) {
        if (qstrcmp(argv[i], "--offscreen") == 0)
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("MuxCore"));
    QApplication::setApplicationName(QStringLiteral("demohost"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Demo host of the MuxCore library on a simulated network."));
    parser.addHelpOption();
    const QCommandLineOption units(QStringLiteral("units"),
        QCoreApplication::translate("main", "Number of simulated units (1 to 2000)."), QStringLiteral("N"),
        QStringLiteral("12"));
    const QCommandLineOption seed(QStringLiteral("seed"),
        QCoreApplication::translate("main", "Seed of the simulated traffic."), QStringLiteral("N"),
        QStringLiteral("1"));
    const QCommandLineOption offscreen(QStringLiteral("offscreen"),
        QCoreApplication::translate("main", "Run without a display and write screenshots into DIR."),
        QStringLiteral("DIR"));
    const QCommandLineOption seconds(QStringLiteral("seconds"),
        QCoreApplication::translate("main", "Seconds of traffic before the screenshots (default 4)."),
        QStringLiteral("S"), QStringLiteral("4"));
    const QCommandLineOption layout(QStringLiteral("layout"),
        QCoreApplication::translate("main", "File that keeps the topology layout."), QStringLiteral("FILE"));
    const QCommandLineOption lang(QStringLiteral("lang"),
        QCoreApplication::translate("main", "Language of the library's texts (default: the system's)."),
        QStringLiteral("CODE"));
    parser.addOptions({units, seed, offscreen, seconds, layout, lang});
    parser.process(app);

    // Before any window exists: the library fills its dictionaries once, in the language then in force.
    QTranslator translator;
    const QLocale locale = parser.isSet(lang) ? QLocale(parser.value(lang)) : QLocale();
    if (translator.load(
            locale, QStringLiteral("muxcore"), QStringLiteral("_"), QStringLiteral(":/translations")))
        QCoreApplication::installTranslator(&translator);

    QTextStream err(stderr);
    bool ok = false;
    HostWindow::Options options;
    options.units = parser.value(units).toInt(&ok);
    if (!ok || options.units < 1 || options.units > 2000) {
        err << QCoreApplication::translate("main", "--units takes a number from 1 to 2000.") << '\n';
        return 2;
    }
    options.network.seed = parser.value(seed).toUInt(&ok);
    if (!ok) {
        err << QCoreApplication::translate("main", "--seed takes a whole number.") << '\n';
        return 2;
    }
    const double runSeconds = parser.value(seconds).toDouble(&ok);
    if (!ok || runSeconds < 0 || runSeconds > 3600) {
        err << QCoreApplication::translate("main", "--seconds takes a number from 0 to 3600.") << '\n';
        return 2;
    }
    options.topologyFile = parser.value(layout);

    HostWindow window(options);
    window.resize(1280, 800);
    window.show();
    window.start();

    if (parser.isSet(offscreen)) {
        const QString folder = parser.value(offscreen);
        QObject::connect(
            &window, &HostWindow::screenshotsTaken, &app, [&](bool taken, const QString &message) {
                QTextStream out(taken ? stdout : stderr);
                out << message << '\n' << window.statusText() << '\n';
                app.exit(taken ? 0 : 1);
            });
        QTimer::singleShot(static_cast<int>(runSeconds * 1000), &window,
            [&window, folder] { window.takeScreenshots(folder); });
    }
    return app.exec();
}
