#include <ui/datetimedialog.h>
#include <ui/devicemainwindow.h>
#include <ui/loadsettingsdialog.h>
#include <ui/resetsettingsdialog.h>
#include <ui/statautorefreshdialog.h>

#include "modalanswer.h"

#include <QtTest>

#include <QAbstractButton>
#include <QDateTimeEdit>
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QSettings>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QToolBar>
#include <QTreeView>

// Opens up what a device model subclass sees.
class Window : public DeviceMainWindow
{
public:
    using DeviceMainWindow::autoUpdate;
    using DeviceMainWindow::model;
    using DeviceMainWindow::panels;
    using DeviceMainWindow::progressBar;
    using DeviceMainWindow::refreshTimer;

    QAction *action(const char *name) const { return findChild<QAction *>(QLatin1String(name)); }
    QStackedWidget *stack() const { return findChild<QStackedWidget *>(QStringLiteral("swgtInterface")); }
    QTreeView *tree() const { return findChild<QTreeView *>(QStringLiteral("trvPages")); }
};

// A page that wants refreshing when it comes into view.
class Page : public QWidget
{
    Q_OBJECT
public:
    int updates = 0;
public slots:
    void updateData() { ++updates; }
};

static QVariant stored(const char *key)
{
    QSettings settings(QStringLiteral("Core"), QStringLiteral("DLL"));
    return settings.value(QStringLiteral("DeviceWindowState/") + QLatin1String(key));
}

static void store(const char *key, const QVariant &value)
{
    QSettings settings(QStringLiteral("Core"), QStringLiteral("DLL"));
    settings.setValue(QStringLiteral("DeviceWindowState/") + QLatin1String(key), value);
}

// "A#-1{B#0:A.B,C#1:A.C}": text, page index, path of pages, children.
static QString dump(const QStandardItem *node)
{
    QStringList rows;
    for (int row = 0; row < node->rowCount(); ++row) {
        const QStandardItem *child = node->child(row);
        QString text = child->text() + QLatin1Char('#') + child->data(Qt::UserRole + 1).toString();
        if (child->data(Qt::UserRole + 2).isValid())
            text += QLatin1Char(':') + child->data(Qt::UserRole + 2).toString();
        if (child->hasChildren())
            text += QLatin1Char('{') + dump(child) + QLatin1Char('}');
        rows << text;
    }
    return rows.join(QLatin1Char(','));
}

static QStringList entries(const QList<QAction *> &actions)
{
    QStringList names;
    for (const QAction *action : actions)
        names << (action->isSeparator() ? QStringLiteral("-") : action->objectName());
    return names;
}

static void activate(QWidget *window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
}

class tst_DeviceMainWindow : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();

    void frame();
    void pageTree_data();
    void pageTree();
    void clearPanels();
    void pageChange();
    void windowCounter();
    void closeStoresState();
    void refreshOnlyWhileActive();
    void busyAndReadOnly();
    void serialState();
    void showMessage_data();
    void showMessage();
    void actionSignals_data();
    void actionSignals();
    void toFactory_data();
    void toFactory();
    void loadSettings_data();
    void loadSettings();
    void saveSettings_data();
    void saveSettings();
    void setDateTime();
    void autoRefreshAction_data();
    void autoRefreshAction();
    void uncheckingAutoRefreshStopsForGood();
};

void tst_DeviceMainWindow::initTestCase()
{
    // Closing the last window must not end the event loops the tests run.
    QApplication::setQuitOnLastWindowClosed(false);
}

void tst_DeviceMainWindow::init()
{
    QSettings(QStringLiteral("Core"), QStringLiteral("DLL")).clear();
}

static QImage iconImage(const QIcon &icon, QIcon::State state = QIcon::Off)
{
    return icon.pixmap(QSize(24, 24), QIcon::Normal, state).toImage().convertToFormat(QImage::Format_ARGB32);
}

void tst_DeviceMainWindow::frame()
{
    Window window;
    QCOMPARE(window.tree()->model(), window.model);
    QCOMPARE(window.tree()->editTriggers(), QAbstractItemView::NoEditTriggers);
    QCOMPARE(window.stack()->currentIndex(), -1);
    QVERIFY(window.progressBar->isHidden() && !window.progressBar->isTextVisible());
    QVERIFY(!window.refreshTimer->isActive());
    QVERIFY(window.autoUpdate);
    QVERIFY(window.action("actionSerial_port_connection")->isVisible());
    QVERIFY(!window.action("actionSwitch_to_Active")->isVisible());
    QVERIFY(!window.action("actionStatistics_autorefresh")->isChecked());

    auto *file = window.findChild<QMenu *>(QStringLiteral("menuFile"));
    auto *actions = window.findChild<QMenu *>(QStringLiteral("menuActions"));
    auto *toolBar = window.findChild<QToolBar *>(QStringLiteral("toolBar"));
    QVERIFY(file && actions && toolBar);
    QCOMPARE(window.menuBar()->actions(), (QList<QAction *> {file->menuAction(), actions->menuAction()}));
    QCOMPARE(
        entries(file->actions()), QString("actionLoad_settings actionSave_settings - actionExit").split(' '));
    QCOMPARE(entries(actions->actions()),
        QString("actionRead_data - actionSave actionApply actionTo_factory actionRestart "
                "actionLoad_last_saved - actionSet_date_time actionReset_statistics "
                "actionSerial_port_connection actionSwitch_to_Active actionStatistics_autorefresh")
            .split(' '));
    QCOMPARE(entries(toolBar->actions()),
        QString("actionLoad_settings actionSave_settings - actionRead_data - actionSave actionApply - "
                "actionSerial_port_connection - actionLoad_last_saved actionTo_factory actionRestart "
                "actionSwitch_to_Active actionStatistics_autorefresh")
            .split(' '));
}

void tst_DeviceMainWindow::pageTree_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("tree");
    QTest::addColumn<int>("stacked");

    QTest::newRow("siblings share their group") << QStringList {"A.B", "A.C"} << "A#-1{B#0:A.B,C#1:A.C}" << 2;
    QTest::newRow("existing path adds nothing")
        << QStringList {"A.B", "A.C", "A.B"} << "A#-1{B#0:A.B,C#1:A.C}" << 2;
    QTest::newRow("group named like the leaf is a page too")
        << QStringList {"X.X"} << "X#0:X.X{X#1:X.X}" << 1;
    QTest::newRow("only new nodes take the leaf's page")
        << QStringList {"A.B", "B.A"} << "A#-1{B#0:A.B},B#-1{A#1:B.A}" << 2;
    QTest::newRow("empty segments are skipped")
        << QStringList {"A..B", ".C.", "A.B."} << "A#-1{B#0:A..B},C#1:.C." << 2;
    QTest::newRow("three levels")
        << QStringList {"Interfaces.E1.Port 1", "Interfaces.E1.Port 2", "Interfaces.Ethernet"}
        << "Interfaces#-1{E1#-1{Port 1#0:Interfaces.E1.Port 1,Port 2#1:Interfaces.E1.Port 2},"
           "Ethernet#2:Interfaces.Ethernet}"
        << 3;
    QTest::newRow("names compare case-sensitively") << QStringList {"a", "A"} << "a#0:a,A#1:A" << 2;
    QTest::newRow("a leaf may repeat a group's name")
        << QStringList {"A.B.A"} << "A#0:A.B.A{B#-1{A#1:A.B.A}}" << 1;
    QTest::newRow("nothing but dots adds nothing") << QStringList {"..", ""} << "" << 0;
}

void tst_DeviceMainWindow::pageTree()
{
    QFETCH(QStringList, paths);
    QFETCH(QString, tree);
    QFETCH(int, stacked);
    Window window;
    for (const QString &path : paths)
        window.addPanel(path, new QWidget);
    QCOMPARE(dump(window.model->invisibleRootItem()), tree);
    QCOMPARE(window.stack()->count(), stacked);
    // Every page node shows the widget it was given.
    for (auto it = window.panels.cbegin(); it != window.panels.cend(); ++it)
        QVERIFY(window.stack()->indexOf(it.value()) >= 0);
}

void tst_DeviceMainWindow::clearPanels()
{
    Window window;
    QPointer<QWidget> b = new QWidget, x = new QWidget, gone = new QWidget;
    window.addPanel("A.B", b);
    window.addPanel("X.X", x);
    window.addPanel("A.C", gone);
    // A page the host deletes itself is forgotten, not shown again.
    delete gone;
    window.tree()->setCurrentIndex(window.model->item(0)->child(1)->index());
    QCOMPARE(window.stack()->currentWidget(), b.data());

    window.clearPanels();
    QCOMPARE(window.model->rowCount(), 0);
    QCOMPARE(window.stack()->count(), 0);
    QVERIFY(window.panels.isEmpty());
    QVERIFY(b && x); // deferred
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!b && !x);

    auto *fresh = new QWidget;
    window.addPanel("D", fresh);
    QCOMPARE(dump(window.model->invisibleRootItem()), QStringLiteral("D#0:D"));
    QCOMPARE(window.panels.value(0), fresh);
}

void tst_DeviceMainWindow::pageChange()
{
    Window window;
    auto *b = new Page, *c = new Page;
    auto *plain = new QWidget;
    window.addPanel("A.B", b);
    window.addPanel("A.C", c);
    window.addPanel("Plain", plain);
    activate(&window);
    QSignalSpy paths(&window, &DeviceMainWindow::sendTreeItemPath);
    QStandardItem *group = window.model->item(0);

    window.tree()->setCurrentIndex(group->child(1)->index());
    QCOMPARE(window.stack()->currentWidget(), c);
    QCOMPARE(paths.count(), 1);
    QCOMPARE(paths.takeFirst().at(0).toString(), QStringLiteral("A.C"));
    QCOMPARE(c->updates, 0); // queued
    QTRY_COMPARE(c->updates, 1);

    // A grouping node keeps the page in view and asks for nothing.
    window.tree()->setCurrentIndex(group->index());
    QCOMPARE(window.stack()->currentWidget(), c);
    QCOMPARE(paths.count(), 0);
    // ...but the refresh clock reports it with an empty path.
    window.autoRefreshByTimer();
    QCOMPARE(paths.takeFirst().at(0).toString(), QString());

    // A page without updateData() is shown all the same.
    window.tree()->setCurrentIndex(window.model->item(1)->index());
    QCOMPARE(window.stack()->currentWidget(), plain);
    QCOMPARE(paths.takeFirst().at(0).toString(), QStringLiteral("Plain"));

    window.alowAutoUpdate(false);
    window.tree()->setCurrentIndex(group->child(0)->index());
    QCOMPARE(window.stack()->currentWidget(), b);
    QCOMPARE(paths.count(), 0);
    QTRY_COMPARE(b->updates, 1);
}

void tst_DeviceMainWindow::windowCounter()
{
    // Closing and destroying both count down, never below zero.
    while (DeviceMainWindow::decCounter() > 0) { }
    QCOMPARE(DeviceMainWindow::decCounter(), quint8(0));
    auto *first = new Window, *second = new Window;
    first->show();
    second->show();
    QCOMPARE(DeviceMainWindow::getWindowsCount(), quint8(2));
    QSignalSpy closed(first, &DeviceMainWindow::closeSignal);
    first->action("actionExit")->trigger();
    QCOMPARE(closed.count(), 1);
    QVERIFY(!first->isVisible());
    QCOMPARE(DeviceMainWindow::getWindowsCount(), quint8(1));
    delete first;
    QCOMPARE(DeviceMainWindow::getWindowsCount(), quint8(0));
    second->close();
    delete second;
    QCOMPARE(DeviceMainWindow::getWindowsCount(), quint8(0));
}

void tst_DeviceMainWindow::closeStoresState()
{
    QByteArray geometry;
    {
        Window window;
        window.show();
        window.resize(640, 400);
        QTRY_COMPARE(window.size(), QSize(640, 400));
        window.close();
        geometry = stored("geometry").toByteArray();
        QVERIFY(!geometry.isEmpty());
        QVERIFY(!stored("state").toByteArray().isEmpty());
    }
    Window reopened;
    QCOMPARE(reopened.size(), QSize(640, 400));
}

void tst_DeviceMainWindow::refreshOnlyWhileActive()
{
    Window first, second;
    first.addPanel("A", new QWidget);
    first.tree()->setCurrentIndex(first.model->item(0)->index());
    QSignalSpy paths(&first, &DeviceMainWindow::sendTreeItemPath);

    // Auto refresh off in the store: activation leaves the clock alone.
    activate(&first);
    QVERIFY(!first.refreshTimer->isActive());

    store("isAutoRefreshEnabled", true);
    store("autoRefreshPeriod", 1);
    activate(&second);
    QVERIFY(second.refreshTimer->isActive());
    activate(&first);
    QVERIFY(first.refreshTimer->isActive());
    QCOMPARE(first.refreshTimer->interval(), 1000);
    QTRY_VERIFY(!second.refreshTimer->isActive());

    paths.clear();
    QVERIFY(paths.wait(3000));
    QCOMPARE(paths.first().at(0).toString(), QStringLiteral("A"));

    activate(&second);
    QTRY_VERIFY(!first.refreshTimer->isActive());
    paths.clear();
    first.autoRefreshByTimer();
    QCOMPARE(paths.count(), 0);
}

void tst_DeviceMainWindow::busyAndReadOnly()
{
    const QStringList device
        = QString("actionLoad_settings actionSave_settings actionRead_data actionWrite_data "
                  "actionApply actionSave actionTo_factory actionRestart "
                  "actionLoad_last_saved actionSwitch_to_Active actionStatistics_autorefresh")
              .split(' ');
    const QStringList untouched
        = QString("actionSet_date_time actionReset_statistics actionSerial_port_connection").split(' ');
    Window window;
    auto enabled = [&](const QStringList &names) {
        int count = 0;
        for (const QString &name : names)
            count += window.action(name.toLatin1().constData())->isEnabled();
        return count;
    };

    window.setSwitchVisible(true); // hidden actions count as disabled
    QVERIFY(window.action("actionSwitch_to_Active")->isVisible());
    window.setProgres(40);
    window.disableInteractUi(true);
    QVERIFY(window.progressBar->isVisibleTo(&window));
    QCOMPARE(window.progressBar->value(), 0);
    QCOMPARE(enabled(device), 0);
    QVERIFY(!window.action("actionExit")->isEnabled());
    QCOMPARE(enabled(untouched), untouched.size());
    window.setProgres(40);
    QCOMPARE(window.progressBar->value(), 40);

    window.disableInteractUi(false);
    QVERIFY(!window.progressBar->isVisibleTo(&window));
    QCOMPARE(window.progressBar->value(), 0);
    QCOMPARE(enabled(device), device.size());
    QVERIFY(window.action("actionExit")->isEnabled());

    // A read-only unit stays locked once a transfer ends; Exit comes back.
    window.setReadOnly(true);
    window.enableActions(false);
    QCOMPARE(enabled(untouched), untouched.size());
    window.disableInteractUi(true);
    window.disableInteractUi(false);
    QCOMPARE(enabled(device), 0);
    QVERIFY(window.action("actionExit")->isEnabled());
}

void tst_DeviceMainWindow::serialState()
{
    Window window;
    QSignalSpy changed(&window, &DeviceMainWindow::serialStateChanged);
    QAction *serial = window.action("actionSerial_port_connection");
    // Only a serial unit has a serial connection to switch.
    for (auto type : {Core::IPT_SNMP_V1, Core::IPT_SNMP_V3, Core::IPT_WEB, Core::IPT_SERIAL}) {
        window.setInterface(type);
        QCOMPARE(serial->isVisible(), type == Core::IPT_SERIAL);
    }
    QVERIFY(!window.getSerialState());
    window.serialState(true);
    QVERIFY(window.getSerialState());
    QCOMPARE(changed.count(), 1);
    window.serialState(true); // no toggle, no signal
    QCOMPARE(changed.count(), 1);
    serial->trigger(); // by the user
    QVERIFY(!window.getSerialState());
    QCOMPARE(changed.count(), 2);
    // The tool bar shows the plug connected or not.
    QCOMPARE(iconImage(serial->icon(), QIcon::On), iconImage(QIcon(":/images/connect.png")));
    QCOMPARE(iconImage(serial->icon(), QIcon::Off), iconImage(QIcon(":/images/disconnect.png")));
}

void tst_DeviceMainWindow::showMessage_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("title");
    QTest::addColumn<int>("icon");

    QTest::newRow("information") << 0 << "Information" << int(QMessageBox::Information);
    QTest::newRow("warning") << 1 << "Warning" << int(QMessageBox::Warning);
    QTest::newRow("error") << 2 << "Error" << int(QMessageBox::Critical);
    QTest::newRow("unknown type") << 3 << "" << -1;
    QTest::newRow("negative type") << -1 << "" << -1;
}

void tst_DeviceMainWindow::showMessage()
{
    QFETCH(int, type);
    QFETCH(QString, title);
    QFETCH(int, icon);
    Window window;
    QString seenTitle, seenText;
    int seenIcon = -1, buttons = 0;
    QWidget *parent = nullptr;
    ModalAnswer answer(as<QMessageBox>([&](QMessageBox *box) {
        seenTitle = box->windowTitle();
        seenText = box->text();
        seenIcon = box->icon();
        buttons = box->buttons().size();
        parent = box->parentWidget();
        box->button(QMessageBox::Ok)->click();
    }));
    window.showMessage(QStringLiteral("Line E1-3 lost"), type);
    QCOMPARE(answer.answered, icon < 0 ? 0 : 1);
    QCOMPARE(seenTitle, title);
    QCOMPARE(seenIcon, icon);
    if (icon >= 0) {
        QCOMPARE(seenText, QStringLiteral("Line E1-3 lost"));
        QCOMPARE(buttons, 1);
        QCOMPARE(parent, &window);
    }
}

void tst_DeviceMainWindow::actionSignals_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("signal"); // empty: nothing is emitted
    QTest::addColumn<QString>("question"); // "title|text" of the confirmation box, if any
    QTest::addColumn<QString>("dismiss");

    QTest::newRow("read data") << "actionRead_data" << QString("reload()") << QString() << QString();
    QTest::newRow("save") << "actionSave" << QString("saveMemory()") << QString() << QString();
    QTest::newRow("apply") << "actionApply" << QString("applyChanges()") << QString() << QString();
    QTest::newRow("reset statistics")
        << "actionReset_statistics" << QString("resetStatistics()") << QString() << QString();
    QTest::newRow("switch to active")
        << "actionSwitch_to_Active" << QString("switchToActive()") << QString() << QString();
    QTest::newRow("write data is for subclasses")
        << "actionWrite_data" << QString() << QString() << QString();
    // The box has only Yes: any way of closing it confirms.
    for (const QString dismiss : {"yes", "escape", "close"}) {
        QTest::addRow("restart, %s", qPrintable(dismiss))
            << "actionRestart" << QString("restartDevice()")
            << QString("Restart device|Do you realy want restart device?") << dismiss;
        QTest::addRow("last saved, %s", qPrintable(dismiss))
            << "actionLoad_last_saved" << QString("restoreDevice()")
            << QString("Load last saved|Do you realy want load last saved settings?") << dismiss;
    }
}

void tst_DeviceMainWindow::actionSignals()
{
    QFETCH(QString, action);
    QFETCH(QString, signal);
    QFETCH(QString, question);
    QFETCH(QString, dismiss);
    Window window;
    auto *page = new QWidget;
    page->setFocusPolicy(Qt::StrongFocus);
    window.addPanel("P", page);
    window.tree()->setCurrentIndex(window.model->item(0)->index());
    activate(&window);
    window.tree()->setFocus();

    QList<QSignalSpy *> spies;
    const QMetaObject *meta = window.metaObject();
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        if (meta->method(i).methodType() == QMetaMethod::Signal && meta->method(i).parameterCount() == 0)
            spies << new QSignalSpy(&window, QByteArray("2" + meta->method(i).methodSignature()).constData());
    }
    QString seen;
    QMessageBox::StandardButtons buttons;
    ModalAnswer answer(as<QMessageBox>([&](QMessageBox *box) {
        seen = box->windowTitle() + '|' + box->text();
        buttons = box->standardButtons();
        if (dismiss == QLatin1String("yes"))
            box->button(QMessageBox::Yes)->click();
        else if (dismiss == QLatin1String("escape"))
            QTest::keyClick(box, Qt::Key_Escape);
        else
            box->close();
    }));
    window.action(action.toLatin1().constData())->trigger();
    QCOMPARE(answer.answered, int(!question.isEmpty()));
    QCOMPARE(seen, question);
    if (!question.isEmpty())
        QCOMPARE(buttons, QMessageBox::StandardButtons(QMessageBox::Yes));

    QStringList emitted;
    for (QSignalSpy *spy : spies)
        if (spy->count())
            emitted << QString::fromLatin1(spy->signal()) + QString::number(spy->count());
    qDeleteAll(spies);
    QCOMPARE(emitted, signal.isEmpty() ? QStringList() : QStringList(signal + "1"));
    // Save and Apply first take the focus to the page so open editors commit.
    QCOMPARE(page->hasFocus(), signal == "saveMemory()" || signal == "applyChanges()");
}

void tst_DeviceMainWindow::toFactory_data()
{
    QTest::addColumn<int>("interface");
    QTest::addColumn<bool>("snmpAllowed");
    QTest::addColumn<bool>("storedBox");
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("checkBox");

    QTest::newRow("serial, keep addresses") << int(Core::IPT_SERIAL) << false << false << true << true;
    QTest::newRow("serial, reset addresses") << int(Core::IPT_SERIAL) << false << true << true << false;
    QTest::newRow("serial, cancelled") << int(Core::IPT_SERIAL) << false << true << false << false;
    QTest::newRow("snmp v1 refused") << int(Core::IPT_SNMP_V1) << false << false << false << false;
    QTest::newRow("snmp v3 refused") << int(Core::IPT_SNMP_V3) << false << false << false << false;
    QTest::newRow("web refused") << int(Core::IPT_WEB) << false << false << false << false;
    QTest::newRow("snmp allowed") << int(Core::IPT_SNMP_V3) << true << false << true << true;
}

void tst_DeviceMainWindow::toFactory()
{
    QFETCH(int, interface);
    QFETCH(bool, snmpAllowed);
    QFETCH(bool, storedBox);
    QFETCH(bool, accept);
    QFETCH(bool, checkBox);
    store("dontresetaddress", storedBox);
    Window window;
    window.setInterface(Core::InterfaceProtocolType(interface));
    if (snmpAllowed)
        window.enableSnmpResetToFactory();
    QSignalSpy spy(&window, &DeviceMainWindow::toFactory);
    const bool refused = interface != Core::IPT_SERIAL && !snmpAllowed;
    QString title, text;
    bool shownBox = !storedBox;
    ModalAnswer answer([&](QWidget *modal) {
        title = modal->windowTitle();
        if (auto *box = qobject_cast<QMessageBox *>(modal)) {
            text = box->text();
            box->button(QMessageBox::Ok)->click();
        } else if (auto *dialog = qobject_cast<ResetSettingsDialog *>(modal)) {
            shownBox = dialog->getNotResetAddresses();
            dialog->setNotResetAddresses(checkBox);
            accept ? dialog->accept() : dialog->reject();
        }
    });
    window.action("actionTo_factory")->trigger();
    QCOMPARE(answer.answered, 1);
    if (refused) {
        QCOMPARE(title, QStringLiteral("Reset to factory settings"));
        QCOMPARE(text, QStringLiteral("This action not supported trough SNMP"));
    } else {
        QCOMPARE(title, QStringLiteral("Factory Reset"));
        QCOMPARE(shownBox, storedBox);
    }
    QCOMPARE(spy.count(), int(accept));
    if (accept)
        QCOMPARE(spy.first().at(0).toBool(), checkBox);
    QCOMPARE(stored("dontresetaddress").toBool(), accept ? checkBox : storedBox);
}

void tst_DeviceMainWindow::loadSettings_data()
{
    QTest::addColumn<bool>("accept");
    QTest::addColumn<bool>("checkBox");

    QTest::newRow("accepted, addresses skipped") << true << true;
    QTest::newRow("accepted, addresses loaded") << true << false;
    QTest::newRow("cancelled") << false << true;
}

void tst_DeviceMainWindow::loadSettings()
{
    QFETCH(bool, accept);
    QFETCH(bool, checkBox);
    Window window;
    QSignalSpy spy(&window, &DeviceMainWindow::loadSettingsFile);
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString chosen = QStringLiteral("/srv/units/mux-7.dvsf");

    // Nothing stored yet: the documents folder and a cleared box.
    for (int round = 0; round < 2; ++round) {
        QString shownPath;
        bool shownBox = true;
        ModalAnswer answer(as<LoadSettingsDialog>([&](LoadSettingsDialog *dialog) {
            shownPath = dialog->getPath();
            shownBox = dialog->getNotLoadAddresses();
            dialog->setPath(chosen);
            dialog->setNotLoadAddresses(checkBox);
            accept ? dialog->accept() : dialog->reject();
        }));
        window.action("actionLoad_settings")->trigger();
        QCOMPARE(answer.answered, 1);
        const bool remembered = round == 1 && accept;
        QCOMPARE(shownPath, remembered ? chosen : documents);
        QCOMPARE(shownBox, remembered && checkBox);
    }
    QCOMPARE(spy.count(), accept ? 2 : 0);
    if (accept)
        QCOMPARE(spy.last(), (QList<QVariant> {chosen, checkBox}));
    // The key holds the "do not load" box unchanged, whatever its name says.
    QCOMPARE(stored("needloadaddress"), accept ? QVariant(checkBox) : QVariant());
    QCOMPARE(stored("lastsavedpath"), accept ? QVariant(chosen) : QVariant());
}

void tst_DeviceMainWindow::saveSettings_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("saved");

    QTest::newRow("no suffix") << QString("mux-7") << "mux-7.dvsf";
    QTest::newRow("right suffix") << QString("mux-7.dvsf") << "mux-7.dvsf";
    QTest::newRow("suffix in capitals") << QString("mux-7.DVSF") << "mux-7.DVSF.dvsf";
    QTest::newRow("other suffix") << QString("mux-7.txt") << "mux-7.txt.dvsf";
    QTest::newRow("cancelled") << QString() << "";
}

void tst_DeviceMainWindow::saveSettings()
{
    QFETCH(QString, typed);
    QFETCH(QString, saved);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    store("lastsavedpath", dir.path());
    Window window;
    QSignalSpy spy(&window, &DeviceMainWindow::saveSettingsFile);
    QString caption, folder;
    QStringList filters;
    QWidget *parent = &window;
    ModalAnswer answer(as<QFileDialog>([&](QFileDialog *files) {
        caption = files->windowTitle();
        folder = files->directory().absolutePath();
        filters = files->nameFilters();
        parent = files->parentWidget();
        if (typed.isEmpty()) {
            files->reject();
            return;
        }
        chooseFile(files, dir.filePath(typed));
    }));
    window.action("actionSave_settings")->trigger();
    QCOMPARE(answer.answered, 1);
    QCOMPARE(caption, QStringLiteral("Select file."));
    QCOMPARE(folder, QDir(dir.path()).absolutePath());
    QCOMPARE(filters, QStringList("Device settings file(*.dvsf)"));
    QCOMPARE(parent, nullptr);
    const QString path = saved.isEmpty() ? dir.path() : dir.filePath(saved);
    QCOMPARE(spy.count(), int(!saved.isEmpty()));
    if (!saved.isEmpty())
        QCOMPARE(spy.first().at(0).toString(), path);
    QCOMPARE(stored("lastsavedpath").toString(), path);
}

void tst_DeviceMainWindow::setDateTime()
{
    Window window;
    QSignalSpy spy(&window, &DeviceMainWindow::setDateTime);
    const QDateTime picked(QDate(2021, 3, 14), QTime(15, 9));
    // Untouched, changed, then changed and cancelled.
    for (int round = 0; round < 3; ++round) {
        const QDateTime before = QDateTime::currentDateTime();
        ModalAnswer answer(as<DatetimeDialog>([&](DatetimeDialog *dialog) {
            if (round > 0)
                dialog->findChild<QDateTimeEdit *>(QStringLiteral("dateTimeEdit"))->setDateTime(picked);
            round < 2 ? dialog->accept() : dialog->reject();
        }));
        window.action("actionSet_date_time")->trigger();
        QCOMPARE(answer.answered, 1);
        if (round == 0) {
            const QDateTime opened = spy.takeFirst().at(0).toDateTime();
            QVERIFY(opened >= before && opened <= QDateTime::currentDateTime());
        }
    }
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().at(0).toDateTime(), picked);
}

void tst_DeviceMainWindow::autoRefreshAction_data()
{
    QTest::addColumn<QVariant>("storedPeriod");
    QTest::addColumn<int>("shownPeriod");
    QTest::addColumn<int>("chosen"); // 0 cancels

    QTest::newRow("first use") << QVariant() << 1 << 5;
    QTest::newRow("stored period") << QVariant(30) << 30 << 30;
    QTest::newRow("above the range") << QVariant(500) << 120 << 120;
    QTest::newRow("below the range") << QVariant(0) << 1 << 2;
    QTest::newRow("cancelled") << QVariant(7) << 7 << 0;
}

void tst_DeviceMainWindow::autoRefreshAction()
{
    QFETCH(QVariant, storedPeriod);
    QFETCH(int, shownPeriod);
    QFETCH(int, chosen);
    if (storedPeriod.isValid())
        store("autoRefreshPeriod", storedPeriod);
    Window window;
    int shown = -1;
    ModalAnswer answer(as<StatAutoRefreshDialog>([&](StatAutoRefreshDialog *dialog) {
        shown = dialog->getPeriod();
        dialog->setPeriod(chosen);
        chosen ? dialog->accept() : dialog->reject();
    }));
    QAction *action = window.action("actionStatistics_autorefresh");
    action->trigger();
    QCOMPARE(answer.answered, 1);
    QCOMPARE(shown, shownPeriod);
    const bool on = chosen != 0;
    QCOMPARE(action->isChecked(), on);
    QCOMPARE(window.autoUpdate, on);
    QCOMPARE(window.refreshTimer->isActive(), on);
    QCOMPARE(window.refreshTimer->interval() * int(on), chosen * 1000);
    QCOMPARE(stored("isAutoRefreshEnabled").toString(), QString(on ? "true" : ""));
    QCOMPARE(stored("autoRefreshPeriod"), on ? QVariant(chosen) : storedPeriod);
    // A new window starts with the action as it was left.
    QCOMPARE(Window().action("actionStatistics_autorefresh")->isChecked(), on);
}

void tst_DeviceMainWindow::uncheckingAutoRefreshStopsForGood()
{
    store("isAutoRefreshEnabled", true);
    store("autoRefreshPeriod", 2);
    Window window;
    QAction *action = window.action("actionStatistics_autorefresh");
    QVERIFY(action->isChecked());
    activate(&window);
    QVERIFY(window.refreshTimer->isActive());
    QCOMPARE(window.refreshTimer->interval(), 2000);

    window.alowAutoUpdate(false);
    ModalAnswer unexpected([](QWidget *modal) { modal->close(); });
    action->trigger();
    QCOMPARE(unexpected.answered, 0);
    QVERIFY(!action->isChecked());
    QVERIFY(!window.refreshTimer->isActive());
    QCOMPARE(stored("isAutoRefreshEnabled").toBool(), false);
    QVERIFY(!window.autoUpdate); // left as it was

    Window other;
    activate(&other);
    activate(&window);
    QVERIFY(!window.refreshTimer->isActive());
}

QTEST_MAIN(tst_DeviceMainWindow)
#include "tst_devicemainwindow.moc"
