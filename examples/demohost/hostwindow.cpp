#include "hostwindow.h"

#include "agentprocess.h"
#include "demounit.h"
#include "serialtransport.h"
#include "simulatedunit.h"
#include "snmptransport.h"
#include "trapwords.h"
#include "unitwindow.h"

#include <device/map.h>
#include <storage/savesettings.h>
#include <topology/devicegraphicsview.h>
#include <topology/deviceitem.h>
#include <topology/devicescene.h>
#include <ui/printing.h>
#include <ui/trapvisual.h>

#include <QAction>
#include <QActionGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QStandardItemModel>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int unitsPerSite = 4;
// The scene keeps a unit's origin inside this rectangle.
const QRectF originArea(0, 0, 1900, 1060);

// The columns and cell of a grid that holds count panels inside the drawing,
// with gaps as wide as room allows; false when even the narrowest gap leaves
// too little room.
bool fitGrid(const QSizeF &panel, int count, int &columns, QSizeF &cell)
{
    for (double gap : {40.0, 30.0, 20.0, 12.0, 6.0, 2.0}) {
        cell = panel + QSizeF(gap, gap * 0.75);
        const int maxColumns = static_cast<int>(originArea.width() / cell.width()) + 1;
        const int maxRows = static_cast<int>(originArea.height() / cell.height()) + 1;
        if (maxColumns * maxRows < count)
            continue;
        // Rows about twice as wide as high, whole sites to a row.
        int wanted = static_cast<int>(std::ceil(std::sqrt(2.0 * count * cell.height() / cell.width())));
        wanted = (wanted + unitsPerSite - 1) / unitsPerSite * unitsPerSite;
        columns = qBound((count + maxRows - 1) / maxRows, wanted, maxColumns);
        return true;
    }
    columns = static_cast<int>(originArea.width() / cell.width()) + 1;
    return false;
}
// The trap list's cap and that of the traps held while it is frozen: at 2,000
// units, an hour of traps would otherwise take gigabytes.
constexpr int trapRowLimit = 5000;
// The level the topology draws as "not responding".
const auto alarmNotResponding = static_cast<Core::AlarmType>(4);
// Serial lines give up after 1 s and SNMP requests after 0.5 s, so a pass
// that has not moved for this long has lost a reply on the host's side.
constexpr int stallLimitMs = 30000;

QString siteName(int site)
{
    return site < 26 ? HostWindow::tr("Site %1").arg(QChar('A' + site))
                     : HostWindow::tr("Site %1").arg(site + 1);
}

// Simulated serial units answer to a bus address, SNMP units to their IP address.
QString simulatedAddress(int index)
{
    return UnitLayout::isSnmpUnit(index) ? UnitLayout::unitIp(index) : QString::number(index / 2 + 1);
}

Core::InterfaceProtocolType protocolOf(const SnmpTarget &target)
{
    return target.version == SnmpTarget::V3 ? Core::IPT_SNMP_V3 : Core::IPT_SNMP_V1;
}

QString endpointText(const SnmpTarget &target)
{
    return QStringLiteral("%1:%2").arg(target.host.toString()).arg(target.port);
}

QString defaultTopologyFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
        + QStringLiteral("/topology.json");
}

} // namespace

HostWindow::HostWindow(const Options &options, QWidget *parent)
    : QMainWindow(parent)
    , options(options)
    , map(new Map(this))
    , topology(new HostScene(this))
    , view(nullptr)
    , traps(new TrapVisual(this))
    , store(options.topologyFile.isEmpty() ? defaultTopologyFile() : options.topologyFile)
    , scanTimer(new QTimer(this))
    , alarmPush(new QTimer(this))
{
    setWindowTitle(tr("MuxCore demo host"));
    // Settings files name their model; files of the older generation find
    // their code through this table, which only the host can fill.
    SaveSettings::deviceCodes.insert(UnitLayout::deviceCode, UnitLayout::modelName());
    buildUi();

    // The transport listens to the map's requests and hands back answers.
    if (options.simulated) {
        simulatedNetwork = new SimulatedNetwork(map, options.network, this);
        connect(simulatedNetwork, &SimulatedNetwork::trap, this, &HostWindow::onTrap);
    } else {
        serialLines = new SerialTransport(map, 1000, this);
        snmpUnits = new SnmpTransport(map, this);
        connect(snmpUnits, &SnmpTransport::trap, this, &HostWindow::onTrap);
    }
    connectMap();

    // The scene reports what the user does; the host decides what it means.
    connect(topology, &DeviceScene::doubleClick, this, [this](unsigned short key) {
        if (DemoUnit *u = unit(key))
            u->showUi();
    });
    connect(topology, &DeviceScene::contextMenu, this, &HostWindow::onDeviceContextMenu);
    connect(topology, &DeviceScene::contextMenuLink, this, &HostWindow::onLinkContextMenu);
    connect(topology, &DeviceScene::togleAlarm, this, [this] { ++blinks; });
    connect(topology, &QGraphicsScene::selectionChanged, this, &HostWindow::onSceneSelectionChanged);
    connect(topology, &HostScene::linkRefused, this, [this](unsigned short from, unsigned short to) {
        statusBar()->showMessage(
            tr("%1 and %2 are already linked; the new link was not added.").arg(unitName(from), unitName(to)),
            8000);
    });

    alarmPush->setSingleShot(true);
    connect(alarmPush, &QTimer::timeout, this, &HostWindow::pushAlarms);

    connectScan();
}

HostWindow::~HostWindow()
{
    // A window closed by the user has saved already and said so if it could not.
    if (started && !layoutSaved && !saveTopology())
        qWarning("The layout could not be saved to %s: %s", qPrintable(store.path()),
            qPrintable(store.errorString()));
    // Stop the lines first, then the agent, then the map; the units go with this window.
    delete simulatedNetwork;
    simulatedNetwork = nullptr;
    delete serialLines;
    serialLines = nullptr;
    delete snmpUnits;
    snmpUnits = nullptr;
    delete agent;
    agent = nullptr;
    delete map;
    map = nullptr;
    // The scene dies among this window's children and deselects its units on
    // the way; this window is no HostWindow by then.
    disconnect(topology, nullptr, this, nullptr);
}

void HostWindow::connectMap()
{
    // The map re-emits every unit's notifications with its key. Alarm
    // changes go to the scene as a whole map, front panels one by one.
    connect(map, &Map::alarmStateChanged, this, &HostWindow::refreshAlarms);
    connect(map, &Map::frontpanel, topology, &DeviceScene::setFrontPanel);
    connect(map, &Map::updateAlarmFinished, this, [this](unsigned short key) {
        polls[key] += 1;
        updateStatusLine();
    });
    // The transport opens and closes a unit's serial line when the unit asks.
    connect(map, &Map::serialState, this, [this](unsigned short key, bool on) {
        if (simulatedNetwork)
            simulatedNetwork->setLineOpen(key, on);
        if (serialLines)
            serialLines->setLineOpen(key, on);
        statusBar()->showMessage(on ? tr("Serial line of %1 opened.").arg(unitName(key))
                                    : tr("Serial line of %1 closed.").arg(unitName(key)),
            5000);
    });
    connect(map, &Map::uiClosed, this, [this](unsigned short key) {
        statusBar()->showMessage(tr("Configuration of %1 closed.").arg(unitName(key)), 5000);
    });
}

QString HostWindow::unitName(unsigned short key) const
{
    DemoUnit *u = unit(key);
    return u ? u->getParameter(DeviceDescriptor::DP_NAME).toString() : QString();
}

DemoUnit *HostWindow::unit(unsigned short key) const
{
    return map ? qobject_cast<DemoUnit *>(map->getDevice(key)) : nullptr;
}

void HostWindow::buildUi()
{
    trvDevices = new QTreeView;
    trvDevices->setObjectName(QStringLiteral("trvDevices"));
    trvDevices->setModel(map->getModel());
    trvDevices->setHeaderHidden(true);
    trvDevices->setEditTriggers(QAbstractItemView::NoEditTriggers);
    connect(trvDevices, &QTreeView::activated, this, &HostWindow::onTreeActivated);
    connect(trvDevices->selectionModel(), &QItemSelectionModel::currentChanged, this,
        [this](const QModelIndex &current) { onTreeCurrentChanged(current); });

    view = new DeviceGraphicsView(topology);
    view->setObjectName(QStringLiteral("gvwTopology"));
    view->setRenderHint(QPainter::Antialiasing);
    view->setDragMode(QGraphicsView::RubberBandDrag);
    view->setToolTip(tr("Ctrl + wheel zooms; double-click a unit to configure it"));

    auto *top = new QSplitter(Qt::Horizontal);
    top->addWidget(trvDevices);
    top->addWidget(buildTopologyPanel());
    top->setStretchFactor(1, 1);
    top->setSizes({220, 1060});
    auto *main = new QSplitter(Qt::Vertical);
    main->addWidget(top);
    main->addWidget(buildTrapPanel());
    main->setStretchFactor(0, 2);
    main->setStretchFactor(1, 1);
    main->setSizes({480, 240});
    setCentralWidget(main);

    lblNotice = new QLabel;
    lblNotice->setObjectName(QStringLiteral("lblNotice"));
    lblNotice->setStyleSheet(QStringLiteral("QLabel { color: #a00000; }"));
    lblNotice->setWordWrap(false);
    lblNotice->hide();
    statusBar()->addPermanentWidget(lblNotice, 1);
    lblStatus = new QLabel;
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    statusBar()->addPermanentWidget(lblStatus);
    buildToolBar();
}

QWidget *HostWindow::buildTrapPanel()
{
    // The trap list: the library's model behind a proxy that the view shows.
    tvwTraps = new QTableView;
    tvwTraps->setObjectName(QStringLiteral("tvwTraps"));
    traps->setMaximumRows(trapRowLimit);
    QSortFilterProxyModel *proxy = traps->getModel();
    // The library filters the first column; people look for a unit or an event.
    proxy->setFilterKeyColumn(-1);
    proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    tvwTraps->setModel(proxy);
    tvwTraps->setSortingEnabled(true);
    tvwTraps->sortByColumn(0, Qt::DescendingOrder);
    tvwTraps->horizontalHeader()->setStretchLastSection(true);
    tvwTraps->setColumnWidth(0, 200);
    tvwTraps->setColumnWidth(1, 110);
    tvwTraps->verticalHeader()->hide();
    tvwTraps->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tvwTraps->setSelectionBehavior(QAbstractItemView::SelectRows);
    tvwTraps->setToolTip(tr("Double-click a trap to show its unit"));
    connect(tvwTraps, &QTableView::doubleClicked, this, [this](const QModelIndex &index) {
        // The Device column carries the sending unit's key.
        const QVariant key = index.sibling(index.row(), 1).data(TrapVisual::IdentifierRole);
        if (key.isValid())
            showUnit(static_cast<unsigned short>(key.toULongLong()));
    });

    leTrapFilter = new QLineEdit;
    leTrapFilter->setObjectName(QStringLiteral("leTrapFilter"));
    leTrapFilter->setPlaceholderText(tr("Filter traps (regular expression)"));
    leTrapFilter->setClearButtonEnabled(true);
    connect(leTrapFilter, &QLineEdit::textChanged, traps, &TrapVisual::setFilter);
    chbTrapColors = new QCheckBox(tr("Colour by alarm"));
    chbTrapColors->setObjectName(QStringLiteral("chbTrapColors"));
    connect(chbTrapColors, &QCheckBox::toggled, traps, &TrapVisual::showColors);
    chbTrapColors->setChecked(true);
    chbTrapFreeze = new QCheckBox(tr("Freeze list"));
    chbTrapFreeze->setObjectName(QStringLiteral("chbTrapFreeze"));
    chbTrapFreeze->setToolTip(tr("While frozen, new traps are held and added when the list is unfrozen"));
    connect(chbTrapFreeze, &QCheckBox::toggled, this, &HostWindow::onTrapFreeze);
    auto *pbtClear = new QPushButton(tr("Clear"));
    pbtClear->setObjectName(QStringLiteral("pbtTrapClear"));
    connect(pbtClear, &QPushButton::clicked, this, &HostWindow::confirmClearTraps);
    lblTrapCount = new QLabel;
    lblTrapCount->setObjectName(QStringLiteral("lblTrapCount"));
    // Queued: a full list takes its oldest row away only after the proxy has
    // announced the new one, and the count must not show the moment between.
    for (auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(proxy, signal, this, &HostWindow::updateTrapCount, Qt::QueuedConnection);
    connect(proxy, &QAbstractItemModel::modelReset, this, &HostWindow::updateTrapCount);
    connect(proxy, &QAbstractItemModel::layoutChanged, this, &HostWindow::updateTrapCount);
    connect(leTrapFilter, &QLineEdit::textChanged, this, &HostWindow::updateTrapCount);
    updateTrapCount();
    auto *pbtPrint = new QPushButton(tr("Print..."));
    connect(pbtPrint, &QPushButton::clicked, this, &HostWindow::printTraps);

    auto *trapBar = new QHBoxLayout;
    trapBar->addWidget(new QLabel(tr("Traps")));
    trapBar->addWidget(leTrapFilter, 1);
    trapBar->addWidget(lblTrapCount);
    trapBar->addWidget(chbTrapColors);
    trapBar->addWidget(chbTrapFreeze);
    trapBar->addWidget(pbtClear);
    trapBar->addWidget(pbtPrint);
    auto *trapPanel = new QWidget;
    auto *trapLayout = new QVBoxLayout(trapPanel);
    trapLayout->setContentsMargins(0, 0, 0, 0);
    trapLayout->addLayout(trapBar);
    trapLayout->addWidget(tvwTraps);

    return trapPanel;
}

void HostWindow::buildToolBar()
{
    QToolBar *bar = addToolBar(tr("Topology"));
    bar->setObjectName(QStringLiteral("tbrTopology"));

    auto *modes = new QActionGroup(this);
    QAction *select = bar->addAction(tr("Select"));
    QAction *link = bar->addAction(tr("Draw links"));
    link->setToolTip(tr("Drag from one unit to another to link them"));
    for (QAction *a : {select, link}) {
        a->setCheckable(true);
        modes->addAction(a);
    }
    select->setChecked(true);
    connect(select, &QAction::triggered, this, [this] { topology->setInsertMode(DeviceScene::SelectMode); });
    connect(link, &QAction::triggered, this, [this] { topology->setInsertMode(DeviceScene::LinkMode); });
    bar->addSeparator();

    // The highlight follows the selection along the links.
    highlightGroup = new QActionGroup(this);
    const QList<QPair<QString, DeviceItem::HighLightMode>> highlights
        = {{tr("No highlight"), DeviceItem::HighLightOff}, {tr("Downstream"), DeviceItem::HighLightForward},
            {tr("Upstream"), DeviceItem::HighLightBackward}, {tr("Both ways"), DeviceItem::HighLightBoth}};
    for (const auto &entry : highlights) {
        QAction *a = bar->addAction(entry.first);
        a->setCheckable(true);
        a->setChecked(entry.second == DeviceItem::HighLightOff);
        highlightGroup->addAction(a);
        const DeviceItem::HighLightMode mode = entry.second;
        connect(a, &QAction::triggered, this, [this, mode] {
            topology->setHighlightOff();
            topology->setHighlight(mode);
        });
    }
    bar->addSeparator();

    connect(bar->addAction(tr("Zoom in")), &QAction::triggered, this, [this] { view->scale(1.15, 1.15); });
    connect(bar->addAction(tr("Zoom out")), &QAction::triggered, this,
        [this] { view->scale(1 / 1.15, 1 / 1.15); });
    connect(bar->addAction(tr("Fit")), &QAction::triggered, this, &HostWindow::fitToUnits);
    bar->addSeparator();
    leFind = new QLineEdit;
    leFind->setObjectName(QStringLiteral("leFind"));
    leFind->setPlaceholderText(tr("Find unit (Ctrl+F)"));
    leFind->setToolTip(tr("A name or an address; Enter shows the next match"));
    leFind->setClearButtonEnabled(true);
    leFind->setMaximumWidth(220);
    connect(leFind, &QLineEdit::returnPressed, this, &HostWindow::findUnit);
    bar->addWidget(leFind);
    auto *find = new QAction(tr("Find unit"), this);
    find->setShortcut(QKeySequence::Find);
    connect(find, &QAction::triggered, this, [this] {
        leFind->setFocus(Qt::ShortcutFocusReason);
        leFind->selectAll();
    });
    addAction(find);
    // Closing saves the layout, and says so if it cannot.
    auto *quit = new QAction(tr("Quit"), this);
    quit->setShortcut(QKeySequence::Quit);
    connect(quit, &QAction::triggered, this, &QWidget::close);
    addAction(quit);
    bar->addSeparator();

    QAction *scan = bar->addAction(QIcon(QStringLiteral(":/images/connect.png")), tr("Scan"));
    scan->setObjectName(QStringLiteral("actScan"));
    scan->setCheckable(true);
    scan->setChecked(true);
    scan->setToolTip(tr("Poll every unit in turn, again and again"));
    connect(scan, &QAction::toggled, this, &HostWindow::setScanning);
    actScan = scan;
    QAction *save = bar->addAction(QIcon(QStringLiteral(":/images/save.png")), tr("Save layout"));
    connect(save, &QAction::triggered, this, [this] {
        statusBar()->showMessage(saveTopology()
                ? tr("Layout saved to %1.").arg(store.path())
                : tr("The layout could not be saved to %1.").arg(store.path()),
            5000);
    });
}

bool HostWindow::start()
{
    if (started)
        return error.isEmpty();
    started = true;
    if (options.simulated)
        addSimulatedUnits();
    else if (!addUnitsOnWires())
        return false;
    placeUnits();
    trvDevices->expandAll();
    pushAlarms();
    startScanPass();
    scanTimer->start(options.scanPeriodMs);
    return true;
}

unsigned short HostWindow::addUnit(int index, Core::InterfaceProtocolType protocol, const QString &address)
{
    if (index % unitsPerSite == 0 || !site.isValid())
        site = map->addGroup(QModelIndex(), siteName(index / unitsPerSite))->index();
    auto *device = new DemoUnit(protocol, address, UnitLayout::firmwareOf(index), this);
    device->setParameter(DeviceDescriptor::DP_NAME, tr("Mux %1").arg(index + 1));
    // The map issues the key, files the unit under its site and connects
    // its signals; from here on the unit is known by its key.
    const unsigned short key = map->addItem(site, device, QVector<QString>());
    keys.append(key);
    // Queued behind the map's own step, so that the end of a pass is seen here.
    connect(device, &DeviceDescriptor::statusUpdated, this, &HostWindow::onScanStep, Qt::QueuedConnection);
    connect(device, &DeviceDescriptor::newEvent, this, [this](Core::SystemEvens event, const QString &text) {
        statusBar()->showMessage(
            tr("%1: %2").arg(Core::getEventDisplayDictionary().value(event), text), 5000);
    });
    return key;
}

void HostWindow::addSimulatedUnits()
{
    const int count = qBound(1, options.units, 2000);
    for (int i = 0; i < count; ++i) {
        const bool snmp = UnitLayout::isSnmpUnit(i);
        const unsigned short key
            = addUnit(i, snmp ? Core::IPT_SNMP_V1 : Core::IPT_SERIAL, simulatedAddress(i));
        simulatedNetwork->addUnit(
            key, new SimulatedUnit(i, snmp, UnitLayout::firmwareOf(i), UnitLayout::unitIp(i)));
    }
}

bool HostWindow::addUnitsOnWires()
{
    int index = 0;
    if (!options.agentProgram.isEmpty()) {
        // The agent sends its traps to the host's receiver.
        const quint16 trapPort = snmpUnits->listenForTraps();
        QStringList arguments {QStringLiteral("--units"), QString::number(qBound(1, options.units, 5000)),
            QStringLiteral("--seed"), QString::number(options.network.seed), QStringLiteral("--loss"),
            QString::number(options.network.errorRate)};
        if (trapPort != 0)
            arguments << QStringLiteral("--trap-port") << QString::number(trapPort);
        const SnmpTarget &credentials = options.credentials;
        arguments << QStringLiteral("--community") << credentials.community;
        if (credentials.version == SnmpTarget::V3) {
            arguments << QStringLiteral("--v3-user") << credentials.user << QStringLiteral("--auth-pass")
                      << credentials.authPassphrase << QStringLiteral("--priv-pass")
                      << credentials.privPassphrase;
        }
        agent = new AgentProcess(this);
        if (!agent->start(options.agentProgram, arguments)) {
            error = agent->errorString();
            return false;
        }
        for (const AgentProcess::Unit &unit : agent->units()) {
            if (!unit.snmp) {
                serialLines->addUnit(addUnit(index++, Core::IPT_SERIAL, unit.address), unit.address);
                continue;
            }
            SnmpTarget target = credentials;
            target.host = QHostAddress::LocalHost;
            target.port = static_cast<quint16>(unit.address.section(QLatin1Char(':'), -1).toUInt());
            // A lost reply is shown as lost rather than hidden by a retry.
            target.timeout = 500;
            target.retries = 0;
            snmpUnits->addUnit(addUnit(index++, protocolOf(target), endpointText(target)), target);
        }
    }
    for (const SnmpTarget &target : qAsConst(options.agents))
        snmpUnits->addUnit(addUnit(index++, protocolOf(target), endpointText(target)), target);
    return true;
}

void HostWindow::placeUnits()
{
    const TopologyStore::LoadResult loaded = store.load();
    if (loaded == TopologyStore::Damaged)
        reportDamagedLayout();
    chooseGrid();
    QList<unsigned short> unplaced;
    for (unsigned short key : qAsConst(keys)) {
        DemoUnit *device = unit(key);
        // Kept by name: ports and terminal paths of the agent change between runs.
        const QString name = device->getParameter(DeviceDescriptor::DP_NAME).toString();
        const bool known = store.hasPlace(name);
        const TopologyStore::Place place = store.place(name);
        // -1: the scene's default stacking.
        topology->addDeviceItem(key, device->getFrontPanel(), place.pos, known ? place.z : -1.0);
        if (!known)
            unplaced.append(key);
    }
    placeOnGrid(unplaced, loaded != TopologyStore::Missing);

    if (loaded == TopologyStore::Missing) {
        linkOnGrid();
    } else {
        QHash<QString, unsigned short> byName;
        for (unsigned short key : qAsConst(keys))
            byName.insert(unitName(key), key);
        for (const auto &link : store.links()) {
            if (byName.contains(link.first) && byName.contains(link.second))
                topology->addLink(byName.value(link.first), byName.value(link.second));
        }
    }
    // The whole area units can be dragged in, and a margin.
    topology->setSceneRect(originArea.adjusted(-20, -20, 260, 100).united(topology->itemsBoundingRect()));
    showTopology();
}

void HostWindow::chooseGrid()
{
    // Measured on a panel drawn aside, so that the grid follows what is drawn.
    auto panelSize = [this] {
        DeviceItem probe;
        QString description = unit(keys.value(0))->getFrontPanel();
        probe.setParameters(description);
        return probe.polygon().boundingRect().size();
    };
    if (keys.isEmpty() || fitGrid(panelSize(), keys.size(), gridColumns, gridCell))
        return;
    // Full panels side by side would not fit the drawing: every unit gets the small one.
    for (unsigned short key : qAsConst(keys))
        unit(key)->setCompactPanel(true);
    if (!fitGrid(panelSize(), keys.size(), gridColumns, gridCell))
        qWarning("%d units are more than the drawing holds side by side; some overlap.", int(keys.size()));
}

void HostWindow::placeOnGrid(const QList<unsigned short> &unplaced, bool avoidOthers)
{
    const QSet<unsigned short> open(unplaced.cbegin(), unplaced.cend());
    for (int i = 0; i < keys.size(); ++i) {
        if (!open.contains(keys.at(i)))
            continue;
        DeviceItem *item = topology->getDeviceItem(keys.at(i));
        // Selection marks included, so that not even those overlap.
        QRectF cell = item->boundingRect().translated(
            (i % gridColumns) * gridCell.width(), (i / gridColumns) * gridCell.height());
        // Among units the user has placed, go down to the first free cell.
        for (int tries = 0; avoidOthers && tries < 1000 && cell.top() <= originArea.bottom(); ++tries) {
            const QList<QGraphicsItem *> there = topology->items(cell);
            if (std::none_of(there.cbegin(), there.cend(), [item](QGraphicsItem *other) {
                    return other != item && other->type() == DeviceItem::Type;
                }))
                break;
            cell.translate(0, gridCell.height());
        }
        item->setPos(cell.topLeft() - item->boundingRect().topLeft());
    }
}

void HostWindow::linkOnGrid()
{
    // A first start: each row is a chain and the rows hang off the first
    // column. Every link joins two neighbouring cells, so none passes under
    // another unit.
    for (int i = 1; i < keys.size(); ++i)
        topology->addLink(keys.at(i % gridColumns != 0 ? i - 1 : i - gridColumns), keys.at(i));
}

void HostWindow::showTopology()
{
    // The view has its size only once the window is laid out, so this runs
    // again from the event loop.
    const TopologyStore::View saved = store.view();
    auto apply = [this, saved] {
        if (saved.zoom <= 0) {
            fitToUnits();
            return;
        }
        view->resetTransform();
        view->scale(saved.zoom, saved.zoom);
        view->centerOn(saved.centre);
    };
    apply();
    QTimer::singleShot(0, this, apply);
}

void HostWindow::fitToUnits()
{
    view->fitInView(topology->itemsBoundingRect().adjusted(-20, -20, 20, 20), Qt::KeepAspectRatio);
}

void HostWindow::reportDamagedLayout()
{
    const QString aside = store.keepAside();
    showNotice(aside.isEmpty()
            ? tr("The layout file %1 is damaged (%2) and could not be kept aside; units without a place were "
                 "placed "
                 "afresh.")
                  .arg(store.path(), store.errorString())
            : tr("The layout file was damaged (%1); it was kept as %2 and units without a place were placed "
                 "afresh.")
                  .arg(store.errorString(), aside));
}

void HostWindow::showNotice(const QString &text)
{
    lblNotice->setText(text);
    lblNotice->setToolTip(text);
    lblNotice->setVisible(!text.isEmpty());
}

QString HostWindow::noticeText() const
{
    return lblNotice->text();
}

bool HostWindow::saveTopology()
{
    if (!map)
        return false;
    store.clear();
    QHash<unsigned short, QString> names;
    for (unsigned short key : qAsConst(keys)) {
        DemoUnit *device = unit(key);
        if (!device)
            continue;
        const QString name = device->getParameter(DeviceDescriptor::DP_NAME).toString();
        names.insert(key, name);
        store.setPlace(name, {topology->getItemPos(key), topology->getItemZ(key)});
    }
    QList<QPair<QString, QString>> links;
    for (const auto &link : topology->getArrowLinkList()) {
        if (names.contains(link.first) && names.contains(link.second))
            links.append(qMakePair(names.value(link.first), names.value(link.second)));
    }
    store.setLinks(links);
    store.setView({view->mapToScene(view->viewport()->rect().center()), view->transform().m11()});
    return store.save();
}

QWidget *HostWindow::buildTopologyPanel()
{
    // Paused, the drawing shows old states; nobody should take them for live ones.
    wgtScanPaused = new QWidget;
    wgtScanPaused->setObjectName(QStringLiteral("wgtScanPaused"));
    wgtScanPaused->setAutoFillBackground(true);
    QPalette warning = wgtScanPaused->palette();
    warning.setColor(QPalette::Window, QColor(255, 214, 102));
    warning.setColor(QPalette::WindowText, Qt::black);
    wgtScanPaused->setPalette(warning);
    auto *pbtResume = new QPushButton(tr("Resume scanning"));
    pbtResume->setObjectName(QStringLiteral("pbtResumeScan"));
    connect(pbtResume, &QPushButton::clicked, this, [this] { actScan->setChecked(true); });
    auto *bannerLayout = new QHBoxLayout(wgtScanPaused);
    bannerLayout->addWidget(new QLabel(tr("Scanning is paused: unit states are not being updated.")), 1);
    bannerLayout->addWidget(pbtResume);
    wgtScanPaused->hide();

    auto *panel = new QWidget;
    auto *layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(wgtScanPaused);
    layout->addWidget(view, 1);
    return panel;
}

void HostWindow::connectScan()
{
    // The map has no timer: repeating the scan is the host's business. The
    // next pass starts a scan period after the last one ended, so passes
    // take as long as the units need and never overlap.
    scanTimer->setSingleShot(true);
    connect(scanTimer, &QTimer::timeout, this, &HostWindow::startScanPass);
    statusRefresh = new QTimer(this);
    statusRefresh->setSingleShot(true);
    statusRefresh->setInterval(250);
    connect(statusRefresh, &QTimer::timeout, this, [this] { lblStatus->setText(statusText()); });
    stallGuard = new QTimer(this);
    stallGuard->setSingleShot(true);
    stallGuard->setInterval(stallLimitMs);
    connect(stallGuard, &QTimer::timeout, this, &HostWindow::onScanStalled);
    // The panel changes with every answer and every change of the marks; the
    // tree's tooltip follows it.
    connect(map, &Map::frontpanel, this, [this](unsigned short key) {
        if (const DemoUnit *device = unit(key))
            map->getModel()->setData(map->getItemIndex(key), device->monitoringNote(), Qt::ToolTipRole);
    });
    connect(map, &Map::updateAlarmFinished, this, [this](unsigned short key) {
        scanKey = key;
        stallChecks = 0;
        stallGuard->start();
    });
}

void HostWindow::setScanning(bool on)
{
    wgtScanPaused->setVisible(!on);
    if (on) {
        startScanPass();
        return;
    }
    scanTimer->stop();
    stallGuard->stop();
    passRunning = false;
    map->stopScan();
}

void HostWindow::startScanPass()
{
    if (passRunning || map->scanInproccess() || (actScan && !actScan->isChecked()))
        return;
    if (!scanSince.isValid())
        scanSince = QDateTime::currentDateTime();
    passClock.start();
    ++passes;
    passRunning = true;
    map->startScan();
    if (!map->scanInproccess())
        endScanPass(); // nothing to poll
    updateStatusLine();
}

void HostWindow::onScanStep()
{
    // Runs after the map's own step for the same statusUpdated(), so a
    // cleared flag here means the map has come to the end of its list.
    if (!map || !passRunning)
        return;
    stallChecks = 0;
    stallGuard->start();
    if (!map->scanInproccess())
        endScanPass();
}

void HostWindow::onScanStalled()
{
    if (!map || !passRunning)
        return;
    // First report the time-out the transport should have reported, which
    // ends the unit's poll and moves the pass on; if even that does not
    // help, close the pass so that the next one can begin.
    if (map->scanInproccess() && stallChecks++ == 0) {
        map->replyError(scanKey);
        stallGuard->start();
        return;
    }
    map->stopScan();
    endScanPass();
}

void HostWindow::endScanPass()
{
    passRunning = false;
    stallGuard->stop();
    lastPassMs = passClock.elapsed();
    markStaleUnits();
    scanTimer->start(options.scanPeriodMs);
    updateStatusLine();
}

void HostWindow::markStaleUnits()
{
    // Each unit is polled once a cycle, a pass and the pause after it; one
    // not heard from for two cycles is drawn as stale.
    const qint64 limit = 2 * (lastPassMs + options.scanPeriodMs);
    const QDateTime now = QDateTime::currentDateTime();
    for (unsigned short key : qAsConst(keys)) {
        if (DemoUnit *device = unit(key)) {
            const QDateTime heard = device->lastAnswered().isValid() ? device->lastAnswered() : scanSince;
            device->setStale(heard.msecsTo(now) > limit);
        }
    }
}

void HostWindow::refreshAlarms()
{
    // Each setAlarmMap() restarts the scene's half-second blink clock, so on a
    // busy network the host passes the levels on at most once a second;
    // otherwise the outlines would never get to blink.
    if (alarmPush->isActive())
        return;
    const qint64 since = lastAlarmPush.isValid() ? lastAlarmPush.elapsed() : 1000;
    alarmPush->start(static_cast<int>(qBound(qint64(0), 1000 - since, qint64(1000))));
}

void HostWindow::pushAlarms()
{
    if (!map)
        return;
    lastAlarmPush.start();
    QHash<unsigned short, Core::AlarmType> alarms = map->getAlarmMap();
    // Units whose state the host cannot vouch for look like silent ones.
    for (auto it = alarms.begin(); it != alarms.end(); ++it) {
        const DemoUnit *device = unit(it.key());
        if (device && (device->isStale() || !device->isMonitored()))
            it.value() = alarmNotResponding;
    }
    topology->setAlarmMap(alarms);
    updateStatusLine();
}

void HostWindow::onTrap(unsigned short key, int alarm, const QHash<QString, QVariant> &variables)
{
    DemoUnit *device = unit(key);
    if (!device)
        return;
    const QString address = device->getParameter(DeviceDescriptor::DP_ADDRESS).toString();
    TrapVisualUnit trap;
    trap.identifier = key;
    trap.deviceName = device->getParameter(DeviceDescriptor::DP_NAME).toString();
    trap.alarm = static_cast<quint8>(alarm);
    // In words, so that the Information column reads "Mux 4:Event:loss of signal; ...".
    trap.variables = TrapWords::describe(variables, alarm);
    trap.prefix = trap.deviceName;
    if (traps->isTrapsOverlap()) {
        // A frozen list ignores traps; the host keeps them until it thaws.
        held.append(qMakePair(trap, QDateTime::currentDateTime()));
        if (held.size() > trapRowLimit)
            held.removeFirst();
    } else {
        traps->setTrap(trap);
    }
    ++trapCount;
    // The trap carries the unit's new level: show it now rather than at the
    // next poll. The transport has found the unit already, so the map need
    // not look for it by address among thousands.
    device->setAlarmState(static_cast<Core::AlarmType>(alarm));
    updateStatusLine();
}

void HostWindow::onTrapFreeze(bool frozen)
{
    traps->trapsOverlap(frozen);
    if (!frozen) {
        // The list stamps a trap when it is handed in; a held one keeps the time it arrived.
        auto *rows = qobject_cast<QStandardItemModel *>(traps->getModel()->sourceModel());
        for (const auto &trap : qAsConst(held)) {
            traps->setTrap(trap.first);
            QStandardItem *time = rows ? rows->item(rows->rowCount() - 1, 0) : nullptr;
            if (time) {
                time->setData(trap.second, TrapVisual::IdentifierRole);
                time->setData(trap.second, Qt::DisplayRole);
            }
        }
        held.clear();
    }
    updateStatusLine();
}

void HostWindow::confirmClearTraps()
{
    const int count = traps->getModel()->sourceModel()->rowCount() + held.size();
    if (QMessageBox::question(this, tr("Clear traps"),
            tr("Remove all %1 traps from the list, including those held while it is frozen?").arg(count),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        != QMessageBox::Yes)
        return;
    traps->clear();
    held.clear();
    updateStatusLine();
}

void HostWindow::updateTrapCount()
{
    const int shown = traps->getModel()->rowCount();
    const int all = traps->getModel()->sourceModel()->rowCount();
    lblTrapCount->setText(
        traps->getFilter().isEmpty() ? tr("%1 traps").arg(all) : tr("%1 of %2 traps").arg(shown).arg(all));
}

void HostWindow::onDeviceContextMenu(const QPointF &scenePos, unsigned short key)
{
    DemoUnit *device = unit(key);
    if (!device)
        return;
    QMenu menu(this);
    menu.addSection(device->getParameter(DeviceDescriptor::DP_NAME).toString());
    connect(menu.addAction(tr("Configure...")), &QAction::triggered, device, &DemoUnit::showUi);
    connect(menu.addAction(tr("Identify")), &QAction::triggered, device, &DemoUnit::identify);
    connect(menu.addAction(tr("Poll now")), &QAction::triggered, device, &DemoUnit::updateStatus);
    if (!device->isSnmp()) {
        QAction *line = menu.addAction(tr("Serial line open"));
        line->setCheckable(true);
        line->setChecked(device->getSerialState());
        connect(line, &QAction::toggled, this, [this, key](bool on) { map->setSerialState(key, on); });
    }
    menu.addSeparator();
    connect(menu.addAction(tr("Bring to front")), &QAction::triggered, topology, &DeviceScene::bringToFront);
    connect(menu.addAction(tr("Send to back")), &QAction::triggered, topology, &DeviceScene::sendToBack);
    menu.exec(view->viewport()->mapToGlobal(view->mapFromScene(scenePos)));
}

void HostWindow::onLinkContextMenu(const QPointF &scenePos, unsigned short from, unsigned short to)
{
    QMenu menu(this);
    menu.addSection(tr("%1 to %2").arg(unitName(from), unitName(to)));
    connect(menu.addAction(tr("Remove link...")), &QAction::triggered, this,
        [this, from, to] { removeLink(from, to); });
    menu.exec(view->viewport()->mapToGlobal(view->mapFromScene(scenePos)));
}

void HostWindow::removeLink(unsigned short from, unsigned short to)
{
    const QMessageBox::StandardButton answer = QMessageBox::question(this, tr("Remove link"),
        tr("Remove the link from %1 to %2?").arg(unitName(from), unitName(to)),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    // The link under the mouse is the selected one.
    if (answer == QMessageBox::Yes)
        topology->removeSelectedArrows();
}

void HostWindow::onTreeActivated(const QModelIndex &index)
{
    const int key = index.data(Map::ITEM_KEY_ROLE).toInt();
    if (key < 0)
        return;
    if (DemoUnit *device = unit(static_cast<unsigned short>(key)))
        device->showUi();
}

void HostWindow::onTreeCurrentChanged(const QModelIndex &index)
{
    topology->setHighlightGroup(groupHighlighted, false);
    groupHighlighted.clear();
    if (!index.isValid())
        return;
    const int key = index.data(Map::ITEM_KEY_ROLE).toInt();
    if (key >= 0) {
        if (!syncingSelection)
            topology->setSelected(static_cast<unsigned short>(key));
        return;
    }
    // A site: tint all its units on the drawing.
    map->getGroupItemList(index, groupHighlighted);
    topology->setHighlightGroup(groupHighlighted, true);
}

void HostWindow::onSceneSelectionChanged()
{
    const QList<unsigned short> selected = topology->getSelectedDevices();
    if (selected.size() != 1 || syncingSelection)
        return;
    QStandardItemModel *model = map->getModel();
    const QModelIndexList found = model->match(model->index(0, 0), Map::ITEM_KEY_ROLE,
        static_cast<int>(selected.first()), 1, Qt::MatchExactly | Qt::MatchRecursive);
    if (found.isEmpty())
        return;
    syncingSelection = true;
    trvDevices->setCurrentIndex(found.first());
    trvDevices->scrollTo(found.first());
    syncingSelection = false;
}

void HostWindow::showUnit(unsigned short key)
{
    DeviceItem *item = topology->getDeviceItem(key);
    if (!item)
        return;
    topology->setSelected(key);
    // A unit found among two thousand is no help at a scale where its panel cannot be read.
    if (view->transform().m11() < 0.6) {
        view->resetTransform();
        view->scale(0.8, 0.8);
    }
    view->centerOn(item);
}

void HostWindow::findUnit()
{
    const QString text = leFind->text().trimmed();
    if (text.isEmpty() || keys.isEmpty())
        return;
    // Enter again goes on from the unit found last.
    const QList<unsigned short> selected = topology->getSelectedDevices();
    const int from = selected.size() == 1 ? keys.indexOf(selected.first()) + 1 : 0;
    for (int n = 0; n < keys.size(); ++n) {
        const unsigned short key = keys.at((from + n) % keys.size());
        DemoUnit *device = unit(key);
        if (unitName(key).contains(text, Qt::CaseInsensitive)
            || device->getParameter(DeviceDescriptor::DP_ADDRESS)
                   .toString()
                   .contains(text, Qt::CaseInsensitive)) {
            showUnit(key);
            return;
        }
    }
    statusBar()->showMessage(tr("No unit matches \u201c%1\u201d.").arg(text), 5000);
}

void HostWindow::printTraps()
{
    // Print what the user sees (filtered, in view order), with a heading row,
    // since the printer takes a plain table without headers.
    QSortFilterProxyModel *proxy = traps->getModel();
    QStandardItemModel table;
    QList<QStandardItem *> heading;
    for (int column = 0; column < proxy->columnCount(); ++column) {
        heading << new QStandardItem(
            QStringLiteral("<b>%1</b>")
                .arg(proxy->headerData(column, Qt::Horizontal).toString().toHtmlEscaped()));
    }
    table.appendRow(heading);
    for (int row = 0; row < proxy->rowCount(); ++row) {
        QList<QStandardItem *> cells;
        for (int column = 0; column < proxy->columnCount(); ++column)
            cells << new QStandardItem(proxy->index(row, column).data().toString().toHtmlEscaped());
        table.appendRow(cells);
    }
    Printing printing;
    printing.setModel(&table);
    printing.print(this);
}

QString HostWindow::statusText() const
{
    int inAlarm = 0;
    if (map) {
        const QHash<unsigned short, Core::AlarmType> alarms = map->getAlarmMap();
        for (Core::AlarmType alarm : alarms)
            inAlarm += alarm != Core::ALARM_OK ? 1 : 0;
    }
    int polled = 0;
    for (int n : polls)
        polled += n;
    const QString text
        = tr("%1 units | scan pass %2 | %3 polls | %4 replies lost | %5 in alarm | %6 traps%7")
              .arg(keys.size())
              .arg(passes)
              .arg(polled)
              .arg((simulatedNetwork ? simulatedNetwork->errorCount() : 0)
                  + (serialLines ? serialLines->errorCount() : 0) + (snmpUnits ? snmpUnits->errorCount() : 0))
              .arg(inAlarm)
              .arg(trapCount)
              .arg(passText());
    return traps->isTrapsOverlap() ? text + tr(" | %1 traps held").arg(held.size()) : text;
}

QString HostWindow::passText() const
{
    if (lastPassMs < 0)
        return QString();
    return QStringLiteral(" | ") + tr("last pass %1 s").arg(lastPassMs / 1000.0, 0, 'f', 1);
}

void HostWindow::updateStatusLine()
{
    // Counting walks every unit; at thousands of units with hundreds of
    // traps a second, doing that for each of them would slow the scan.
    if (statusRefresh && !statusRefresh->isActive())
        statusRefresh->start();
}

void HostWindow::closeEvent(QCloseEvent *event)
{
    if (started && !saveTopology()) {
        const QMessageBox::StandardButton answer = QMessageBox::warning(this, tr("Layout not saved"),
            tr("The layout could not be saved to %1: %2.\n\nClose anyway and lose the changes to the layout?")
                .arg(store.path(), store.errorString()),
            QMessageBox::Close | QMessageBox::Cancel, QMessageBox::Cancel);
        if (answer != QMessageBox::Close) {
            event->ignore();
            return;
        }
    }
    layoutSaved = started;
    // Configuration windows are top-level windows of their own.
    for (unsigned short key : qAsConst(keys)) {
        if (DemoUnit *device = unit(key))
            device->closeUi();
    }
    QMainWindow::closeEvent(event);
}

void HostWindow::takeScreenshots(const QString &folder)
{
    if (!QDir().mkpath(folder)) {
        emit screenshotsTaken(false, tr("Cannot create the folder %1.").arg(folder));
        return;
    }
    view->fitInView(topology->itemsBoundingRect().adjusted(-20, -20, 20, 20), Qt::KeepAspectRatio);
    const bool mainOk = grab().save(QDir(folder).filePath(QStringLiteral("mainwindow.png")));

    // The configuration window of the first unit, on its statistics page,
    // once it has read the unit.
    const unsigned short key = keys.value(0);
    DemoUnit *device = unit(key);
    if (!device) {
        emit screenshotsTaken(false, tr("There is no unit to configure."));
        return;
    }
    auto done = std::make_shared<bool>(false);
    auto configSeen = std::make_shared<bool>(false);
    auto *context = new QObject(this);
    auto finish = [this, folder, key, mainOk, done, context] {
        if (*done)
            return;
        *done = true;
        context->deleteLater();
        QTimer::singleShot(
            300, this, [this, folder, key, mainOk] { finishScreenshots(folder, key, mainOk); });
    };
    connect(device, &DemoUnit::configRead, context, [configSeen] { *configSeen = true; });
    connect(device, &DemoUnit::statusRead, context, [configSeen, finish] {
        if (*configSeen)
            finish();
    });
    QTimer::singleShot(5000, context, finish);
    device->showUi();
    if (UnitWindow *w = device->configWindow()) {
        w->resize(1100, 560);
        w->showPage(QStringLiteral("Statistics.G826"));
    }
}

void HostWindow::finishScreenshots(const QString &folder, unsigned short key, bool mainOk)
{
    DemoUnit *device = unit(key);
    UnitWindow *w = device ? device->configWindow() : nullptr;
    const QString configPath = QDir(folder).filePath(QStringLiteral("configwindow.png"));
    const bool configOk = w && w->grab().save(configPath);
    if (device)
        device->closeUi();
    const bool ok = mainOk && configOk;
    emit screenshotsTaken(ok,
        ok ? tr("Screenshots written to %1.").arg(QDir(folder).absolutePath())
           : tr("The screenshots could not be written to %1.").arg(folder));
}
