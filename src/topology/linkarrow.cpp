#include "linkarrow.h"

#include "topology/devicescene.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace {

// The head's geometry keeps these rounded constants on purpose: the picture
// must not shift against the drawings operators know.
constexpr qreal twoPi = 6.28;
constexpr qreal pi = 3.14;
constexpr qreal headAngle = 1.256;
constexpr qreal headSize = 10;

} // namespace

LinkArrow::LinkArrow(DeviceItem *startItem, DeviceItem *endItem, QGraphicsItem *parent)
    : QGraphicsLineItem(parent)
    , startItem(startItem)
    , endItem(endItem)
    , color(Qt::black)
    , highLightPen(QBrush(QColor(90, 255, 90)), 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
    , normalPen(QBrush(Qt::black), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
{
    currentPen = normalPen;
    setFlag(ItemIsSelectable, true);
    // Never changed afterwards, so the bounding rectangle ignores highlights.
    setPen(normalPen);
}

LinkArrow::~LinkArrow()
{
    if (startItem)
        startItem->removeArrow(this);
    if (endItem)
        endItem->removeArrow(this);
    if (auto *deviceScene = qobject_cast<DeviceScene *>(scene()))
        deviceScene->forgetLink(this);
}

void LinkArrow::updatePosition()
{
    if (!startItem || !endItem)
        return;
    // The geometry is settled here rather than in paint(): the line runs
    // from the arrow tip on the end panel's edge back to the start's centre.
    const QPointF startCenter = startItem->centerPoint();
    const QLineF centerLine(startCenter, endItem->centerPoint());
    const QPolygonF endPolygon = endItem->polygon().translated(endItem->pos());

    bool found = false;
    QPointF tip;
    for (int i = 0; i + 1 < endPolygon.size() && !found; ++i) {
        const QLineF edge(endPolygon.at(i), endPolygon.at(i + 1));
        found = edge.intersects(centerLine, &tip) == QLineF::BoundedIntersection;
    }

    arrowHead.clear();
    if (!found) {
        // Overlapping units: a plain line, and no head to point anywhere.
        setLine(QLineF(centerLine.p2(), centerLine.p1()));
        return;
    }
    const QLineF line(tip, startCenter);
    setLine(line);
    if (line.length() <= 0)
        return;

    qreal angle = std::acos(line.dx() / line.length());
    if (line.dy() >= 0)
        angle = twoPi - angle;
    const QPointF p1 = line.p1();
    const QPointF left
        = p1 + QPointF(std::sin(angle + headAngle) * headSize, std::cos(angle + headAngle) * headSize);
    const QPointF right = p1
        + QPointF(std::sin(angle + pi - headAngle) * headSize, std::cos(angle + pi - headAngle) * headSize);
    arrowHead << p1 << left << right;
}

QRectF LinkArrow::boundingRect() const
{
    const qreal extra = (pen().width() + 20) / 2.0;
    const QLineF l = line();
    return QRectF(l.p1(), l.p2()).normalized().adjusted(-extra, -extra, extra, extra);
}

QPainterPath LinkArrow::shape() const
{
    QPainterPath path = QGraphicsLineItem::shape();
    path.addPolygon(arrowHead);
    return path;
}

void LinkArrow::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    painter->setPen(currentPen);
    painter->setBrush(color);
    painter->drawLine(line());
    if (!arrowHead.isEmpty())
        painter->drawPolygon(arrowHead);
    if (isSelected()) {
        painter->setPen(QPen(QBrush(QColor(200, 0, 0)), 6, Qt::DotLine, Qt::SquareCap, Qt::BevelJoin));
        painter->drawLine(line());
    }
}

void LinkArrow::setHighLight(DeviceItem *from, DeviceItem::HighLightMode mode)
{
    if (mode == highLightMode)
        return;
    // The mode is stored even when `from` sits at the wrong end for a
    // directed mode: a link met against its direction must not carry the
    // highlight on later in the same pass.
    highLightMode = mode;
    switch (mode) {
    case DeviceItem::HighLightForward:
        if (from == startItem) {
            currentPen = highLightPen;
            if (endItem)
                endItem->setHighLight(DeviceItem::HighLightForward);
        }
        break;
    case DeviceItem::HighLightBackward:
        if (from == endItem) {
            currentPen = highLightPen;
            if (startItem)
                startItem->setHighLight(DeviceItem::HighLightBackward);
        }
        break;
    case DeviceItem::HighLightBoth:
        if (from == startItem) {
            currentPen = highLightPen;
            if (endItem)
                endItem->setHighLight(DeviceItem::HighLightBoth);
        }
        if (from == endItem) {
            currentPen = highLightPen;
            if (startItem)
                startItem->setHighLight(DeviceItem::HighLightBoth);
        }
        break;
    default:
        currentPen = normalPen;
        if (startItem)
            startItem->setHighLight(mode);
        if (endItem)
            endItem->setHighLight(mode);
        break;
    }
    update();
}

void LinkArrow::contextMenuEvent(QGraphicsSceneContextMenuEvent *event)
{
    Q_UNUSED(event)
    if (scene())
        scene()->clearSelection();
    setSelected(true);
}
