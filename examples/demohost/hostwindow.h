#ifndef HOSTWINDOW_H
#define HOSTWINDOW_H

#include "simulatednetwork.h"
#include "topologystore.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMainWindow>
#include <QSet>
#include <QString>

class DemoUnit;
class DeviceGraphicsView;
class DeviceScene;
class Map;
class QActionGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QStandardItemModel;
class QTableView;
class QTimer;
class QTreeView;
class TrapVisual;

// The host application's main window: the device tree, the topology, the
// trap list and a status line, wired to one Map, one DeviceScene and the
// host's transport. This is the "how do I wire it" answer in one class;
// start reading at the constructor and at start().
class HostWindow : public QMainWindow
{
    Q_OBJECT
public:
    struct Options
    {
        int units = 12;
        int scanPeriodMs = 1000; // a new scan pass when the last one is over
        QString topologyFile; // empty: the user's configuration folder
        SimulatedNetwork::Options network;
    };

    explicit HostWindow(const Options &options, QWidget *parent = nullptr);
    ~HostWindow() override;

    // Registers the units, draws them and starts the repeated scan.
    void start();
    // Writes mainwindow.png and configwindow.png into the folder, then
    // emits screenshotsTaken().
    void takeScreenshots(const QString &folder);

    // What the status line shows, for the integration test.
    Map *deviceMap() const { return map; }
    DeviceScene *scene() const { return topology; }
    SimulatedNetwork *network() const { return transport; }
    TrapVisual *trapList() const { return traps; }
    DemoUnit *unit(unsigned short key) const;
    QList<unsigned short> unitKeys() const { return keys; }
    int pollCount(unsigned short key) const { return polls.value(key); }
    int passCount() const { return passes; }
    int blinkCount() const { return blinks; }
    QString statusText() const;
    // Saves the positions and links of the drawing now; also done on close.
    bool saveTopology();

signals:
    void screenshotsTaken(bool ok, const QString &message);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildUi();
    void buildToolBar();
    void addUnits();
    void placeUnits();
    void startScanPass();
    void refreshAlarms();
    void pushAlarms();
    void onTrap(unsigned short key, int alarm, const QHash<QString, QVariant> &variables);
    void onDeviceContextMenu(const QPointF &scenePos, unsigned short key);
    void onLinkContextMenu(const QPointF &scenePos, unsigned short from, unsigned short to);
    void onTreeActivated(const QModelIndex &index);
    void onTreeCurrentChanged(const QModelIndex &index);
    void printTraps();
    void updateStatusLine();
    void finishScreenshots(const QString &folder, unsigned short key, bool mainOk);
    QString unitName(unsigned short key) const;

    Options options;
    Map *map;
    DeviceScene *topology;
    DeviceGraphicsView *view;
    SimulatedNetwork *transport;
    TrapVisual *traps;
    TopologyStore store;
    QTimer *scanTimer;
    QTimer *alarmPush;
    QElapsedTimer lastAlarmPush;
    QTreeView *trvDevices;
    QTableView *tvwTraps;
    QLineEdit *leTrapFilter;
    QCheckBox *chbTrapColors;
    QCheckBox *chbTrapFreeze;
    QLabel *lblStatus;
    QActionGroup *highlightGroup = nullptr;

    QList<unsigned short> keys;
    QHash<unsigned short, int> polls;
    QList<unsigned short> groupHighlighted;
    QElapsedTimer passClock;
    int passes = 0;
    int blinks = 0;
    int trapCount = 0;
    bool started = false;
};

#endif // HOSTWINDOW_H
