#ifndef LINKARROW_H
#define LINKARROW_H

#include "muxcore_export.h"

#include "topology/deviceitem.h"

#include <QColor>
#include <QGraphicsLineItem>
#include <QPen>
#include <QPolygonF>

/**
 * A directed link between two units: a line from the start unit with an
 * arrow head on the end unit's panel edge.
 *
 * Created and owned by DeviceScene (DeviceScene::addArrowLink()). Carries its
 * own highlight so a highlight can run along chains of links.
 */
class MUXCORE_EXPORT LinkArrow : public QGraphicsLineItem
{
public:
    /// The item type, for qgraphicsitem_cast().
    enum { Type = UserType + 4 };

    /// A link from @p startItem to @p endItem; neither is owned.
    LinkArrow(DeviceItem *startItem, DeviceItem *endItem, QGraphicsItem *parent = nullptr);
    /// Unregisters the link from both ends.
    ~LinkArrow() override;

    /// The item type above.
    int type() const override { return Type; }

    /// Follows the ends; called whenever either end moves or changes size.
    void updatePosition();

    /// The line with its arrow head and a margin for the pen.
    QRectF boundingRect() const override;
    /// The line and the arrow head.
    QPainterPath shape() const override;
    /// Draws the line, the arrow head and, when selected, a dotted red mark.
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget = nullptr) override;

    /// Called by a unit whose highlight changed; passes the highlight on to
    /// the other end as the mode's direction allows.
    void setHighLight(DeviceItem *from, DeviceItem::HighLightMode mode);

    /// The unit the link starts at.
    DeviceItem *getStartItem() const { return startItem; }
    /// The unit the link points to.
    DeviceItem *getEndItem() const { return endItem; }
    /// Sets the colour of line and head (black from the scene).
    void setColor(const QColor &value) { color = value; }
    /// The current highlight.
    DeviceItem::HighLightMode getHighLightMode() const { return highLightMode; }
    /// The arrow head polygon as painted last.
    QPolygonF getArrowHead() const { return arrowHead; }

protected:
    /// Makes the link the only selected item, so the scene emits DeviceScene::contextMenuLink().
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
