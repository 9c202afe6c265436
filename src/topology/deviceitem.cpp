#include "deviceitem.h"

#include "topology/devicescene.h"
#include "topology/linkarrow.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMoveEvent>
#include <QLine>
#include <QPainter>
#include <QPainterPath>

namespace {

// The drawing area for an item's origin, in scene units.
constexpr qreal maxX = 1900;
constexpr qreal maxY = 1060;
// Room around the panel for the frame pens and the selection brackets.
constexpr qreal margin = 7;

QPen alarmPen(Qt::GlobalColor colour, qreal width)
{
    return QPen(QBrush(colour), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

} // namespace

DeviceItem::DeviceItem(QGraphicsItem *parent)
    : QGraphicsWidget(parent)
    , selectionPen(QBrush(QColor(200, 0, 0)), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
    , highLightPen(QBrush(QColor(90, 255, 90)), 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
    , normalPen(QColor(Qt::gray))
    , hoverPen(QColor(Qt::black))
    , majorAlarmPen(alarmPen(Qt::red, 4))
    , minorAlarmPen(alarmPen(Qt::darkYellow, 4))
    , blackAlarmPen(alarmPen(Qt::black, 8))
    , groupBrush(QColor(227, 175, 147))
    , normalBrush(Qt::white)
    , hoverBrush(QColor(70, 180, 230))
{
    currentPen = normalPen;
    currentBrush = normalBrush;
    baseBrush = normalBrush;
    setFlags(ItemIsMovable | ItemIsSelectable);
    setAcceptHoverEvents(true);
    aplyDimensions(frontPanel.getDimensionRect());
}

DeviceItem::~DeviceItem()
{
    // Links must not outlive either end.
    removeArrows();
    if (auto *deviceScene = qobject_cast<DeviceScene *>(scene()))
        deviceScene->forgetDevice(this);
}

void DeviceItem::setParameters(QString &description)
{
    frontPanel.parse(description);
    aplyDimensions(frontPanel.getDimensionRect());
    setToolTip(frontPanel.getToolTip());
    update();
}

void DeviceItem::updateFrontPanel(QString description)
{
    setParameters(description);
}

void DeviceItem::aplyDimensions(QRectF r)
{
    prepareGeometryChange();
    panelRect = r;
    bounding = QRectF(r.x() - margin, r.y() - margin, r.width() + 2 * margin, r.height() + 2 * margin);
    // The attachment point moves with the size.
    for (LinkArrow *arrow : qAsConst(arrows))
        arrow->updatePosition();
}

QRectF DeviceItem::boundingRect() const
{
    return bounding;
}

QPainterPath DeviceItem::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

QPolygonF DeviceItem::polygon() const
{
    return QPolygonF(panelRect);
}

QPointF DeviceItem::centerPoint() const
{
    return pos() + QPointF(bounding.width() / 2, bounding.height() / 2);
}

void DeviceItem::setAlarm(Core::AlarmType alarm)
{
    this->alarm = alarm;
}

void DeviceItem::showAlarm(bool on)
{
    if (on) {
        currentPen = ordinaryPen();
    } else {
        switch (static_cast<int>(alarm)) {
        case Core::ALARM_OK:
            currentPen = normalPen;
            break;
        case Core::ALARM_MAJOR:
        case Core::ALARM_MAJOR_MINOR:
            currentPen = majorAlarmPen;
            break;
        case Core::ALARM_MINOR:
            currentPen = minorAlarmPen;
            break;
        case 4:
            currentPen = blackAlarmPen;
            break;
        default:
            break;
        }
    }
    update();
}

void DeviceItem::setHighLight(DeviceItem::HighLightMode mode)
{
    // Equal modes end the walk along the links.
    if (mode == highLightMode)
        return;
    highLightMode = mode;
    currentPen = ordinaryPen();
    update();
    const QList<LinkArrow *> links = arrows;
    for (LinkArrow *arrow : links)
        arrow->setHighLight(this, mode);
}

void DeviceItem::setGroupHighLight(bool on)
{
    groupHighLighted = on;
    baseBrush = on ? groupBrush : normalBrush;
    currentBrush = baseBrush;
    update();
}

void DeviceItem::addArrow(LinkArrow *arrow)
{
    arrows.append(arrow);
}

void DeviceItem::removeArrow(LinkArrow *arrow)
{
    arrows.removeOne(arrow);
}

void DeviceItem::removeArrows()
{
    // Each link takes itself out of both ends' lists and the scene's.
    const QList<LinkArrow *> links = arrows;
    for (LinkArrow *arrow : links)
        delete arrow;
}

void DeviceItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    painter->fillRect(panelRect, currentBrush);
    painter->setPen(currentPen);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(panelRect);
    if (isSelected())
        paintSelectionMarks(painter);
    frontPanel.paint(painter);
}

void DeviceItem::paintSelectionMarks(QPainter *painter) const
{
    const qreal x = panelRect.x();
    const qreal y = panelRect.y();
    const qreal w = panelRect.width();
    const qreal h = panelRect.height();
    auto line
        = [](qreal x1, qreal y1, qreal x2, qreal y2) { return QLine(int(x1), int(y1), int(x2), int(y2)); };
    const QLine marks[] = {
        line(x - 5, y - 5, x - 5, y + 10),
        line(x - 5, y - 5, x + 10, y - 5),
        line(x + w + 5, y - 5, x + w + 5, y + 10),
        line(x + w - 10, y - 5, x + w + 5, y - 5),
        line(x - 5, y + h + 5, x + 10, y + h + 5),
        line(x - 5, y + h + 5, x - 5, y + h - 10),
        line(x + w + 5, y + h + 5, x + w - 10, y + h + 5),
        line(x + w + 5, y + h + 5, x + w + 5, y + h - 10),
    };
    painter->setPen(selectionPen);
    painter->drawLines(marks, 8);
}

void DeviceItem::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsWidget::mousePressEvent(event);
    if (isSelected())
        emit selected();
}

void DeviceItem::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsWidget::mouseReleaseEvent(event);
}

void DeviceItem::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    Q_UNUSED(event)
    currentBrush = hoverBrush;
    if (highLightMode == HighLightOff)
        currentPen = hoverPen;
    emit mouseEnter();
    update();
}

void DeviceItem::hoverLeaveEvent(QGraphicsSceneHoverEvent *event)
{
    Q_UNUSED(event)
    currentBrush = baseBrush;
    if (highLightMode == HighLightOff)
        currentPen = normalPen;
    emit mouseLeave();
    update();
}

void DeviceItem::contextMenuEvent(QGraphicsSceneContextMenuEvent *event)
{
    Q_UNUSED(event)
    // The scene reports the menu for whatever is selected afterwards.
    if (scene())
        scene()->clearSelection();
    setSelected(true);
}

void DeviceItem::moveEvent(QGraphicsSceneMoveEvent *event)
{
    const QPointF wanted = event->newPos();
    const QPointF clamped(qBound<qreal>(0, wanted.x(), maxX), qBound<qreal>(0, wanted.y(), maxY));
    if (clamped != wanted)
        setPos(clamped);
    for (LinkArrow *arrow : qAsConst(arrows))
        arrow->updatePosition();
}

const QPen &DeviceItem::ordinaryPen() const
{
    return highLightMode == HighLightOff ? normalPen : highLightPen;
}
