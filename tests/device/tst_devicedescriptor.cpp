#include "testdevice.h"

#include <device/devicedescriptor.h>
#include <memory/configmemorymap.h>
#include <memory/connectmemorymap.h>
#include <memory/statusmemorymap.h>
#include <ui/devicemainwindow.h>

#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QInputDialog>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include <cstdint>
#include <cstring>
#include <functional>

using VersionList = QList<unsigned short>;

Q_DECLARE_METATYPE(Core::SystemEvens)

namespace {
// Answers the next modal dialog from the event loop and reports whether one came.
class DialogAnswerer : public QObject
{
public:
    explicit DialogAnswerer(std::function<void(QInputDialog *)> answer)
        : handler(std::move(answer))
    {
        connect(&timer, &QTimer::timeout, this, [this] {
            auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            timer.stop();
            ++seen;
            handler(dialog);
        });
        timer.start(10);
    }
    int seen = 0;

private:
    std::function<void(QInputDialog *)> handler;
    QTimer timer;
};

#if defined(__GNUC__) || defined(__clang__)
// Slot of a virtual function in the vtable (Itanium C++ ABI: the pointer part
// of a member-function pointer is 1 + the byte offset of the slot).
template<typename F> int vtableSlot(F function)
{
    struct
    {
        std::uintptr_t ptr;
        std::ptrdiff_t adj;
    } rep;
    static_assert(sizeof(function) == sizeof(rep), "Itanium member-function pointer");
    std::memcpy(&rep, &function, sizeof(rep));
    if (!(rep.ptr & 1))
        return -1;
    return int((rep.ptr - 1) / sizeof(void *));
}

struct QObjectProbe : QObject
{
    static int lastSlot() { return vtableSlot(&QObjectProbe::disconnectNotify); }
};
#endif
} // namespace

class tst_DeviceDescriptor : public QObject
{
    Q_OBJECT
private slots:
    void parameterDefaults_data();
    void parameterDefaults();
    void parametersAreNotCreatedByReading();
    void interfaceSettings();
    void alarmStateEmitsOnChangeOnly_data();
    void alarmStateEmitsOnChangeOnly();
    void splitVersion16_data();
    void splitVersion16();
    void splitVersion32_data();
    void splitVersion32();
    void permission_data();
    void permission();
    void permissionIgnoredOverWeb();
    void needAutorisation_data();
    void needAutorisation();
    void autoriseWithStoredPassword();
    void autoriseWithoutNeed_data();
    void autoriseWithoutNeed();
    void autoriseDialog_data();
    void autoriseDialog();
    void autoriseAsksAgainAfterRefusal();
    void addEventText_data();
    void addEventText();
    void addressCheckSignals();
    void memoryMapsAreOwned();
    void metaObjectOrder();
    void virtualOrder();
};

void tst_DeviceDescriptor::parameterDefaults_data()
{
    QTest::addColumn<int>("parameter");
    QTest::addColumn<QString>("value");

    QTest::newRow("name") << 0 << "No Name";
    QTest::newRow("type") << 1 << "No type";
    QTest::newRow("address") << 2 << "";
    QTest::newRow("model value 4") << 4 << "0";
    QTest::newRow("model value 7") << 7 << "0";
    QTest::newRow("description") << 8 << "No Description";
}

void tst_DeviceDescriptor::parameterDefaults()
{
    QFETCH(int, parameter);
    QFETCH(QString, value);
    TestDevice device;
    const QVariant stored = device.getParameter(static_cast<DeviceDescriptor::DeviceParameter>(parameter));
    QCOMPARE(stored.userType(), int(QMetaType::QString));
    QCOMPARE(stored.toString(), value);
}

void tst_DeviceDescriptor::parametersAreNotCreatedByReading()
{
    TestDevice device;
    QCOMPARE(device.parameterCount(), 9);
    QVERIFY(!device.getParameter(static_cast<DeviceDescriptor::DeviceParameter>(3)).isValid());
    QVERIFY(!device.getParameter(static_cast<DeviceDescriptor::DeviceParameter>(12)).isValid());
    QCOMPARE(device.parameterCount(), 9);

    const QVariant icon = device.getParameter(DeviceDescriptor::DP_ICON);
    QCOMPARE(icon.userType(), qMetaTypeId<QIcon>());
    QVERIFY(!icon.value<QIcon>().isNull());

    device.setParameter(static_cast<DeviceDescriptor::DeviceParameter>(3), 42);
    QCOMPARE(device.getParameter(static_cast<DeviceDescriptor::DeviceParameter>(3)).toInt(), 42);
    QCOMPARE(device.parameterCount(), 10);
}

void tst_DeviceDescriptor::interfaceSettings()
{
    TestDevice device;
    for (int type = Core::IPT_SERIAL; type <= Core::IPT_WEB; ++type)
        QVERIFY(device.getInterfaceSettings(static_cast<Core::InterfaceProtocolType>(type)).isEmpty());

    QSignalSpy changed(&device, &DeviceDescriptor::interfSettingsChanged);
    device.setInterfaceSettings(Core::IPT_SNMP_V1, QStringLiteral("10.0.0.1;public;private"));
    device.setInterfaceSettings(Core::IPT_SNMP_V1, QStringLiteral("10.0.0.2;public;private"));
    QCOMPARE(device.getInterfaceSettings(Core::IPT_SNMP_V1), QStringLiteral("10.0.0.2;public;private"));
    QVERIFY(device.getInterfaceSettings(Core::IPT_SERIAL).isEmpty());
    // The model announces changes itself.
    QCOMPARE(changed.count(), 0);
}

void tst_DeviceDescriptor::alarmStateEmitsOnChangeOnly_data()
{
    QTest::addColumn<QList<int>>("levels");
    QTest::addColumn<int>("emitted");

    QTest::newRow("same as initial") << QList<int> {0} << 0;
    QTest::newRow("one change") << QList<int> {1} << 1;
    QTest::newRow("repeated level") << QList<int> {2, 2, 2} << 1;
    QTest::newRow("there and back") << QList<int> {3, 0} << 2;
}

void tst_DeviceDescriptor::alarmStateEmitsOnChangeOnly()
{
    QFETCH(QList<int>, levels);
    QFETCH(int, emitted);
    TestDevice device;
    QSignalSpy spy(&device, &DeviceDescriptor::alarmStateChanged);
    for (int level : levels)
        device.setAlarmState(static_cast<Core::AlarmType>(level));
    QCOMPARE(spy.count(), emitted);
    QCOMPARE(int(device.getAlarmState()), levels.last());
}

void tst_DeviceDescriptor::splitVersion16_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");

    QTest::newRow("2.3") << 0x0203 << 2 << 3;
    QTest::newRow("zero") << 0 << 0 << 0;
    QTest::newRow("all bits") << 0xFFFF << 255 << 255;
    QTest::newRow("minor only") << 0x00FE << 0 << 254;
}

void tst_DeviceDescriptor::splitVersion16()
{
    QFETCH(int, version);
    QFETCH(int, major);
    QFETCH(int, minor);
    const auto packed = static_cast<unsigned short>(version);
    unsigned char high = 0xAA;
    unsigned char low = 0xAA;
    DeviceDescriptor::splitVersion(packed, high, low);
    QCOMPARE(int(high), major);
    QCOMPARE(int(low), minor);
}

void tst_DeviceDescriptor::splitVersion32_data()
{
    QTest::addColumn<uint>("version");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("third");

    QTest::newRow("top byte dropped") << 0x12030405u << 3 << 4 << 5;
    QTest::newRow("all bits") << 0xFFFFFFFFu << 255 << 255 << 255;
    QTest::newRow("low bytes") << 0x00000102u << 0 << 1 << 2;
}

void tst_DeviceDescriptor::splitVersion32()
{
    QFETCH(uint, version);
    QFETCH(int, first);
    QFETCH(int, second);
    QFETCH(int, third);
    const unsigned int packed = version;
    unsigned char a = 0, b = 0, c = 0;
    DeviceDescriptor::splitVersion(packed, a, b, c);
    QCOMPARE(int(a), first);
    QCOMPARE(int(b), second);
    QCOMPARE(int(c), third);
}

void tst_DeviceDescriptor::permission_data()
{
    QTest::addColumn<int>("protocol");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("editable");

    QTest::newRow("serial read") << int(Core::IPT_SERIAL) << int(Core::ACM_READ) << false;
    QTest::newRow("serial read-write") << int(Core::IPT_SERIAL) << int(Core::ACM_READ_AND_WRITE) << true;
    QTest::newRow("serial deny") << int(Core::IPT_SERIAL) << int(Core::ACM_DENY) << true;
    QTest::newRow("snmp v3 read") << int(Core::IPT_SNMP_V3) << int(Core::ACM_READ) << false;
}

void tst_DeviceDescriptor::permission()
{
    QFETCH(int, protocol);
    QFETCH(int, mode);
    QFETCH(bool, editable);

    DeviceMainWindow window;
    TestDevice device;
    device.setWindow(&window);
    device.setCurrentProtocolType(static_cast<Core::InterfaceProtocolType>(protocol));
    device.setPermission(static_cast<Core::AccessMode>(mode));

    auto *apply = window.findChild<QAction *>(QStringLiteral("actionApply"));
    QVERIFY(apply);
    QCOMPARE(apply->isEnabled(), editable);
    // Only a read-only window keeps its actions locked after a transfer.
    window.disableInteractUi(false);
    QCOMPARE(apply->isEnabled(), editable);
}

void tst_DeviceDescriptor::permissionIgnoredOverWeb()
{
    DeviceMainWindow window;
    TestDevice device;
    device.setWindow(&window);
    device.setCurrentProtocolType(Core::IPT_WEB);
    device.setPermission(Core::ACM_READ);
    auto *apply = window.findChild<QAction *>(QStringLiteral("actionApply"));
    QVERIFY(apply->isEnabled());
    window.disableInteractUi(false);
    QVERIFY(apply->isEnabled());

    // Without a window there is nothing to restrict.
    TestDevice lone;
    lone.setPermission(Core::ACM_READ);
}

void tst_DeviceDescriptor::needAutorisation_data()
{
    QTest::addColumn<VersionList>("required");
    QTest::addColumn<VersionList>("exempt");
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("need");

    const VersionList threshold {0x0305};
    QTest::newRow("no lists") << VersionList() << VersionList() << 0x0305 << false;
    QTest::newRow("below threshold") << threshold << VersionList() << 0x0304 << false;
    QTest::newRow("at threshold") << threshold << VersionList() << 0x0305 << true;
    QTest::newRow("top of major") << threshold << VersionList() << 0x03FF << true;
    QTest::newRow("other major") << threshold << VersionList() << 0x0405 << false;
    QTest::newRow("lower major, higher minor") << threshold << VersionList() << 0x0206 << false;
    QTest::newRow("exempt wins") << threshold << VersionList {0x0307} << 0x0307 << false;
    QTest::newRow("exempt is exact") << threshold << VersionList {0x0307} << 0x0308 << true;
    QTest::newRow("any threshold of the major")
        << VersionList {0x0109, 0x0302} << VersionList() << 0x0303 << true;
}

void tst_DeviceDescriptor::needAutorisation()
{
    QFETCH(VersionList, required);
    QFETCH(VersionList, exempt);
    QFETCH(int, version);
    QFETCH(bool, need);

    TestDevice device;
    QVERIFY(!device.needAutorisation());
    device.setVersionLists(required, exempt);
    QCOMPARE(device.checkForNeedAutorisation(static_cast<unsigned short>(version)), need);
    QCOMPARE(device.needAutorisation(), need);
}

void tst_DeviceDescriptor::autoriseWithStoredPassword()
{
    TestDevice device;
    device.setVersionLists({0x0100}, {});
    device.setFirmware(0x0105);
    device.setPasswordEnc(QStringLiteral("stored"));

    DialogAnswerer guard([](QInputDialog *dialog) { dialog->reject(); });
    QVERIFY(device.autorise());
    QCOMPARE(guard.seen, 0);
    QCOMPARE(device.passwordsOffered, QStringList {QStringLiteral("stored")});
    // The version lists were not consulted.
    QVERIFY(!device.needAutorisation());
    QCOMPARE(device.getAutorisationResult(), 0);
}

void tst_DeviceDescriptor::autoriseWithoutNeed_data()
{
    QTest::addColumn<bool>("accept");
    QTest::addColumn<int>("afterPassword");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("code");

    QTest::newRow("accepted") << true << 0 << true << 0;
    QTest::newRow("refused") << false << 0 << false << 3;
    QTest::newRow("error code left behind") << true << 7 << false << 3;
}

void tst_DeviceDescriptor::autoriseWithoutNeed()
{
    QFETCH(bool, accept);
    QFETCH(int, afterPassword);
    QFETCH(bool, result);
    QFETCH(int, code);

    TestDevice device;
    device.acceptPassword = accept;
    device.codeAfterPassword = afterPassword;
    DialogAnswerer guard([](QInputDialog *dialog) { dialog->reject(); });
    QCOMPARE(device.autorise(), result);
    QCOMPARE(guard.seen, 0);
    QCOMPARE(device.passwordsOffered, QStringList {QString()});
    QCOMPARE(device.getAutorisationResult(), code);
}

void tst_DeviceDescriptor::autoriseDialog_data()
{
    QTest::addColumn<bool>("accept");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("modelAccepts");
    QTest::addColumn<bool>("result");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QStringList>("offered");

    QTest::newRow("ok") << true << "secret" << true << true << 0 << "secret" << QStringList {"secret"};
    QTest::newRow("ok, refused by the unit")
        << true << "wrong" << false << false << 3 << "" << QStringList {"wrong"};
    QTest::newRow("ok with nothing typed") << true << "" << true << true << 0 << "" << QStringList {""};
    QTest::newRow("cancel") << false << "typed" << true << false << 4 << "" << QStringList();
}

void tst_DeviceDescriptor::autoriseDialog()
{
    QFETCH(bool, accept);
    QFETCH(QString, typed);
    QFETCH(bool, modelAccepts);
    QFETCH(bool, result);
    QFETCH(int, code);
    QFETCH(QString, password);
    QFETCH(QStringList, offered);

    DeviceMainWindow window;
    TestDevice device;
    device.setWindow(&window);
    device.setVersionLists({0x0203}, {});
    device.setFirmware(0x0204);
    device.acceptPassword = modelAccepts;

    QString title, label;
    QWidget *parent = nullptr;
    int echo = -1;
    DialogAnswerer answerer([&](QInputDialog *dialog) {
        title = dialog->windowTitle();
        label = dialog->labelText();
        parent = dialog->parentWidget();
        echo = dialog->textEchoMode();
        dialog->setTextValue(typed);
        if (accept)
            dialog->accept();
        else
            dialog->reject();
    });

    QCOMPARE(device.autorise(), result);
    QCOMPARE(answerer.seen, 1);
    QCOMPARE(title, QStringLiteral("Autorisation"));
    QCOMPARE(label, QStringLiteral("Password"));
    QCOMPARE(parent, &window);
    QCOMPARE(echo, int(QLineEdit::Password));
    QCOMPARE(device.getAutorisationResult(), code);
    QCOMPARE(device.getPassword(), password);
    QCOMPARE(device.passwordsOffered, offered);
    QVERIFY(device.needAutorisation());
}

void tst_DeviceDescriptor::autoriseAsksAgainAfterRefusal()
{
    TestDevice device;
    device.setVersionLists({0x0100}, {});
    device.setFirmware(0x0100);
    device.acceptPassword = false;

    DialogAnswerer first([](QInputDialog *dialog) {
        dialog->setTextValue(QStringLiteral("wrong"));
        dialog->accept();
    });
    QVERIFY(!device.autorise());
    QCOMPARE(first.seen, 1);
    QVERIFY(device.getPassword().isEmpty());

    device.acceptPassword = true;
    DialogAnswerer second([](QInputDialog *dialog) {
        dialog->setTextValue(QStringLiteral("right"));
        dialog->accept();
    });
    QVERIFY(device.autorise());
    QCOMPARE(second.seen, 1);
    QCOMPARE(device.getPassword(), QStringLiteral("right"));

    // Once accepted the password is kept and the dialog stays away.
    DialogAnswerer third([](QInputDialog *dialog) { dialog->reject(); });
    QVERIFY(device.autorise());
    QCOMPARE(third.seen, 0);
}

void tst_DeviceDescriptor::addEventText_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("text");

    QTest::newRow("fresh") << QString() << QString() << "No Name:";
    QTest::newRow("named") << "Mux 7"
                           << "10.0.0.7"
                           << "Mux 7:10.0.0.7";
}

void tst_DeviceDescriptor::addEventText()
{
    QFETCH(QString, name);
    QFETCH(QString, address);
    QFETCH(QString, text);

    TestDevice device(address);
    if (!name.isEmpty())
        device.setParameter(DeviceDescriptor::DP_NAME, name);
    qRegisterMetaType<Core::SystemEvens>("Core::SystemEvens");
    QSignalSpy spy(&device, &DeviceDescriptor::newEvent);
    device.emitAddEvent(Core::SE_DEVICE_RESTART);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<Core::SystemEvens>(), Core::SE_DEVICE_RESTART);
    QCOMPARE(spy.at(0).at(1).toString(), text);
}

void tst_DeviceDescriptor::addressCheckSignals()
{
    TestDevice device;
    QSignalSpy check(&device, &DeviceDescriptor::checkAddr);
    QSignalSpy answer(&device, &DeviceDescriptor::setIP);
    device.checkAdr(QStringLiteral("17"));
    QCOMPARE(check.count(), 1);
    QCOMPARE(device.getNewAddr(), QStringLiteral("17"));
    device.setNewIP(false);
    device.setNewIP(true);
    QCOMPARE(answer.count(), 2);
    QCOMPARE(answer.at(0).at(0).toBool(), false);
    QCOMPARE(answer.at(1).at(0).toBool(), true);
}

void tst_DeviceDescriptor::memoryMapsAreOwned()
{
    auto *device = new TestDevice;
    QPointer<ConfigMemoryMap> first = device->getConfigMap();
    QPointer<ConfigMemoryMap> second = device->getSecondConfigMap();
    QPointer<StatusMemoryMap> status = device->getStatusMap();
    QPointer<ConnectMemoryMap> connection = device->getConnectMap();
    QVERIFY(first && second && status && connection);
    QVERIFY(first != second);
    QCOMPARE(first->parent(), device);
    QCOMPARE(status->parent(), device);
    QCOMPARE(connection->parent(), nullptr);
    delete device;
    QVERIFY(!first && !second && !status && !connection);
}

void tst_DeviceDescriptor::metaObjectOrder()
{
    const QStringList expected {"newRequest()", "send(QByteArray)", "systemMessage()", "frontPanelChanged()",
        "errorMessage(QString)", "alarmStateChanged()", "statusUpdated()", "interfSettingsChanged()",
        "uiClosed()", "serialState()", "checkAddr()", "setIP(bool)", "newEvent(Core::SystemEvens,QString)",
        "setData(QByteArray)", "setError()", "update()", "updateStatus()", "updateAlarmStatus(bool)",
        "updateAlarmStatus()", "setDateTime(QDateTime)", "resetStatistics()", "identify()",
        "checkAdr(QString)", "setNewIP(bool)", "getNewAddr()"};
    const QMetaObject &meta = DeviceDescriptor::staticMetaObject;
    QCOMPARE(meta.className(), "DeviceDescriptor");
    QCOMPARE(meta.methodCount() - meta.methodOffset(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(QString::fromLatin1(method.methodSignature()), expected.at(i));
        QCOMPARE(method.methodType(), i < 13 ? QMetaMethod::Signal : QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
    }
    QCOMPARE(meta.method(meta.methodOffset() + 24).returnType(), int(QMetaType::QString));
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 0);
    QCOMPARE(meta.enumeratorCount() - meta.enumeratorOffset(), 0);
}

void tst_DeviceDescriptor::virtualOrder()
{
#if defined(__GNUC__) || defined(__clang__)
    using D = DeviceDescriptor;
    const QVector<int> order {
        vtableSlot(&D::setAlarmState),
        vtableSlot(&D::getAlarmState),
        vtableSlot(&D::getParameter),
        vtableSlot(&D::setParameter),
        vtableSlot(&D::setParentWidget),
        vtableSlot(&D::showUi),
        vtableSlot(&D::getFrontPanel),
        vtableSlot(&D::closeUi),
        vtableSlot(&D::getCurrentProtocolType),
        vtableSlot(&D::setCurrentProtocolType),
        vtableSlot(&D::setInterfaceSettings),
        vtableSlot(&D::getInterfaceSettings),
        vtableSlot(&D::getRequestData),
        vtableSlot(&D::getSystemMessage),
        vtableSlot(&D::setDeviceTypeCode),
        vtableSlot(&D::getSerialState),
        vtableSlot(&D::setSerialState),
        vtableSlot(&D::cmdFactoryCode),
        vtableSlot(&D::showProgress),
        vtableSlot(&D::setProgressName),
        vtableSlot(&D::showFrontPanel),
        vtableSlot(&D::requestInProgress),
        vtableSlot(&D::stopRequestProgress),
        vtableSlot(&D::setPermission),
        vtableSlot(&D::canBeIdentified),
        vtableSlot(&D::setPassword),
        vtableSlot(&D::setBaseRootOid),
        vtableSlot(&D::setData),
        vtableSlot(&D::setError),
        vtableSlot(&D::update),
        vtableSlot(&D::updateStatus),
        vtableSlot(&D::updateAlarmStatus),
        vtableSlot(&D::setDateTime),
        vtableSlot(&D::resetStatistics),
        vtableSlot(&D::identify),
        vtableSlot(&D::checkAdr),
        vtableSlot(&D::setNewIP),
        vtableSlot(&D::getNewAddr),
        vtableSlot(&D::upload),
        vtableSlot(&D::saveMemory),
        vtableSlot(&D::applyChanges),
        vtableSlot(&D::toFactory),
        vtableSlot(&D::restartDevice),
        vtableSlot(&D::restoreDevice),
        vtableSlot(&D::loadSettingsFile),
        vtableSlot(&D::saveSettingsFile),
        vtableSlot(&D::switchToActive),
    };
    QCOMPARE(order.size(), 47);
    const int base = QObjectProbe::lastSlot();
    QVERIFY(base > 0);
    for (int i = 0; i < order.size(); ++i)
        QCOMPARE(order.at(i), base + 1 + i);
#else
    QSKIP("Needs the Itanium C++ ABI");
#endif
}

QTEST_MAIN(tst_DeviceDescriptor)
#include "tst_devicedescriptor.moc"
