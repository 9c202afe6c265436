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
};

// A page that refreshes itself when it comes into view.
class Page : public QWidget
{
    Q_OBJECT
public:
    explicit Page(int *updates)
        : updates(updates)
    {
    }
    int *updates;
public slots:
    void updateData() { ++*updates; }
};

} // namespace

class tst_WindowFaults : public QObject
{
    Q_OBJECT
private slots:
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
        QSettings settings(QStringLiteral("Core"), QStringLiteral("DLL"));
        settings.setValue(QStringLiteral("DeviceWindowState/isAutoRefreshEnabled"), true);
        settings.setValue(QStringLiteral("DeviceWindowState/autoRefreshPeriod"), 1);
        int updates = 0;
        int refreshes = 0;
        QPointer<Window> window = new Window;
        window->addPanel(QStringLiteral("System"), new Page(&updates));
        window->addPanel(QStringLiteral("Statistics.G826"), new Page(&updates));
        connect(window.data(), &DeviceMainWindow::sendTreeItemPath, [&refreshes] { ++refreshes; });
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        QPointer<QTimer> timer = window->refreshTimer;
        QVERIFY(timer->isActive());

        // Let the clock tick once, so the window is mid-way through its period.
        QTreeView *tree = window->findChild<QTreeView *>(QStringLiteral("trvPages"));
        tree->setCurrentIndex(window->model->item(0)->index());
        QSignalSpy ticks(timer.data(), &QTimer::timeout);
        QVERIFY(ticks.wait(3000) && refreshes >= 1);
        if (how == QLatin1String("close")) {
            window->setAttribute(Qt::WA_DeleteOnClose);
            QVERIFY(window->close());
        } else {
            if (how == QLatin1String("queued refresh"))
                tree->setCurrentIndex(window->model->item(1)->child(0)->index());
            delete window;
        }
        QTRY_VERIFY(!window);
        QVERIFY(!timer);

        // A full period later nothing has fired: no refresh request, no page update.
        const QList<int> atEnd {refreshes, updates};
        QTest::qWait(1200);
        QCOMPARE((QList<int> {refreshes, updates}), atEnd);
    }
};

QTEST_MAIN(tst_WindowFaults)
#include "tst_windowfaults.moc"
