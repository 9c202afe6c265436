#include "devicemainwindow.h"
#include "ui_devicemainwindow.h"

#include "ui/datetimedialog.h"
#include "ui/loadsettingsdialog.h"
#include "ui/resetsettingsdialog.h"
#include "ui/statautorefreshdialog.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QMessageBox>
#include <QProgressBar>
#include <QSet>
#include <QSettings>
#include <QStandardItemModel>
#include <QStandardPaths>
#include <QTimer>

namespace {
const char geometryKey[] = "geometry";
const char stateKey[] = "state";
const char autoRefreshEnabledKey[] = "isAutoRefreshEnabled";
const char autoRefreshPeriodKey[] = "autoRefreshPeriod";
const char lastSavedPathKey[] = "lastsavedpath";
const char needLoadAddressKey[] = "needloadaddress";
const char dontResetAddressKey[] = "dontresetaddress";

// Saved window states carry this version; a different one is not restored.
const int stateVersion = 0;

// -1 for grouping nodes and for anything that is not a page of ours.
int pageIndexOf(const QModelIndex &index)
{
    const QVariant page = index.data(DeviceMainWindow::PageIndexRole);
    return page.isValid() ? page.toInt() : -1;
}

// A question box whose only button is Yes. It acknowledges rather than asks:
// Escape and closing the box answer Yes too, and hosts rely on the signal
// that follows. QMessageBox::question(Yes, No) would add a No button.
QMessageBox::StandardButton acknowledge(QWidget *parent, const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes, parent);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

QString defaultSettingsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}
} // namespace

quint8 DeviceMainWindow::windowCounter = 0;

DeviceMainWindow::DeviceMainWindow(QWidget *parent)
    : QMainWindow(parent)
    , ui(new Ui::DeviceMainWindow)
{
    ui->setupUi(this);
    ui->toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    ui->splitter->setStretchFactor(0, 0);
    ui->splitter->setStretchFactor(1, 1);

    progressBar = new QProgressBar(this);
    progressBar->setRange(0, 100);
    progressBar->setTextVisible(false);
    progressBar->setMaximumHeight(16);
    progressBar->setMaximumWidth(200);
    progressBar->hide();
    ui->statusbar->addPermanentWidget(progressBar);

    model = new QStandardItemModel(this);
    ui->trvPages->setModel(model);

    panelCount = 0;
    readOnly = false;
    enableActions(true);

    connect(ui->actionExit, &QAction::triggered, this, &QWidget::close);
    connect(ui->actionRead_data, &QAction::triggered, this, &DeviceMainWindow::reload);
    connect(ui->actionSave, &QAction::triggered, this, &DeviceMainWindow::saveChangesEmitted);
    connect(ui->actionApply, &QAction::triggered, this, &DeviceMainWindow::applyChangesEmitted);
    connect(ui->trvPages->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &DeviceMainWindow::trvRowChanged);

    fileExtension = QStringLiteral("dvsf");
    interfaceType = Core::IPT_SERIAL;
    snmpResetToFactory = false;
    settingsApplication = QStringLiteral("DLL");
    settingsOrganization = QStringLiteral("Core");
    settingsGroup = QStringLiteral("DeviceWindowState");

    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    restoreGeometry(settings.value(QLatin1String(geometryKey)).toByteArray());
    restoreState(settings.value(QLatin1String(stateKey)).toByteArray(), stateVersion);
    const bool autoRefresh = settings.value(QLatin1String(autoRefreshEnabledKey), false).toBool();

    ui->actionSwitch_to_Active->setVisible(false);
    ui->actionStatistics_autorefresh->setChecked(autoRefresh);

    // Runs only while this window is active: see event().
    refreshTimer = new QTimer(this);
    connect(refreshTimer, &QTimer::timeout, this, &DeviceMainWindow::autoRefreshByTimer);
    autoUpdate = true;
}

DeviceMainWindow::~DeviceMainWindow()
{
    // The pages die with the stack, after this object's members are gone.
    for (QWidget *widget : qAsConst(panels))
        disconnect(widget, &QObject::destroyed, this, nullptr);
    refreshTimer->stop();
    decCounter();
    delete ui;
}

void DeviceMainWindow::addPanel(QString path, QWidget *widget)
{
    const QStringList parts = path.split(QLatin1Char('.'), Qt::SkipEmptyParts);
    if (parts.isEmpty() || !widget)
        return;
    const QString &leaf = parts.constLast();

    QStandardItem *node = model->invisibleRootItem();
    for (const QString &part : parts) {
        QStandardItem *next = nullptr;
        for (int row = 0; row < node->rowCount(); ++row) {
            QStandardItem *child = node->child(row);
            if (child && child->text() == part) {
                next = child;
                break;
            }
        }
        if (next) {
            node = next;
            continue;
        }

        next = new QStandardItem(part);
        // The match is by name: an intermediate node named like the leaf is
        // a page as well. Hosts rely on this, so it stays.
        if (part == leaf) {
            next->setData(panelCount, PageIndexRole);
            next->setData(path, PagePathRole);
            // A page the host deletes itself must not be shown afterwards.
            if (panels.key(widget, -1) == -1)
                connect(widget, &QObject::destroyed, this, [this](QObject *gone) {
                    for (auto it = panels.begin(); it != panels.end();) {
                        if (it.value() == gone)
                            it = panels.erase(it);
                        else
                            ++it;
                    }
                });
            panels.insert(panelCount, widget);
            ui->swgtInterface->insertWidget(panelCount, widget);
            ++panelCount;
        } else {
            next->setData(-1, PageIndexRole);
        }
        node->appendRow(next);
        node = next;
    }
    ui->trvPages->expandAll();
}

void DeviceMainWindow::clearPanels()
{
    model->clear();
    panelCount = 0;
    // One widget can stand behind several pages; delete it once.
    QSet<QWidget *> widgets;
    for (QWidget *widget : qAsConst(panels))
        widgets.insert(widget);
    panels.clear();
    for (QWidget *widget : qAsConst(widgets)) {
        disconnect(widget, &QObject::destroyed, this, nullptr);
        ui->swgtInterface->removeWidget(widget);
        widget->deleteLater();
    }
}

void DeviceMainWindow::setReadOnly(bool on)
{
    readOnly = on;
}

void DeviceMainWindow::setInterface(Core::InterfaceProtocolType type)
{
    interfaceType = type;
    ui->actionSerial_port_connection->setVisible(type == Core::IPT_SERIAL);
}

void DeviceMainWindow::enableSnmpResetToFactory()
{
    snmpResetToFactory = true;
}

void DeviceMainWindow::alowAutoUpdate(bool on)
{
    autoUpdate = on;
}

void DeviceMainWindow::setSwitchVisible(bool visible)
{
    ui->actionSwitch_to_Active->setVisible(visible);
}

void DeviceMainWindow::enableActions(bool on)
{
    const QList<QAction *> actions = {ui->actionLoad_settings, ui->actionSave_settings, ui->actionRead_data,
        ui->actionWrite_data, ui->actionApply, ui->actionSave, ui->actionTo_factory, ui->actionRestart,
        ui->actionLoad_last_saved, ui->actionSwitch_to_Active, ui->actionStatistics_autorefresh};
    for (QAction *action : actions)
        action->setEnabled(on);
}

bool DeviceMainWindow::getSerialState() const
{
    return ui->actionSerial_port_connection->isChecked();
}

void DeviceMainWindow::incCounter()
{
    ++windowCounter;
}

quint8 DeviceMainWindow::decCounter()
{
    if (windowCounter > 0)
        --windowCounter;
    return windowCounter;
}

quint8 DeviceMainWindow::getWindowsCount()
{
    return windowCounter;
}

void DeviceMainWindow::serialState(bool on)
{
    ui->actionSerial_port_connection->setChecked(on);
}

void DeviceMainWindow::setProgres(int value)
{
    progressBar->setValue(value);
}

void DeviceMainWindow::disableInteractUi(bool busy)
{
    progressBar->setVisible(busy);
    progressBar->setValue(0);
    if (!readOnly)
        enableActions(!busy);
    ui->actionExit->setEnabled(!busy);
}

void DeviceMainWindow::showMessage(QString text, int type)
{
    switch (type) {
    case 0:
        QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
        break;
    case 1:
        QMessageBox::warning(this, tr("Warning"), text, QMessageBox::Ok);
        break;
    case 2:
        QMessageBox::critical(this, tr("Error"), text, QMessageBox::Ok);
        break;
    default:
        break;
    }
}

void DeviceMainWindow::show()
{
    QMainWindow::show();
    incCounter();
}

void DeviceMainWindow::trvRowChanged(const QModelIndex &current, const QModelIndex &previous)
{
    Q_UNUSED(previous)
    if (!current.isValid())
        return;
    const int index = pageIndexOf(current);
    if (index == -1)
        return;
    QWidget *page = panels.value(index);
    if (!page)
        return;
    ui->swgtInterface->setCurrentWidget(page);
    autoRefreshByTimer();
    // Pages that can refresh themselves offer updateData(); others are left as they are.
    if (page->metaObject()->indexOfMethod("updateData()") >= 0)
        QMetaObject::invokeMethod(page, "updateData", Qt::QueuedConnection);
}

void DeviceMainWindow::autoRefreshByTimer()
{
    if (!autoUpdate || !isActiveWindow())
        return;
    const QModelIndex current = ui->trvPages->currentIndex();
    if (!current.isValid())
        return;
    emit sendTreeItemPath(current.data(PagePathRole).toString());
}

void DeviceMainWindow::applyChangesEmitted()
{
    changeWidgetFocus();
    emit applyChanges();
}

void DeviceMainWindow::saveChangesEmitted()
{
    changeWidgetFocus();
    emit saveMemory();
}

void DeviceMainWindow::on_actionLoad_settings_triggered()
{
    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    const QString path = settings.value(QLatin1String(lastSavedPathKey), defaultSettingsFolder()).toString();
    const bool notLoadAddresses = settings.value(QLatin1String(needLoadAddressKey), false).toBool();

    LoadSettingsDialog dialog;
    dialog.setPath(path);
    dialog.setFileExtension(fileExtension);
    dialog.setNotLoadAddresses(notLoadAddresses);
    if (dialog.exec() != QDialog::Accepted)
        return;

    // The key's name says the opposite of what it holds: it keeps the
    // "do not load" box as it is, and stored settings depend on that.
    settings.setValue(QLatin1String(needLoadAddressKey), dialog.getNotLoadAddresses());
    settings.setValue(QLatin1String(lastSavedPathKey), dialog.getPath());
    emit loadSettingsFile(dialog.getPath(), dialog.getNotLoadAddresses());
}

void DeviceMainWindow::on_actionSave_settings_triggered()
{
    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    const QString lastPath
        = settings.value(QLatin1String(lastSavedPathKey), defaultSettingsFolder()).toString();

    QString path = QFileDialog::getSaveFileName(
        nullptr, tr("Select file."), lastPath, tr("Device settings file(*.%1)").arg(fileExtension));
    if (path.isEmpty())
        return;
    // Case-sensitive on purpose: "name.DVSF" is saved as "name.DVSF.dvsf".
    if (QFileInfo(path).suffix() != fileExtension)
        path += QLatin1Char('.') + fileExtension;
    settings.setValue(QLatin1String(lastSavedPathKey), path);
    emit saveSettingsFile(path);
}

void DeviceMainWindow::on_actionTo_factory_triggered()
{
    if (interfaceType != Core::IPT_SERIAL && !snmpResetToFactory) {
        QMessageBox::information(
            this, tr("Reset to factory settings"), tr("This action not supported trough SNMP"));
        return;
    }

    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    ResetSettingsDialog dialog;
    dialog.setNotResetAddresses(settings.value(QLatin1String(dontResetAddressKey), false).toBool());
    if (dialog.exec() != QDialog::Accepted)
        return;
    settings.setValue(QLatin1String(dontResetAddressKey), dialog.getNotResetAddresses());
    emit toFactory(dialog.getNotResetAddresses());
}

void DeviceMainWindow::on_actionRestart_triggered()
{
    if (acknowledge(this, tr("Restart device"), tr("Do you realy want restart device?")) != QMessageBox::No)
        emit restartDevice();
}

void DeviceMainWindow::on_actionLoad_last_saved_triggered()
{
    if (acknowledge(this, tr("Load last saved"), tr("Do you realy want load last saved settings?"))
        != QMessageBox::No)
        emit restoreDevice();
}

void DeviceMainWindow::on_actionSet_date_time_triggered()
{
    DatetimeDialog dialog;
    if (dialog.exec() == QDialog::Accepted)
        emit setDateTime(dialog.dateTime());
}

void DeviceMainWindow::on_actionReset_statistics_triggered()
{
    emit resetStatistics();
}

void DeviceMainWindow::on_actionSerial_port_connection_toggled(bool checked)
{
    Q_UNUSED(checked)
    emit serialStateChanged();
}

void DeviceMainWindow::on_actionSwitch_to_Active_triggered()
{
    emit switchToActive();
}

void DeviceMainWindow::on_actionStatistics_autorefresh_triggered()
{
    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    const int period = settings.value(QLatin1String(autoRefreshPeriodKey), 1).toInt();

    if (!ui->actionStatistics_autorefresh->isChecked()) {
        refreshTimer->stop();
        settings.setValue(QLatin1String(autoRefreshEnabledKey), false);
        return;
    }

    StatAutoRefreshDialog dialog;
    dialog.setPeriod(period);
    if (dialog.exec() != QDialog::Accepted) {
        ui->actionStatistics_autorefresh->setChecked(false);
        autoUpdate = false;
        return;
    }
    settings.setValue(QLatin1String(autoRefreshEnabledKey), true);
    settings.setValue(QLatin1String(autoRefreshPeriodKey), dialog.getPeriod());
    refreshTimer->start(dialog.getPeriod() * 1000);
    autoUpdate = true;
}

void DeviceMainWindow::changeWidgetFocus()
{
    const QModelIndex current = ui->trvPages->currentIndex();
    if (!current.isValid())
        return;
    if (QWidget *page = panels.value(pageIndexOf(current)))
        page->setFocus(Qt::OtherFocusReason);
}

void DeviceMainWindow::startStopTimer(bool start)
{
    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    const bool enabled = settings.value(QLatin1String(autoRefreshEnabledKey), false).toBool();
    const int period = settings.value(QLatin1String(autoRefreshPeriodKey), 1).toInt();
    if (enabled && start)
        refreshTimer->start(qBound(1, period, 120) * 1000);
    else
        refreshTimer->stop();
}

void DeviceMainWindow::closeEvent(QCloseEvent *event)
{
    QSettings settings(settingsOrganization, settingsApplication);
    settings.beginGroup(settingsGroup);
    settings.setValue(QLatin1String(geometryKey), saveGeometry());
    settings.setValue(QLatin1String(stateKey), saveState(stateVersion));
    decCounter();
    emit closeSignal();
    event->accept();
}

bool DeviceMainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        startStopTimer(true);
    else if (event->type() == QEvent::WindowDeactivate)
        startStopTimer(false);
    return QMainWindow::event(event);
}
