#include <core/core.h>

#include <QtTest>

#include <QIcon>
#include <QImage>

// The icon bundle ships inside the library: every path a host or the
// configuration window names must load as a real picture.
class tst_Resources : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void iconLoads_data();
    void iconLoads();
};

void tst_Resources::initTestCase()
{
    // The bundle registers itself when the library loads; using one of its
    // symbols keeps the linker from dropping it.
    QCOMPARE(Core::alarmStr(Core::ALARM_OK), QStringLiteral("Ok"));
}

void tst_Resources::iconLoads_data()
{
    QTest::addColumn<QString>("path");

    const char *names[] = {"folder", "serial-port", "ethernet", "no_icon", "download", "upload",
                           "storage", "apply", "save", "close", "erase", "restart", "returned_black",
                           "disconnect", "connect", "switchActive", "StatAutoRefresh"};
    for (const char *name : names)
        QTest::newRow(name) << QStringLiteral(":/images/%1.png").arg(QLatin1String(name));
    QTest::newRow("default unit icon path") << QStringLiteral("://images/no_icon.png");
}

void tst_Resources::iconLoads()
{
    QFETCH(QString, path);
    QVERIFY(!QIcon(path).isNull());
    const QImage image(path);
    QVERIFY(!image.isNull());
    // Not a blank square: some pixels must be drawn.
    int drawn = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            drawn += qAlpha(image.pixel(x, y)) > 0;
    QVERIFY(drawn > image.width());
}

QTEST_MAIN(tst_Resources)
#include "tst_resources.moc"
