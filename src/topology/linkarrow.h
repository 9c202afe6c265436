#ifndef LINKARROW_H
#define LINKARROW_H

#include "muxcore_export.h"

#include "topology/deviceitem.h"

#include <QColor>
#include <QGraphicsLineItem>
#include <QPen>
#include <QPolygonF>

// A directed link between two units: a line from the start unit with an
// arrow head on the end unit's panel edge. Carries its own highlight so a
// highlight can run along chains of links.
class MUXCORE_EXPORT LinkArrow : public QGraphicsLineItem
{
public:
    enum { Type = UserType + 4 };

    LinkArrow(DeviceItem *startItem, DeviceItem *endItem, QGraphicsItem *parent = nullptr);
    ~LinkArrow() override;

    int type() const override { return Type; }

    // Follows the ends; called whenever either end moves or changes size.
    void updatePosition();

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget = nullptr) override;

    // Called by a unit whose highlight changed; passes the highlight on to
    // the other end as the mode's direction allows.
    void setHighLight(DeviceItem *from, DeviceItem::HighLightMode mode);

    DeviceItem *getStartItem() const { return startItem; }
    DeviceItem *getEndItem() const { return endItem; }
    void setColor(const QColor &value) { color = value; }
    DeviceItem::HighLightMode getHighLightMode() const { return highLightMode; }
    QPolygonF getArrowHead() const { return arrowHead; }

protected:
    void contextMenuEvent(QGraphicsSceneContextMenuEvent *event) override;

private:
    DeviceItem *startItem;
    DeviceItem *endItem;
    QColor color;
    QPolygonF arrowHead;
    QPen currentPen;
    QPen highLightPen;
    QPen normalPen;
    DeviceItem::HighLightMode highLightMode = DeviceItem::HighLightOff;
};

#endif // LINKARROW_H
