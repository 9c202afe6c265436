#include <ui/datetimedialog.h>
#include <ui/devicemainwindow.h>
#include <ui/loadsettingsdialog.h>
#include <ui/resetsettingsdialog.h>
#include <ui/statautorefreshdialog.h>

#include "modalanswer.h"

#include <QtTest>

#include <QAbstractButton>
#include <QAction>
#include <QDateTimeEdit>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QSettings>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QStandardPaths>
#include <QTemporaryDir>
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
    void initTestCase()
    {
        // Closing the last window must not end the event loops the tests run.
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void init() { QSettings(QStringLiteral("Core"), QStringLiteral("DLL")).clear(); }

    void pageTree_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QString>("tree");
        QTest::addColumn<int>("stacked");

        QTest::newRow("siblings share their group")
            << QStringList {"A.B", "A.C"} << "A#-1{B#0:A.B,C#1:A.C}" << 2;
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
    void pageTree()
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
    void clearPanels()
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
    void pageChange()
    {
        Window window;
        auto *b = new Page, *c = new Page;
        window.addPanel("A.B", b);
        window.addPanel("A.C", c);
        window.addPanel("Plain", new QWidget);
        activate(&window);
        QSignalSpy paths(&window, &DeviceMainWindow::sendTreeItemPath);
        QStandardItem *group = window.model->item(0);
        window.tree()->setCurrentIndex(group->child(1)->index());
        QCOMPARE(window.stack()->currentWidget(), c);
        QCOMPARE(paths.takeFirst().at(0).toString(), QStringLiteral("A.C"));
        QCOMPARE(c->updates, 0); // queued
        QTRY_COMPARE(c->updates, 1);
        // A grouping node keeps the page in view and asks for nothing...
        window.tree()->setCurrentIndex(group->index());
        QCOMPARE(window.stack()->currentWidget(), c);
        QCOMPARE(paths.count(), 0);
        // ...but the refresh clock reports it with an empty path.
        window.autoRefreshByTimer();
        QCOMPARE(paths.takeFirst().at(0).toString(), QString());
        // A page without updateData() is shown all the same.
        window.tree()->setCurrentIndex(window.model->item(1)->index());
        QCOMPARE(paths.takeFirst().at(0).toString(), QStringLiteral("Plain"));
        window.alowAutoUpdate(false);
        window.tree()->setCurrentIndex(group->child(0)->index());
        QCOMPARE(window.stack()->currentWidget(), b);
        QCOMPARE(paths.count(), 0);
        QTRY_COMPARE(b->updates, 1);
    }
    void windowCounter()
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
    void refreshOnlyWhileActive()
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
        activate(&first);
        QCOMPARE(first.refreshTimer->interval(), 1000);
        QTRY_VERIFY(first.refreshTimer->isActive() && !second.refreshTimer->isActive());
        paths.clear();
        QVERIFY(paths.wait(3000));
        QCOMPARE(paths.first().at(0).toString(), QStringLiteral("A"));
        activate(&second);
        QTRY_VERIFY(!first.refreshTimer->isActive());
        paths.clear();
        first.autoRefreshByTimer();
        QCOMPARE(paths.count(), 0);
    }
    void busyAndReadOnly()
    {
        Window window;
        QCOMPARE(window.tree()->model(), window.model);
        QVERIFY(window.progressBar->isHidden() && !window.refreshTimer->isActive() && window.autoUpdate);
        // Actions that reach the unit, then those that never lock, as enabled or not.
        auto states = [&] {
            QString out;
            for (const char *name :
                {"actionLoad_settings", "actionSave_settings", "actionRead_data", "actionWrite_data",
                    "actionApply", "actionSave", "actionTo_factory", "actionRestart", "actionLoad_last_saved",
                    "actionSwitch_to_Active", "actionStatistics_autorefresh", "actionExit",
                    "actionSet_date_time", "actionReset_statistics", "actionSerial_port_connection"})
                out += window.action(name)->isEnabled() ? '1' : '0';
            return out;
        };
        window.setSwitchVisible(true); // a hidden action reads as disabled
        window.setProgres(40);
        window.disableInteractUi(true);
        QVERIFY(window.progressBar->isVisibleTo(&window));
        QCOMPARE(window.progressBar->value(), 0);
        QCOMPARE(states(), QString("000000000000111"));
        window.setProgres(40);
        QCOMPARE(window.progressBar->value(), 40);
        window.disableInteractUi(false);
        QVERIFY(!window.progressBar->isVisibleTo(&window));
        QCOMPARE(states(), QString("111111111111111"));
        // A read-only unit stays locked once a transfer ends; Exit comes back.
        window.setReadOnly(true);
        window.enableActions(false);
        window.disableInteractUi(true);
        window.disableInteractUi(false);
        QCOMPARE(states(), QString("000000000001111"));
    }
    void serialState()
    {
        Window window;
        QSignalSpy changed(&window, &DeviceMainWindow::serialStateChanged);
        QAction *serial = window.action("actionSerial_port_connection");
        // Only a serial unit has a serial connection to switch.
        for (auto type : {Core::IPT_SNMP_V1, Core::IPT_WEB, Core::IPT_SERIAL}) {
            window.setInterface(type);
            QCOMPARE(serial->isVisible(), type == Core::IPT_SERIAL);
        }
        window.serialState(true);
        window.serialState(true); // no toggle, no signal
        QVERIFY(window.getSerialState());
        QCOMPARE(changed.count(), 1);
        serial->trigger(); // by the user
        QVERIFY(!window.getSerialState());
        QCOMPARE(changed.count(), 2);
    }
    void showMessage_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("seen"); // title|text|icon|buttons|parent is the window
        QTest::newRow("information") << 0 << "Information|Line E1-3 lost|1|1|1";
        QTest::newRow("warning") << 1 << "Warning|Line E1-3 lost|2|1|1";
        QTest::newRow("error") << 2 << "Error|Line E1-3 lost|3|1|1";
        QTest::newRow("unknown type") << 3 << "";
        QTest::newRow("negative type") << -1 << "";
    }
    void showMessage()
    {
        QFETCH(int, type);
        Window window;
        QString seen;
        ModalAnswer answer(as<QMessageBox>([&](QMessageBox *box) {
            seen = QStringLiteral("%1|%2|%3|%4|%5")
                       .arg(box->windowTitle(), box->text())
                       .arg(box->icon())
                       .arg(box->buttons().size())
                       .arg(box->parentWidget() == &window);
            box->button(QMessageBox::Ok)->click();
        }));
        window.showMessage(QStringLiteral("Line E1-3 lost"), type);
        QTEST(seen, "seen");
    }
    void actionSignals_data()
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
    void actionSignals()
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
                spies << new QSignalSpy(
                    &window, QByteArray("2" + meta->method(i).methodSignature()).constData());
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
    void toFactory_data()
    {
        QTest::addColumn<int>("interface");
        QTest::addColumn<bool>("snmpAllowed");
        QTest::addColumn<bool>("storedBox");
        QTest::addColumn<bool>("accept");
        QTest::addColumn<bool>("checkBox");
        QTest::addColumn<QString>("seen");
        const int serial = Core::IPT_SERIAL;
        const QString refused
            = QStringLiteral("Reset to factory settings|This action not supported trough SNMP");
        QTest::newRow("serial, keep addresses")
            << serial << false << false << true << true << "Factory Reset|0";
        QTest::newRow("serial, reset addresses")
            << serial << false << true << true << false << "Factory Reset|1";
        QTest::newRow("serial, cancelled") << serial << false << true << false << false << "Factory Reset|1";
        QTest::newRow("snmp refused")
            << int(Core::IPT_SNMP_V1) << false << false << false << false << refused;
        QTest::newRow("web refused") << int(Core::IPT_WEB) << false << true << false << false << refused;
        QTest::newRow("snmp allowed")
            << int(Core::IPT_SNMP_V3) << true << false << true << true << "Factory Reset|0";
    }
    void toFactory()
    {
        QFETCH(int, interface);
        QFETCH(bool, storedBox);
        QFETCH(bool, accept);
        QFETCH(bool, checkBox);
        store("dontresetaddress", storedBox);
        Window window;
        window.setInterface(Core::InterfaceProtocolType(interface));
        QFETCH(bool, snmpAllowed);
        if (snmpAllowed)
            window.enableSnmpResetToFactory();
        QSignalSpy spy(&window, &DeviceMainWindow::toFactory);
        QString seen;
        ModalAnswer answer([&](QWidget *modal) {
            seen = modal->windowTitle();
            if (auto *box = qobject_cast<QMessageBox *>(modal)) {
                seen += '|' + box->text();
                box->button(QMessageBox::Ok)->click();
            } else if (auto *dialog = qobject_cast<ResetSettingsDialog *>(modal)) {
                seen += '|' + QString::number(dialog->getNotResetAddresses());
                dialog->setNotResetAddresses(checkBox);
                accept ? dialog->accept() : dialog->reject();
            }
        });
        window.action("actionTo_factory")->trigger();
        QTEST(seen, "seen");
        QCOMPARE(spy.count(), int(accept));
        if (accept)
            QCOMPARE(spy.first().at(0).toBool(), checkBox);
        QCOMPARE(stored("dontresetaddress").toBool(), accept ? checkBox : storedBox);
    }
    void loadSettings_data()
    {
        QTest::addColumn<bool>("accept");
        QTest::addColumn<bool>("checkBox");

        QTest::newRow("accepted, addresses skipped") << true << true;
        QTest::newRow("accepted, addresses loaded") << true << false;
        QTest::newRow("cancelled") << false << true;
    }
    void loadSettings()
    {
        QFETCH(bool, accept);
        QFETCH(bool, checkBox);
        Window window;
        QSignalSpy spy(&window, &DeviceMainWindow::loadSettingsFile);
        const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        const QString chosen = QStringLiteral("/srv/units/mux-7.dvsf");
        // Nothing stored yet: the documents folder and a cleared box.
        for (int round = 0; round < 2; ++round) {
            QString shown;
            ModalAnswer answer(as<LoadSettingsDialog>([&](LoadSettingsDialog *dialog) {
                shown = dialog->getPath() + '|' + QString::number(dialog->getNotLoadAddresses());
                dialog->setPath(chosen);
                dialog->setNotLoadAddresses(checkBox);
                accept ? dialog->accept() : dialog->reject();
            }));
            window.action("actionLoad_settings")->trigger();
            const bool remembered = round == 1 && accept;
            QCOMPARE(
                shown, (remembered ? chosen : documents) + '|' + QString::number(remembered && checkBox));
        }
        QCOMPARE(spy.count(), accept ? 2 : 0);
        if (accept)
            QCOMPARE(spy.last(), (QList<QVariant> {chosen, checkBox}));
        // The key holds the "do not load" box unchanged, whatever its name says.
        QCOMPARE(stored("needloadaddress"), accept ? QVariant(checkBox) : QVariant());
        QCOMPARE(stored("lastsavedpath"), accept ? QVariant(chosen) : QVariant());
    }
    void saveSettings_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("saved");

        QTest::newRow("no suffix") << QString("mux-7") << "mux-7.dvsf";
        QTest::newRow("right suffix") << QString("mux-7.dvsf") << "mux-7.dvsf";
        QTest::newRow("suffix in capitals") << QString("mux-7.DVSF") << "mux-7.DVSF.dvsf";
        QTest::newRow("other suffix") << QString("mux-7.txt") << "mux-7.txt.dvsf";
        QTest::newRow("cancelled") << QString() << "";
    }
    void saveSettings()
    {
        QFETCH(QString, typed);
        QFETCH(QString, saved);
        QTemporaryDir dir;
        store("lastsavedpath", dir.path());
        Window window;
        QSignalSpy spy(&window, &DeviceMainWindow::saveSettingsFile);
        QString seen;
        ModalAnswer answer(as<QFileDialog>([&](QFileDialog *files) {
            seen = QStringList {files->windowTitle(), files->directory().absolutePath(),
                files->nameFilters().join(','), QString::number(files->parentWidget() == nullptr)}
                       .join('|');
            typed.isEmpty() ? files->reject() : chooseFile(files, dir.filePath(typed));
        }));
        window.action("actionSave_settings")->trigger();
        QCOMPARE(seen, "Select file.|" + QDir(dir.path()).absolutePath() + "|Device settings file(*.dvsf)|1");
        const QString path = saved.isEmpty() ? dir.path() : dir.filePath(saved);
        QCOMPARE(spy.count(), int(!saved.isEmpty()));
        if (!saved.isEmpty())
            QCOMPARE(spy.first().at(0).toString(), path);
        QCOMPARE(stored("lastsavedpath").toString(), path);
    }
    void setDateTime()
    {
        Window window;
        QSignalSpy spy(&window, &DeviceMainWindow::setDateTime);
        const QDateTime picked(QDate(2021, 3, 14), QTime(15, 9));
        // Untouched (starts as now), changed, then changed and cancelled.
        for (int round = 0; round < 3; ++round) {
            const QDateTime before = QDateTime::currentDateTime();
            ModalAnswer answer(as<DatetimeDialog>([&](DatetimeDialog *dialog) {
                if (round > 0)
                    dialog->findChild<QDateTimeEdit *>(QStringLiteral("dateTimeEdit"))->setDateTime(picked);
                round < 2 ? dialog->accept() : dialog->reject();
            }));
            window.action("actionSet_date_time")->trigger();
            if (round == 0)
                QVERIFY(spy.takeFirst().at(0).toDateTime() >= before);
        }
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().at(0).toDateTime(), picked);
    }
    void autoRefreshAction_data()
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
    void autoRefreshAction()
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
    void uncheckingAutoRefreshStopsForGood()
    {
        // A stored period past the dialog's range is held to two minutes.
        store("isAutoRefreshEnabled", true);
        store("autoRefreshPeriod", 500);
        Window window;
        QAction *action = window.action("actionStatistics_autorefresh");
        QVERIFY(action->isChecked());
        activate(&window);
        QCOMPARE(window.refreshTimer->interval(), 120000);
        QVERIFY(window.refreshTimer->isActive());
        window.alowAutoUpdate(false);
        ModalAnswer unexpected([](QWidget *modal) { modal->close(); });
        action->trigger();
        QCOMPARE(unexpected.answered, 0);
        QVERIFY(!action->isChecked() && !window.refreshTimer->isActive());
        QCOMPARE(stored("isAutoRefreshEnabled").toBool(), false);
        QVERIFY(!window.autoUpdate); // left as it was
        Window other;
        activate(&other);
        activate(&window);
        QVERIFY(!window.refreshTimer->isActive());
    }
};

QTEST_MAIN(tst_DeviceMainWindow)
#include "tst_devicemainwindow.moc"
