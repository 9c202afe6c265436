#ifndef DEVICEITEM_H
#define DEVICEITEM_H

#include "muxcore_export.h"

#include "core/core.h"
#include "topology/frontpanel.h"

#include <QBrush>
#include <QGraphicsWidget>
#include <QList>
#include <QPen>
#include <QPolygonF>

class LinkArrow;

/**
 * One managed unit on the topology scene.
 *
 * Its front panel is framed by a pen that tells highlight and alarm state and
 * filled by a brush that tells hover and group membership. It knows the links
 * that start or end at it. Items are created and owned by DeviceScene
 * (DeviceScene::addDeviceItem()).
 */
class MUXCORE_EXPORT DeviceItem : public QGraphicsWidget
{
    Q_OBJECT
public:
    /// Which way a highlight runs along the links from a selected unit.
    enum HighLightMode {
        HighLightForward = 0, ///< Along links leaving the unit.
        HighLightBackward = 1, ///< Along links arriving at the unit.
        HighLightBoth = 2, ///< Both ways.
        HighLightOff = 3 ///< No highlight.
    };
    Q_ENUM(HighLightMode)

    /// The item type, for qgraphicsitem_cast().
    enum { Type = UserType + 15 };

    /// An empty item; setParameters() gives it a panel.
    explicit DeviceItem(QGraphicsItem *parent = nullptr);
    /// Deletes the item's links.
    ~DeviceItem() override;

    /// The item type above.
    int type() const override { return Type; }

    /// Parses a front-panel description (see FrontPanel) and takes its size and tooltip.
    void setParameters(QString &description);
    /// Sets the panel rectangle; the bounding rectangle is 7 pixels larger on every side, for the selection
    /// marks.
    void aplyDimensions(QRectF r);

    /// The panel rectangle with room for the selection marks.
    QRectF boundingRect() const override;
    /// The bounding rectangle.
    QPainterPath shape() const override;
    /// The panel rectangle, in item coordinates.
    QPolygonF polygon() const;
    /// Links attach here; deliberately pos() + half the bounding size,
    /// without the bounding rectangle's own offset.
    QPointF centerPoint() const;

    /// Stores the alarm level; it shows from the scene's next blink phase on.
    void setAlarm(Core::AlarmType alarm);
    /// Highlights the unit and passes the highlight along its links as the mode's direction allows.
    void setHighLight(DeviceItem::HighLightMode mode);
    /// Marks the unit as a member of the group the host shows.
    void setGroupHighLight(bool on);

    /// Registers a link that starts or ends here; not owned.
    void addArrow(LinkArrow *arrow);
    /// Forgets a link; nothing if it is not registered.
    void removeArrow(LinkArrow *arrow);
    /// Deletes every link of this item.
    void removeArrows();

    /// The current highlight.
    DeviceItem::HighLightMode getHighLightMode() const { return highLightMode; }
    /// The links that start or end here.
    QList<LinkArrow *> getArrows() const { return arrows; }
    /// The parsed front panel.
    const FrontPanel &getFrontPanel() const { return frontPanel; }

public slots:
    /// The same as setParameters(), as a slot.
    void updateFrontPanel(QString description);
    /// true: the ordinary look; false: the alarm look of the stored alarm (driven by
    /// DeviceScene::togleAlarm()).
    void showAlarm(bool on);

signals:
    /// The pointer entered the item.
    void mouseEnter();
    /// The pointer left the item.
    void mouseLeave();
    /// A mouse press selected the item.
    void selected();

protected:
    /// Paints the framed panel, the selection marks and the panel's elements.
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;
    /// Emits selected() when the press selected the item.
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    /// The base class's handling.
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    /// Shows the hover look and emits mouseEnter().
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override;
    /// Drops the hover look and emits mouseLeave().
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;
    /// Makes the item the only selected one, so the scene emits DeviceScene::contextMenu().
    void contextMenuEvent(QGraphicsSceneContextMenuEvent *event) override;
    /// Moves the links along.
    void moveEvent(QGraphicsSceneMoveEvent *event) override;

private:
    void paintSelectionMarks(QPainter *painter) const;
    const QPen &ordinaryPen() const;

    QRectF bounding;
    QRectF panelRect;
    QBrush currentBrush;
    QPen currentPen;
    DeviceItem::HighLightMode highLightMode = HighLightOff;
    QList<LinkArrow *> arrows;

    QPen selectionPen;
    QPen highLightPen;
    QPen normalPen;
    QPen hoverPen;
    QPen majorAlarmPen;
    QPen minorAlarmPen;
    QPen blackAlarmPen;
    QBrush baseBrush;
    QBrush groupBrush;
    QBrush normalBrush;
    QBrush hoverBrush;

    FrontPanel frontPanel;
    bool groupHighLighted = false;
    Core::AlarmType alarm = Core::ALARM_OK;
};

#endif // DEVICEITEM_H
