#include "devicescene.h"

#include "topology/linkarrow.h"

#include <QGraphicsLineItem>
#include <QGraphicsSceneContextMenuEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPen>
#include <QTimer>

namespace {

constexpr unsigned short noKey = 65535;
constexpr int blinkInterval = 500; // ms; a full alarm cycle is one second

bool isDevice(const QGraphicsItem *item)
{
    return item && item->type() == DeviceItem::Type;
}

bool isLink(const QGraphicsItem *item)
{
    return item && item->type() == LinkArrow::Type;
}

} // namespace

DeviceScene::DeviceScene(QObject *parent)
    : QGraphicsScene(parent)
    , timer(new QTimer(this))
{
    connect(timer, &QTimer::timeout, this, &DeviceScene::alarmLoopTimeout);
}

namespace {

// The link-drawing band forgets itself in the scene when it is deleted by
// anyone, so a host's QGraphicsScene::clear() mid-drag leaves no dangling
// pointer behind.
class RubberBand : public QGraphicsLineItem
{
public:
    RubberBand(const QLineF &line, QGraphicsLineItem **slot)
        : QGraphicsLineItem(line)
        , slot(slot)
    {
    }
    ~RubberBand() override
    {
        if (*slot == this)
            *slot = nullptr;
    }

private:
    QGraphicsLineItem **slot;
};

} // namespace

DeviceScene::~DeviceScene()
{
    timer->stop();
    // Links go first, while both of their ends are still alive; the base
    // destructor would delete items in no useful order.
    for (;;) {
        const QList<QGraphicsItem *> all = items();
        const auto link = std::find_if(all.cbegin(), all.cend(), isLink);
        if (link == all.cend())
            break;
        delete *link;
    }
    clear();
}

void DeviceScene::setInsertMode(DeviceScene::Mode mode)
{
    this->mode = mode;
}

void DeviceScene::addDeviceItem(unsigned short key, QString description, QPointF pos, double z)
{
    auto *item = new DeviceItem();
    item->setParameters(description);
    addItem(item);
    item->setPos(pos);
    if (z != -1.0)
        item->setZValue(z);
    devices.insert(key, item);
    connect(this, &DeviceScene::togleAlarm, item, &DeviceItem::showAlarm);
}

void DeviceScene::removeDeviceItem(unsigned short key)
{
    DeviceItem *item = devices.take(key);
    if (!item)
        return;
    item->removeArrows();
    if (item->scene() == this)
        removeItem(item);
    highLighted.removeAll(item);
    delete item;
}

void DeviceScene::setFrontPanel(unsigned short key, QString description)
{
    if (DeviceItem *item = devices.value(key))
        item->setParameters(description);
}

void DeviceScene::addArrowLink(unsigned short from, unsigned short to)
{
    DeviceItem *start = devices.value(from);
    DeviceItem *end = devices.value(to);
    if (start && end)
        createLink(start, end);
}

QList<QPair<unsigned short, unsigned short>> DeviceScene::getArrowLinkList()
{
    QList<QPair<unsigned short, unsigned short>> list;
    for (const LinkArrow *link : qAsConst(links))
        list.append(qMakePair(keyOf(link->getStartItem()), keyOf(link->getEndItem())));
    return list;
}

QList<unsigned short> DeviceScene::getSelectedDevices()
{
    QList<unsigned short> keys;
    const QList<QGraphicsItem *> selection = selectedItems();
    for (const QGraphicsItem *item : selection) {
        if (isDevice(item))
            keys.append(keyOf(item));
    }
    return keys;
}

void DeviceScene::removeSelectedArrows()
{
    // A link takes itself out of its ends, this scene and the link list.
    const QList<QGraphicsItem *> selection = selectedItems();
    for (QGraphicsItem *item : selection) {
        if (isLink(item))
            delete item;
    }
}

void DeviceScene::setSelected(unsigned short key)
{
    DeviceItem *item = devices.value(key);
    if (!item || item->isSelected())
        return;
    clearSelection();
    item->setSelected(true);
    setHighlightMode();
}

QPointF DeviceScene::getItemPos(unsigned short key)
{
    const DeviceItem *item = devices.value(key);
    return item ? item->pos() : QPointF();
}

double DeviceScene::getItemZ(unsigned short key)
{
    const DeviceItem *item = devices.value(key);
    return item ? item->zValue() : 0.0;
}

void DeviceScene::bringToFront()
{
    DeviceItem *item = firstSelectedDevice();
    if (!item)
        return;
    // Starting from 0.0 on purpose: a lone item lands at 0.0.
    qreal z = 0.0;
    const QList<QGraphicsItem *> colliding = item->collidingItems(Qt::IntersectsItemShape);
    for (const QGraphicsItem *other : colliding) {
        if (other->zValue() >= z && isDevice(other))
            z = other->zValue() + 0.1;
    }
    item->setZValue(z);
}

void DeviceScene::sendToBack()
{
    DeviceItem *item = firstSelectedDevice();
    if (!item)
        return;
    qreal z = 0.0;
    const QList<QGraphicsItem *> colliding = item->collidingItems(Qt::IntersectsItemShape);
    for (const QGraphicsItem *other : colliding) {
        if (z >= other->zValue() && isDevice(other))
            z = other->zValue() - 0.1;
    }
    item->setZValue(z);
}

void DeviceScene::setAlarmMap(QHash<unsigned short, Core::AlarmType> &map)
{
    bool alarmed = false;
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        if (DeviceItem *item = devices.value(it.key()))
            item->setAlarm(it.value());
        if (it.value() != Core::ALARM_OK)
            alarmed = true;
    }
    if (alarmed) {
        timer->start(blinkInterval);
    } else {
        timer->stop();
        emit togleAlarm(true);
    }
}

void DeviceScene::alarmLoopTimeout()
{
    blinkPhase = !blinkPhase;
    emit togleAlarm(blinkPhase);
}

void DeviceScene::setHighlight(DeviceItem::HighLightMode mode)
{
    // Stored even without a selection, so later selections follow it.
    highLightMode = mode;
    const QList<QGraphicsItem *> selection = selectedItems();
    for (QGraphicsItem *item : selection) {
        if (!isDevice(item))
            continue;
        auto *device = static_cast<DeviceItem *>(item);
        device->setHighLight(mode);
        if (mode == DeviceItem::HighLightOff)
            highLighted.removeAll(device);
        else
            highLighted.append(device);
    }
}

void DeviceScene::setHighlightOff()
{
    const QList<DeviceItem *> items = highLighted;
    for (DeviceItem *item : items)
        item->setHighLight(DeviceItem::HighLightOff);
    highLighted.clear();
}

void DeviceScene::setHighlightMode()
{
    if (selectedItems().isEmpty()) {
        setHighlightOff();
    } else if (highLightMode != DeviceItem::HighLightOff) {
        setHighlightOff();
        setHighlight(highLightMode);
    }
}

void DeviceScene::setHighlightGroup(QList<unsigned short> keys, bool on)
{
    for (unsigned short key : qAsConst(keys)) {
        if (DeviceItem *item = devices.value(key))
            item->setGroupHighLight(on);
    }
}

DeviceItem *DeviceScene::getDeviceItem(unsigned short key) const
{
    return devices.value(key);
}

void DeviceScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    if (mode == LinkMode) {
        // A press without a release in between leaves no stray band.
        delete line;
        line = new RubberBand(QLineF(event->scenePos(), event->scenePos()), &line);
        line->setPen(QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        addItem(line);
    }
    QGraphicsScene::mousePressEvent(event);
    setHighlightMode();
}

void DeviceScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (mode == LinkMode && line) {
        // The base class never sees the move, so nothing is dragged.
        line->setLine(QLineF(line->line().p1(), event->scenePos()));
        return;
    }
    QGraphicsScene::mouseMoveEvent(event);
}

void DeviceScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (mode == LinkMode && line) {
        auto itemsAt = [this](const QPointF &point) {
            QList<QGraphicsItem *> found = items(point, Qt::IntersectsItemShape, Qt::DescendingOrder);
            if (!found.isEmpty() && found.first() == line)
                found.removeFirst();
            return found;
        };
        const QList<QGraphicsItem *> startItems = itemsAt(line->line().p1());
        const QList<QGraphicsItem *> endItems = itemsAt(line->line().p2());
        delete line;
        line = nullptr;
        if (!startItems.isEmpty() && !endItems.isEmpty() && isDevice(startItems.first())
            && isDevice(endItems.first()) && startItems.first() != endItems.first()) {
            createLink(
                static_cast<DeviceItem *>(startItems.first()), static_cast<DeviceItem *>(endItems.first()));
        }
    }
    QGraphicsScene::mouseReleaseEvent(event);
}

void DeviceScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    const QList<QGraphicsItem *> selection = selectedItems();
    if (selection.isEmpty())
        return;
    if (isDevice(selection.first()))
        emit doubleClick(keyOf(selection.first()));
    QGraphicsScene::mouseDoubleClickEvent(event);
}

void DeviceScene::contextMenuEvent(QGraphicsSceneContextMenuEvent *event)
{
    // The item under the pointer selects itself; the host builds the menu.
    QGraphicsScene::contextMenuEvent(event);
    const QList<QGraphicsItem *> selection = selectedItems();
    if (selection.isEmpty())
        return;
    const QGraphicsItem *first = selection.first();
    const QPointF pos = first->mapToScene(event->pos());
    if (isLink(first)) {
        const auto *link = static_cast<const LinkArrow *>(first);
        emit contextMenuLink(pos, keyOf(link->getStartItem()), keyOf(link->getEndItem()));
    } else if (isDevice(first)) {
        emit contextMenu(pos, keyOf(first));
    }
}

unsigned short DeviceScene::keyOf(const QGraphicsItem *item) const
{
    if (!isDevice(item))
        return noKey;
    auto *device = static_cast<DeviceItem *>(const_cast<QGraphicsItem *>(item));
    return devices.key(device, noKey);
}

DeviceItem *DeviceScene::firstSelectedDevice() const
{
    const QList<QGraphicsItem *> selection = selectedItems();
    if (selection.isEmpty() || !isDevice(selection.first()))
        return nullptr;
    return static_cast<DeviceItem *>(selection.first());
}

void DeviceScene::createLink(DeviceItem *from, DeviceItem *to)
{
    auto *link = new LinkArrow(from, to);
    link->setColor(Qt::black);
    from->addArrow(link);
    to->addArrow(link);
    // Beneath every device.
    link->setZValue(-1000);
    addItem(link);
    link->updatePosition();
    links.append(link);
}

void DeviceScene::forgetDevice(DeviceItem *item)
{
    for (auto it = devices.begin(); it != devices.end();) {
        if (it.value() == item)
            it = devices.erase(it);
        else
            ++it;
    }
    highLighted.removeAll(item);
}

void DeviceScene::forgetLink(LinkArrow *link)
{
    links.removeAll(link);
}
