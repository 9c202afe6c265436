#include "unitwindow.h"

#include "demounit.h"
#include "g826page.h"
#include "portpage.h"
#include "systempage.h"

#include <QStandardItemModel>
#include <QTreeView>

UnitWindow::UnitWindow(DemoUnit *unit)
    : DeviceMainWindow(nullptr)
{
    setAttribute(Qt::WA_DeleteOnClose, false); // the model decides when its window goes
    setWindowTitle(tr("%1 (%2) - configuration")
                       .arg(unit->getParameter(DeviceDescriptor::DP_NAME).toString(),
                           unit->getParameter(DeviceDescriptor::DP_ADDRESS).toString()));

    // Dotted paths build the page tree; a page refreshes itself when it is
    // shown (updateData) and when the model has read the unit.
    auto *system = new SystemPage(unit);
    addPanel(QStringLiteral("System"), system);
    pages << system;
    connect(unit, &DemoUnit::configRead, system, &SystemPage::updateData);
    connect(unit, &DemoUnit::statusRead, system, &SystemPage::updateData);
    for (int port = 0; port < UnitLayout::portCount; ++port) {
        auto *page = new PortPage(unit, port);
        addPanel(QStringLiteral("Interfaces.E1.Port %1").arg(port + 1), page);
        pages << page;
        connect(unit, &DemoUnit::configRead, page, &PortPage::updateData);
        connect(unit, &DemoUnit::statusRead, page, &PortPage::updateData);
    }
    // A dot separates tree levels, so the recommendation's name is written without one.
    auto *g826 = new G826Page(unit);
    addPanel(QStringLiteral("Statistics.G826"), g826);
    pages << g826;
    connect(unit, &DemoUnit::statusRead, g826, &G826Page::updateData);
}

UnitWindow::~UnitWindow()
{
    // The frame watches its pages for destruction; let them go while the
    // frame is still whole rather than from its base-class destructor.
    for (const QPointer<QWidget> &page : qAsConst(pages))
        delete page.data();
}

bool UnitWindow::showPage(const QString &path)
{
    auto *tree = findChild<QTreeView *>(QStringLiteral("trvPages"));
    if (!tree)
        return false;
    const QModelIndexList found
        = model->match(model->index(0, 0), PagePathRole, path, 1, Qt::MatchExactly | Qt::MatchRecursive);
    if (found.isEmpty())
        return false;
    tree->setCurrentIndex(found.first());
    return true;
}
