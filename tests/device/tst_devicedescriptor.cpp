#include "testdevice.h"

#include <device/devicedescriptor.h>
#include <ui/devicemainwindow.h>

#include "../ui/modalanswer.h"
#include "metaorder.h"

#include <QAction>
#include <QIcon>
#include <QInputDialog>
#include <QLineEdit>
#include <QtTest>

using VersionList = QList<unsigned short>;
Q_DECLARE_METATYPE(Core::SystemEvens)

namespace {
// One login attempt: the unit's state, what the operator and the model do,
// then what must follow.
struct Login
{
    QString stored;
    int firmware;
    bool accept;
    QString typed;
    bool modelAccepts;
    int codeLeft; // what the model's setPassword leaves behind
    bool result;
    int code;
    QString password;
    QStringList offered;
    int dialogs;
};
} // namespace
Q_DECLARE_METATYPE(Login)

class tst_DeviceDescriptor : public QObject
{
    Q_OBJECT
private slots:
    void defaults()
    {
        TestDevice device;
        QStringList texts;
        for (int p = 0; p < 9; ++p) {
            const QVariant value = device.getParameter(static_cast<DeviceDescriptor::DeviceParameter>(p));
            texts << (value.isValid() ? value.toString() : "invalid");
        }
        QCOMPARE(texts.join('|'), QStringLiteral("No Name|No type||invalid|0|0|0|0|No Description"));
        // Reading a missing parameter does not create it.
        QCOMPARE(device.parameterCount(), 9);
        const QVariant icon = device.getParameter(DeviceDescriptor::DP_ICON);
        QVERIFY(icon.userType() == qMetaTypeId<QIcon>() && !icon.value<QIcon>().isNull());
        QSignalSpy changed(&device, &DeviceDescriptor::interfSettingsChanged);
        device.setInterfaceSettings(Core::IPT_SNMP_V1, QStringLiteral("10.0.0.1;public"));
        device.setInterfaceSettings(Core::IPT_SNMP_V1, QStringLiteral("10.0.0.2;public"));
        QStringList settings; // and no signal for them
        for (int type = Core::IPT_SERIAL; type <= Core::IPT_WEB; ++type)
            settings << device.getInterfaceSettings(static_cast<Core::InterfaceProtocolType>(type));
        QCOMPARE(
            settings.join('|') + QString::number(changed.count()), QStringLiteral("|10.0.0.2;public||0"));
    }
    void alarmStateEmitsOnChangeOnly_data()
    {
        QTest::addColumn<QList<int>>("levels");
        QTest::addColumn<int>("emitted");

        QTest::newRow("same as initial") << QList<int> {0} << 0;
        QTest::newRow("repeated level") << QList<int> {2, 2, 2} << 1;
        QTest::newRow("there and back") << QList<int> {3, 0} << 2;
    }
    void alarmStateEmitsOnChangeOnly()
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
    void permission_data()
    {
        QTest::addColumn<int>("protocol");
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("editable");

        QTest::newRow("serial read") << int(Core::IPT_SERIAL) << int(Core::ACM_READ) << false;
        QTest::newRow("serial read-write") << int(Core::IPT_SERIAL) << int(Core::ACM_READ_AND_WRITE) << true;
        QTest::newRow("serial deny") << int(Core::IPT_SERIAL) << int(Core::ACM_DENY) << true;
        QTest::newRow("web read is ignored") << int(Core::IPT_WEB) << int(Core::ACM_READ) << true;
    }
    void permission()
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
        // A read-only window keeps its actions locked when a transfer ends.
        window.disableInteractUi(false);
        QCOMPARE(apply->isEnabled(), editable);
    }
    void needAutorisation_data()
    {
        QTest::addColumn<VersionList>("required");
        QTest::addColumn<VersionList>("exempt");
        QTest::addColumn<int>("version");
        QTest::addColumn<bool>("need");

        const VersionList threshold {0x0305};
        QTest::newRow("no lists") << VersionList() << VersionList() << 0x0305 << false;
        QTest::newRow("below threshold") << threshold << VersionList() << 0x0304 << false;
        QTest::newRow("at threshold") << threshold << VersionList() << 0x0305 << true;
        QTest::newRow("other major") << threshold << VersionList() << 0x0405 << false;
        QTest::newRow("exemption wins") << threshold << VersionList {0x0307} << 0x0307 << false;
        QTest::newRow("second entry") << VersionList {0x0109, 0x0302} << VersionList() << 0x0303 << true;
    }
    void needAutorisation()
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
    void autorise_data()
    {
        QTest::addColumn<Login>("login");
        // The unit needs a password from firmware 2.3 on.
        // clang-format off
        QTest::newRow("stored password") << Login {"kept", 0x0204, true, "", true, 0, true, 0, "kept", {"kept"}, 0};
        QTest::newRow("no need") << Login {"", 0x0202, true, "", true, 0, true, 0, "", {""}, 0};
        QTest::newRow("no need, refused") << Login {"", 0x0202, true, "", false, 0, false, 3, "", {""}, 0};
        QTest::newRow("no need, error code") << Login {"", 0x0202, true, "", true, 7, false, 3, "", {""}, 0};
        QTest::newRow("ok") << Login {"", 0x0204, true, "secret", true, 0, true, 0, "secret", {"secret"}, 1};
        QTest::newRow("ok, refused") << Login {"", 0x0204, true, "wrong", false, 0, false, 3, "", {"wrong"}, 1};
        QTest::newRow("cancel") << Login {"", 0x0204, false, "typed", true, 0, false, 4, "", {}, 1};
        // clang-format on
    }
    void autorise()
    {
        QFETCH(Login, login);
        DeviceMainWindow window;
        TestDevice device;
        device.setWindow(&window);
        device.setVersionLists({0x0203}, {});
        device.setFirmware(static_cast<unsigned short>(login.firmware));
        device.setPasswordEnc(login.stored);
        device.acceptPassword = login.modelAccepts;
        device.codeAfterPassword = login.codeLeft;

        QString shown;
        ModalAnswer answerer(as<QInputDialog>([&](QInputDialog *dialog) {
            shown = QStringList {dialog->windowTitle(), dialog->labelText(),
                QString::number(dialog->parentWidget() == &window), QString::number(dialog->textEchoMode())}
                        .join('|');
            dialog->setTextValue(login.typed);
            login.accept ? dialog->accept() : dialog->reject();
        }));

        QCOMPARE(device.autorise(), login.result);
        QCOMPARE(answerer.answered, login.dialogs);
        QCOMPARE(device.getAutorisationResult(), login.code);
        QCOMPARE(device.getPassword(), login.password);
        QCOMPARE(device.passwordsOffered, login.offered);
        // A stored password skips the version check altogether.
        QCOMPARE(device.needAutorisation(), login.stored.isEmpty() && login.firmware >= 0x0203);
        QCOMPARE(shown,
            login.dialogs ? QStringLiteral("Autorisation|Password|1|%1").arg(QLineEdit::Password)
                          : QString());
    }
    void events()
    {
        TestDevice device;
        QSignalSpy events(&device, &DeviceDescriptor::newEvent);
        device.emitAddEvent(Core::SE_DEVICE_RESTART);
        device.setParameter(DeviceDescriptor::DP_NAME, QStringLiteral("Mux 7"));
        device.setParameter(DeviceDescriptor::DP_ADDRESS, QStringLiteral("10.0.0.7"));
        device.emitAddEvent(Core::SE_DEVICE_SAVE);
        QStringList seen;
        for (const auto &args : events)
            seen << QString::number(int(args.at(0).value<Core::SystemEvens>()), 16) + args.at(1).toString();
        QCOMPARE(seen.join('|'),
            QStringLiteral("%1No Name:|%2Mux 7:10.0.0.7")
                .arg(int(Core::SE_DEVICE_RESTART), 0, 16)
                .arg(int(Core::SE_DEVICE_SAVE), 0, 16));
    }
    // Device models are compiled against this order; a moved declaration breaks them.
    void interfaceOrder()
    {
        QCOMPARE(methodsOf(DeviceDescriptor::staticMetaObject),
            QString(
                "newRequest() send(QByteArray) systemMessage() frontPanelChanged() errorMessage(QString) "
                "alarmStateChanged() statusUpdated() interfSettingsChanged() uiClosed() serialState() "
                "checkAddr() "
                "setIP(bool) newEvent(Core::SystemEvens,QString) | setData(QByteArray) setError() update() "
                "updateStatus() updateAlarmStatus(bool) updateAlarmStatus() setDateTime(QDateTime) "
                "resetStatistics() "
                "identify() checkAdr(QString) setNewIP(bool) getNewAddr()"));
    }
};

QTEST_MAIN(tst_DeviceDescriptor)
#include "tst_devicedescriptor.moc"
