// A configuration window that goes away while its refresh clock runs, in the
// ways hosts let windows go: deleted at once, closed with deferred deletion,
// or torn down with a page refresh still queued.

#include <ui/devicemainwindow.h>

#include <QtTest>

#include <QPointer>
#include <QSettings>
#include <QStandardItemModel>
#include <QTimer>
#include <QTreeView>

namespace {

class Window : public DeviceMainWindow
{
public:
    using DeviceMainWindow::model;
    using DeviceMainWindow::refreshTimer;

    QTreeView *tree() const { return findChild<QTreeView *>(QStringLiteral("trvPages")); }
};

// A page that refreshes itself when it comes into view.
class Page : public QWidget
{
    Q_OBJECT
public:
    int *updates = nullptr;
public slots:
    void updateData() { ++*updates; }
};

} // namespace

class tst_WindowFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QSettings settings(QStringLiteral("Core"), QStringLiteral("DLL"));
        settings.setValue(QStringLiteral("DeviceWindowState/isAutoRefreshEnabled"), true);
        settings.setValue(QStringLiteral("DeviceWindowState/autoRefreshPeriod"), 1);
    }
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

        int updates = 0;
        int refreshes = 0;
        QPointer<Window> window = new Window;
        auto *first = new Page, *second = new Page;
        first->updates = second->updates = &updates;
        window->addPanel(QStringLiteral("System"), first);
        window->addPanel(QStringLiteral("Statistics.G826"), second);
        connect(window.data(), &DeviceMainWindow::sendTreeItemPath, [&refreshes] { ++refreshes; });
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        QPointer<QTimer> timer = window->refreshTimer;
        QVERIFY(timer->isActive());
        const quint8 shown = DeviceMainWindow::getWindowsCount();

        // Let the clock tick once, so the window is mid-way through its period.
        window->tree()->setCurrentIndex(window->model->item(0)->index());
        QSignalSpy ticks(timer.data(), &QTimer::timeout);
        QVERIFY(ticks.wait(3000));
        QVERIFY(refreshes >= 1);

        if (how == QLatin1String("delete")) {
            delete window;
        } else if (how == QLatin1String("close")) {
            window->setAttribute(Qt::WA_DeleteOnClose);
            QVERIFY(window->close());
        } else {
            window->tree()->setCurrentIndex(window->model->item(1)->child(0)->index());
            delete window;
        }
        QTRY_VERIFY(!window);
        QVERIFY(!timer);
        // Closing counts the window out, and so does its destruction.
        const int countedOut = how == QLatin1String("close") ? 2 : 1;
        QCOMPARE(int(DeviceMainWindow::getWindowsCount()), qMax(0, int(shown) - countedOut));

        // A full period later nothing has fired: no refresh request, no page update.
        const int refreshesAtEnd = refreshes;
        const int updatesAtEnd = updates;
        QTest::qWait(1200);
        QCOMPARE(refreshes, refreshesAtEnd);
        QCOMPARE(updates, updatesAtEnd);
    }
};

QTEST_MAIN(tst_WindowFaults)
#include "tst_windowfaults.moc"
