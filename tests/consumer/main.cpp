// A host as small as it gets: links the installed library and uses its
// vocabulary, conversions, icon bundle and embedded translations.
#include <core/convert.h>
#include <core/core.h>

#include <QGuiApplication>
#include <QIcon>
#include <QTranslator>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    if (Core::alarmStr(Core::ALARM_MAJOR) != QLatin1String("Major"))
        return 1;
    if (Convert::crc32(QStringLiteral("123456789")).toHex() != "cbf43926")
        return 2;
    if (QIcon(QStringLiteral("://images/no_icon.png")).isNull())
        return 3;
    QTranslator german;
    if (!german.load(QStringLiteral(":/translations/muxcore_de.qm"))
        || german.translate("Core", "Deny") != QLatin1String("Kein Zugriff"))
        return 4;
    return 0;
}
