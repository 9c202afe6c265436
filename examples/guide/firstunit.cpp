// From an empty host to one unit on the map, the scene and its configuration
// window, polled through a loopback transport. Exits 0 once the unit has
// answered and its window is open; exits 1 when that does not happen in time.
#include "tinymux.h"

#include <device/map.h>
#include <topology/devicegraphicsview.h>
#include <topology/devicescene.h>
#include <ui/devicemainwindow.h>

#include <QApplication>
#include <QLocale>
#include <QTimer>
#include <QTranslator>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);

    //! [translator]
    // Before the first window: the library fills its dictionaries once, in the language then in force.
    QTranslator translator;
    if (translator.load(
            QLocale(), QStringLiteral("muxcore"), QStringLiteral("_"), QStringLiteral(":/translations")))
        QCoreApplication::installTranslator(&translator);
    //! [translator]

    //! [map]
    Map map;
    auto *unit = new TinyMux(QStringLiteral("3")); // the map deletes it when the unit is removed
    const unsigned short key = map.addItem(QModelIndex(), unit, {});
    //! [map]

    //! [transport]
    // A loopback transport. A real host writes the bytes to its serial port or
    // SNMP session and hands the complete reply to answer(), or a failure to replyError().
    QObject::connect(&map, &Map::request, &map, [&map](int unitKey, QByteArray bytes) {
        if (bytes.startsWith('S'))
            map.answer(unitKey, QByteArray::fromHex("02001700")); // minor alarm, 23 degrees
        else
            map.replyError(unitKey);
    });
    //! [transport]

    //! [scene]
    DeviceScene scene;
    DeviceGraphicsView view(&scene);
    scene.addDeviceItem(key, unit->getFrontPanel(), QPointF(40, 40), -1.0);
    QObject::connect(&map, &Map::frontpanel, &scene, &DeviceScene::setFrontPanel);
    QObject::connect(&map, &Map::alarmStateChanged, &scene, [&map, &scene] {
        QHash<unsigned short, Core::AlarmType> alarms = map.getAlarmMap();
        scene.setAlarmMap(alarms);
    });
    QObject::connect(&scene, &DeviceScene::doubleClick, &map, [&map](unsigned short unitKey) {
        if (DeviceDescriptor *device = map.getDevice(unitKey))
            device->showUi();
    });
    view.show();
    //! [scene]

    //! [scan]
    // The map has no timer of its own: the host repeats the pass.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &map, [&map] {
        if (!map.scanInproccess())
            map.startScan();
    });
    poll.start(1000);
    map.startScan();
    //! [scan]

    // The check: the answer reached the model, the scene and the window.
    QObject::connect(&map, &Map::frontpanel, &app, [&](unsigned short unitKey, const QString &panel) {
        if (unitKey != key || unit->temperature() != 23 || !panel.contains(QLatin1String("23 C")))
            return;
        if (map.getAlarmMap().value(key) != Core::ALARM_MINOR)
            return;
        unit->showUi();
        app.exit(unit->getConfigMap() && DeviceMainWindow::getWindowsCount() == 1 ? 0 : 1);
    });
    QTimer::singleShot(20000, &app, [&app] { app.exit(1); });
    return app.exec();
}
