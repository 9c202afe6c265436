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

// One managed unit on the topology scene: its front panel framed by a pen
// that tells highlight and alarm state, filled by a brush that tells hover
// and group membership. Knows the links that start or end at it.
class MUXCORE_EXPORT DeviceItem : public QGraphicsWidget
{
    Q_OBJECT
public:
    enum HighLightMode { HighLightForward = 0, HighLightBackward = 1, HighLightBoth = 2, HighLightOff = 3 };
    Q_ENUM(HighLightMode)

    enum { Type = UserType + 15 };

    explicit DeviceItem(QGraphicsItem *parent = nullptr);
    ~DeviceItem() override;

    int type() const override { return Type; }

    // Parses a front-panel description and takes its size and tooltip.
    void setParameters(QString &description);
    void aplyDimensions(QRectF r);

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    // The panel rectangle, in item coordinates.
    QPolygonF polygon() const;
    // Links attach here; deliberately pos() + half the bounding size,
    // without the bounding rectangle's own offset.
    QPointF centerPoint() const;

    // Stored only; shown from the next blink phase on.
    void setAlarm(Core::AlarmType alarm);
    void setHighLight(DeviceItem::HighLightMode mode);
    void setGroupHighLight(bool on);

    void addArrow(LinkArrow *arrow);
    void removeArrow(LinkArrow *arrow);
    // Deletes every link of this item.
    void removeArrows();

    DeviceItem::HighLightMode getHighLightMode() const { return highLightMode; }
    QList<LinkArrow *> getArrows() const { return arrows; }
    const FrontPanel &getFrontPanel() const { return frontPanel; }

public slots:
    void updateFrontPanel(QString description);
    // true: the ordinary look; false: the alarm look of the stored alarm.
    void showAlarm(bool on);

signals:
    void mouseEnter();
    void mouseLeave();
    void selected();

protected:
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;
    void contextMenuEvent(QGraphicsSceneContextMenuEvent *event) override;
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
