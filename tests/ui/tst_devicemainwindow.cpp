#include <ui/devicemainwindow.h>
#include <ui/loadsettingsdialog.h>
#include <ui/resetsettingsdialog.h>
#include <ui/statautorefreshdialog.h>

#include "modalanswer.h"

#include <QtTest>

#include <QAbstractButton>
#include <QAction>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QProgressBar>
#include <QSettings>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
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
    static inline int all = 0; // outlives the pages
public slots:
    void updateData() { ++updates, ++all; }
};

// Reads a stored window setting, or writes it when given a value.
static QVariant stored(const char *key, const QVariant &value = QVariant())
{
    QSettings settings(QStringLiteral("Core"), QStringLiteral("DLL"));
    if (value.isValid())
        settings.setValue(QStringLiteral("DeviceWindowState/") + QLatin1String(key), value);
    return settings.value(QStringLiteral("DeviceWindowState/") + QLatin1String(key));
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
    // "action#before#answer#seen#emitted#after": an action, the settings stored
    // before ("snmp" or "snmp-reset" set the unit's interface), how the modal is
    // answered (yes, escape, close, ok, "accept ARG", "reject ARG"), what it
    // showed (title|contents), what the window emitted and what it stored. DIR
    // and DOCS stand for the test's folder and the documents folder.
    void actions_data()
    {
        QTest::addColumn<QString>("row");
        const QString restart = "Restart###Restart device|Do you realy want restart device?#restartDevice()#";
        const QString restore = "Load_last_saved###Load last saved|Do you realy want load last saved "
                                "settings?#restoreDevice()#";
        const QString factory = "To_factory#dontresetaddress=";
        const QString refused = "Reset to factory settings|This action not supported trough SNMP|1|1";
        const QString load = "Select file.|DOCS|0#loadSettingsFile(/srv/units/mux-7.dvsf,";
        const QString save = "Save_settings#lastsavedpath=DIR#accept mux-7";
        const QString files = "#Select file.|DIR|Device settings file(*.dvsf)|1#";
        QStringList rows {"Read_data####reload()#", "Save####saveMemory()#", "Apply####applyChanges()#",
            "Reset_statistics####resetStatistics()#", "Switch_to_Active####switchToActive()#",
            "Write_data#####", // for subclasses
            // Messages: the box's icon and whether the window is its parent; an unknown type shows nothing.
            "message 0##ok#Information|Line E1-3 lost|1|1##", "message 1##ok#Warning|Line E1-3 lost|2|1##",
            "message 2##ok#Error|Line E1-3 lost|3|1##", "message 3#####",
            factory + "false#accept 1#Factory Reset|0#toFactory(true)#dontresetaddress=true",
            factory + "true#accept 0#Factory Reset|1#toFactory(false)#dontresetaddress=false",
            factory + "true#reject 0#Factory Reset|1##dontresetaddress=true",
            "To_factory#snmp;dontresetaddress=true#ok#" + refused + "##dontresetaddress=true",
            "To_factory#snmp-reset#accept 1#Factory Reset|0#toFactory(true)#dontresetaddress=true",
            // The key holds the "do not load" box unchanged, whatever its name says.
            "Load_settings##accept 1#" + load
                + "true)#lastsavedpath=/srv/units/mux-7.dvsf;needloadaddress=true",
            "Load_settings#lastsavedpath=/srv/a.dvsf;needloadaddress=true#accept 0#Select file.|/srv/a.dvsf|1"
            "#loadSettingsFile(/srv/units/mux-7.dvsf,false)#lastsavedpath=/srv/units/mux-7.dvsf;"
            "needloadaddress=false",
            "Load_settings##reject 1#Select file.|DOCS|0##",
            save + files + "saveSettingsFile(DIR/mux-7.dvsf)#lastsavedpath=DIR/mux-7.dvsf",
            save + ".dvsf" + files + "saveSettingsFile(DIR/mux-7.dvsf)#lastsavedpath=DIR/mux-7.dvsf",
            save + ".DVSF" + files
                + "saveSettingsFile(DIR/mux-7.DVSF.dvsf)#lastsavedpath=DIR/mux-7.DVSF.dvsf",
            "Save_settings#lastsavedpath=DIR#reject" + files + "#lastsavedpath=DIR",
            // The period as the dialog shows it, and the refresh clock afterwards.
            "Statistics_autorefresh##accept 5#T|1##P=5;E=true|5000",
            "Statistics_autorefresh#autoRefreshPeriod=30#accept 30#T|30##P=30;E=true|30000",
            "Statistics_autorefresh#autoRefreshPeriod=500#accept 120#T|120##P=120;E=true|120000",
            "Statistics_autorefresh#autoRefreshPeriod=0#accept 2#T|1##P=2;E=true|2000",
            "Statistics_autorefresh#autoRefreshPeriod=7#reject#T|7##P=7|off"};
        // The box has only Yes: any way of closing it confirms.
        for (const QString dismiss : {"yes", "escape", "close"})
            rows << QString(restart).insert(restart.indexOf('#') + 2, dismiss)
                 << QString(restore).insert(restore.indexOf('#') + 2, dismiss);
        for (QString row : qAsConst(rows)) {
            row.replace("T|", "Auto refresh statistics|").replace("P=", "autoRefreshPeriod=");
            QTest::newRow(qPrintable(row.section('#', 0, 2))) << row.replace("E=", "isAutoRefreshEnabled=");
        }
    }
    void actions()
    {
        QFETCH(QString, row);
        const QString action = row.section('#', 0, 0), before = row.section('#', 1, 1);
        const QString answer = row.section('#', 2, 2);
        QTemporaryDir dir;
        const auto placeholders = [&](QString text) {
            return text.replace(dir.path(), "DIR")
                .replace(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), "DOCS");
        };
        for (const QString &entry : before.split(';'))
            if (entry.contains('='))
                stored(qPrintable(entry.section('=', 0, 0)),
                    QString(entry.section('=', 1)).replace("DIR", dir.path()));
        Window window;
        if (before.contains("snmp"))
            window.setInterface(before.contains("snmp-reset") ? Core::IPT_SNMP_V3 : Core::IPT_SNMP_V1);
        if (before.contains("snmp-reset"))
            window.enableSnmpResetToFactory();
        auto *page = new QWidget;
        page->setFocusPolicy(Qt::StrongFocus);
        window.addPanel("P", page);
        window.tree()->setCurrentIndex(window.model->item(0)->index());
        activate(&window);
        window.tree()->setFocus();

        QList<QSignalSpy *> spies;
        const QMetaObject *meta = window.metaObject();
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            if (meta->method(i).methodType() == QMetaMethod::Signal)
                spies << new QSignalSpy(
                    &window, QByteArray("2" + meta->method(i).methodSignature()).constData());
        }
        const QString verb = answer.section(' ', 0, 0), arg = answer.section(' ', 1);
        QString seen;
        ModalAnswer modal([&](QWidget *shown) {
            seen = shown->windowTitle();
            if (auto *box = qobject_cast<QMessageBox *>(shown)) {
                seen += '|' + box->text();
                if (verb == "ok")
                    seen += QStringLiteral("|%1|%2").arg(box->icon()).arg(box->parentWidget() == &window);
                QCOMPARE(box->standardButtons(),
                    QMessageBox::StandardButtons(verb == "ok" ? QMessageBox::Ok : QMessageBox::Yes));
                if (verb == "escape")
                    QTest::keyClick(box, Qt::Key_Escape);
                else if (verb == "close")
                    box->close();
                else
                    box->button(verb == "ok" ? QMessageBox::Ok : QMessageBox::Yes)->click();
                return;
            }
            if (auto *reset = qobject_cast<ResetSettingsDialog *>(shown)) {
                seen += '|' + QString::number(reset->getNotResetAddresses());
                reset->setNotResetAddresses(arg == "1");
            } else if (auto *load = qobject_cast<LoadSettingsDialog *>(shown)) {
                seen += '|' + load->getPath() + '|' + QString::number(load->getNotLoadAddresses());
                load->setPath("/srv/units/mux-7.dvsf");
                load->setNotLoadAddresses(arg == "1");
            } else if (auto *period = qobject_cast<StatAutoRefreshDialog *>(shown)) {
                seen += '|' + QString::number(period->getPeriod());
                period->setPeriod(arg.toInt());
            } else if (auto *files = qobject_cast<QFileDialog *>(shown)) {
                seen += '|' + files->directory().absolutePath() + '|' + files->nameFilters().join(',') + '|'
                    + QString::number(files->parentWidget() == nullptr);
                if (verb == "accept")
                    return chooseFile(files, dir.filePath(arg));
            }
            verb == "accept" ? static_cast<QDialog *>(shown)->accept()
                             : static_cast<QDialog *>(shown)->reject();
        });
        if (action.startsWith("message"))
            window.showMessage(QStringLiteral("Line E1-3 lost"), action.section(' ', 1).toInt());
        else
            window.action(qPrintable("action" + action))->trigger();
        QCOMPARE(modal.answered, int(!answer.isEmpty()));
        QCOMPARE(placeholders(seen), row.section('#', 3, 3));

        QStringList emitted;
        for (QSignalSpy *spy : spies) {
            for (const QList<QVariant> &args : qAsConst(*spy)) {
                QStringList texts;
                for (const QVariant &value : args)
                    texts << value.toString();
                emitted << QString::fromLatin1(spy->signal()).section('(', 0, 0) + '(' + texts.join(',')
                        + ')';
            }
        }
        qDeleteAll(spies);
        QCOMPARE(placeholders(emitted.join(' ')), row.section('#', 4, 4));
        // Save and Apply first take the focus to the page so open editors commit.
        QCOMPARE(page->hasFocus(), action == "Save" || action == "Apply");

        QSettings settings(QStringLiteral("Core"), QStringLiteral("DLL"));
        settings.beginGroup(QStringLiteral("DeviceWindowState"));
        QStringList after;
        for (const QString &key : settings.childKeys())
            after << key + '=' + settings.value(key).toString();
        QString state = after.join(';');
        if (action == "Statistics_autorefresh") {
            const bool on = window.action("actionStatistics_autorefresh")->isChecked();
            state += '|' + (on ? QString::number(window.refreshTimer->interval()) : QString("off"));
            QCOMPARE(window.autoUpdate, on);
            QCOMPARE(window.refreshTimer->isActive(), on);
            // A new window starts with the action as it was left.
            QCOMPARE(Window().action("actionStatistics_autorefresh")->isChecked(), on);
        }
        QCOMPARE(placeholders(state), row.section('#', 5, 5));
    }
    void storedPeriodHeldToTwoMinutes()
    {
        // A stored period past the dialog's range must not stretch the clock.
        stored("isAutoRefreshEnabled", true);
        stored("autoRefreshPeriod", 500);
        Window window;
        activate(&window);
        QCOMPARE(window.refreshTimer->interval(), 120000);
    }
    // A window that goes away while its refresh clock runs, in the ways hosts
    // let windows go, must leave nothing behind that fires later.
    void destroyedWhileRefreshRuns_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("deleted at once") << "delete";
        QTest::newRow("closed, deleted later") << "close";
        QTest::newRow("deleted with a page refresh queued") << "queued refresh";
    }
    void destroyedWhileRefreshRuns()
    {
        QFETCH(QString, how);
        stored("isAutoRefreshEnabled", true);
        stored("autoRefreshPeriod", 1);
        int refreshes = 0;
        QPointer<Window> window = new Window;
        window->addPanel(QStringLiteral("System"), new Page);
        window->addPanel(QStringLiteral("Statistics.G826"), new Page);
        connect(window.data(), &DeviceMainWindow::sendTreeItemPath, [&refreshes] { ++refreshes; });
        activate(window);
        QPointer<QTimer> timer = window->refreshTimer;
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 1000);

        // Let the clock tick once, so the window is mid-way through its period.
        window->tree()->setCurrentIndex(window->model->item(0)->index());
        QSignalSpy ticks(timer.data(), &QTimer::timeout);
        QVERIFY(ticks.wait(3000) && refreshes >= 1);
        if (how == QLatin1String("close")) {
            window->setAttribute(Qt::WA_DeleteOnClose);
            QVERIFY(window->close());
        } else {
            if (how == QLatin1String("queued refresh"))
                window->tree()->setCurrentIndex(window->model->item(1)->child(0)->index());
            delete window;
        }
        QTRY_VERIFY(!window);
        QVERIFY(!timer);

        // A full period later nothing has fired: no refresh request, no page update.
        const QList<int> atEnd {refreshes, Page::all};
        QTest::qWait(1200);
        QCOMPARE((QList<int> {refreshes, Page::all}), atEnd);
    }
};

QTEST_MAIN(tst_DeviceMainWindow)
#include "tst_devicemainwindow.moc"
