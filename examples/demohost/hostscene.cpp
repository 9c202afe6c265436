#include "hostscene.h"

#include <topology/deviceitem.h>
#include <topology/linkarrow.h>

HostScene::HostScene(QObject *parent)
    : DeviceScene(parent)
{
}

bool HostScene::isLinked(unsigned short a, unsigned short b)
{
    const auto links = getArrowLinkList();
    return links.contains(qMakePair(a, b)) || links.contains(qMakePair(b, a));
}

bool HostScene::addLink(unsigned short from, unsigned short to)
{
    if (from == to || isLinked(from, to))
        return false;
    addArrowLink(from, to);
    return true;
}

void HostScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    // The scene makes the link inside its release handler and says nothing,
    // so compare its link list before and after.
    const auto before = getArrowLinkList();
    DeviceScene::mouseReleaseEvent(event);
    const auto after = getArrowLinkList();
    if (after.size() <= before.size())
        return;
    const auto link = after.last();
    if (before.contains(link) || before.contains(qMakePair(link.second, link.first))) {
        removeNewestLink(link.first, link.second);
        emit linkRefused(link.first, link.second);
    }
}

void HostScene::removeNewestLink(unsigned short from, unsigned short to)
{
    DeviceItem *start = getDeviceItem(from);
    DeviceItem *end = getDeviceItem(to);
    // items() lists the topmost first and the newest link is added last; at
    // equal z the later one is on top.
    LinkArrow *newest = nullptr;
    for (QGraphicsItem *item : items()) {
        auto *arrow = qgraphicsitem_cast<LinkArrow *>(item);
        if (arrow && arrow->getStartItem() == start && arrow->getEndItem() == end) {
            newest = arrow;
            break;
        }
    }
    if (!newest)
        return;
    // removeSelectedArrows() is the scene's one way to take a link away.
    const QList<QGraphicsItem *> selected = selectedItems();
    clearSelection();
    newest->setSelected(true);
    removeSelectedArrows();
    for (QGraphicsItem *item : selected)
        item->setSelected(true);
}
