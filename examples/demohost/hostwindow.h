#ifndef HOSTWINDOW_H
#define HOSTWINDOW_H

#include "hostscene.h"
#include "simulatednetwork.h"
#include "topologystore.h"

#include <core/core.h>
#include <snmp/snmptarget.h>
#include <ui/trapvisual.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QMainWindow>
#include <QPersistentModelIndex>
#include <QSet>
#include <QSizeF>
#include <QString>

class AgentProcess;
class DemoUnit;
class DeviceGraphicsView;
class Map;
class QAction;
class QActionGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QStandardItemModel;
class QTableView;
class QTimer;
class QTreeView;
class SerialTransport;
class SnmpTransport;

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
        // Units inside this process instead of behind real wires.
        bool simulated = false;
        SimulatedNetwork::Options network; // its seed also seeds the started agent
        QString agentProgram; // the demoagent to start; empty: none
        SnmpTarget credentials; // version, community or v3 user of the agent's units
        QList<SnmpTarget> agents; // units at SNMP endpoints started elsewhere
    };

    explicit HostWindow(const Options &options, QWidget *parent = nullptr);
    ~HostWindow() override;

    // Starts the agent, registers the units, draws them and starts the
    // repeated scan. False with startError() when the agent did not start.
    bool start();
    QString startError() const { return error; }
    // Writes mainwindow.png and configwindow.png into the folder, then
    // emits screenshotsTaken().
    void takeScreenshots(const QString &folder);

    // What the status line shows.
    QString statusText() const;
    // Saves the positions, links and view of the drawing now; also done on close.
    bool saveTopology();
    // A lasting remark of the status line, such as a damaged layout file.
    QString noticeText() const;

signals:
    void screenshotsTaken(bool ok, const QString &message);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    // The tests look inside.
    friend class tst_DemoHost;
    friend class tst_Wires;

    Map *deviceMap() const { return map; }
    HostScene *scene() const { return topology; }
    // Null unless the units are simulated.
    SimulatedNetwork *network() const { return simulatedNetwork; }
    TrapVisual *trapList() const { return traps; }
    DemoUnit *unit(unsigned short key) const;
    QList<unsigned short> unitKeys() const { return keys; }
    int pollCount(unsigned short key) const { return polls.value(key); }
    int passCount() const { return passes; }
    int blinkCount() const { return blinks; }
    int heldTrapCount() const { return held.size(); }
    qint64 lastPassLength() const { return lastPassMs; }

    void buildUi();
    QWidget *buildTrapPanel();
    void buildToolBar();
    void connectMap();
    void addSimulatedUnits();
    bool addUnitsOnWires();
    unsigned short addUnit(int index, Core::InterfaceProtocolType protocol, const QString &address);
    void placeUnits();
    void chooseGrid();
    void placeOnGrid(const QList<unsigned short> &unplaced, bool avoidOthers);
    void linkOnGrid();
    void showTopology();
    void fitToUnits();
    void reportDamagedLayout();
    void showNotice(const QString &text);
    // Selects the unit on the drawing and in the tree and brings it into view.
    void showUnit(unsigned short key);
    void onSceneSelectionChanged();
    void findUnit();
    void removeLink(unsigned short from, unsigned short to);
    QWidget *buildTopologyPanel();
    void connectScan();
    void setScanning(bool on);
    void startScanPass();
    void onScanStep();
    void onScanStalled();
    void endScanPass();
    void markStaleUnits();
    // The length of the last scan pass, for the status line.
    QString passText() const;
    void refreshAlarms();
    void pushAlarms();
    void onTrap(unsigned short key, int alarm, const QHash<QString, QVariant> &variables);
    void onTrapFreeze(bool frozen);
    void confirmClearTraps();
    void updateTrapCount();
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
    HostScene *topology;
    DeviceGraphicsView *view;
    // The transports: simulated units, or serial lines and SNMP clients.
    SimulatedNetwork *simulatedNetwork = nullptr;
    SerialTransport *serialLines = nullptr;
    SnmpTransport *snmpUnits = nullptr;
    AgentProcess *agent = nullptr;
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
    QLabel *lblTrapCount;
    QLabel *lblStatus;
    QLabel *lblNotice;
    QLineEdit *leFind = nullptr;
    QActionGroup *highlightGroup = nullptr;
    QAction *actScan = nullptr;
    QWidget *wgtScanPaused = nullptr;
    // Fires when a pass has not moved on for far longer than any transport waits.
    QTimer *stallGuard = nullptr;
    QTimer *statusRefresh = nullptr;

    QList<unsigned short> keys;
    // Traps that arrived while the list was frozen, with their arrival time.
    QList<QPair<TrapVisualUnit, QDateTime>> held;
    QHash<unsigned short, int> polls;
    QList<unsigned short> groupHighlighted;
    QElapsedTimer passClock;
    QDateTime scanSince;
    qint64 lastPassMs = -1;
    unsigned short scanKey = 0;
    int stallChecks = 0;
    bool passRunning = false;
    int passes = 0;
    int blinks = 0;
    int trapCount = 0;
    bool started = false;
    bool layoutSaved = false;
    bool syncingSelection = false;
    int gridColumns = 4;
    QSizeF gridCell;
    QString error;
    QPersistentModelIndex site;
};

#endif // HOSTWINDOW_H
