#ifndef DEVICESCENE_H
#define DEVICESCENE_H

#include "muxcore_export.h"

#include "core/core.h"
#include "topology/deviceitem.h"

#include <QGraphicsScene>
#include <QHash>
#include <QList>
#include <QPair>
#include <QPointF>
#include <QVector>

class LinkArrow;
class QGraphicsLineItem;
class QTimer;

// The topology picture: one item per managed unit under its 16-bit key, the
// links between them, and the interaction rules (link drawing, stacking,
// selection-driven highlighting, alarm blinking). Key 65535 stands for "no
// unit" in lookups and signals.
class MUXCORE_EXPORT DeviceScene : public QGraphicsScene
{
    Q_OBJECT
public:
    enum Mode { LinkMode = 0, SelectMode = 1 };
    Q_ENUM(Mode)

    explicit DeviceScene(QObject *parent = nullptr);
    ~DeviceScene() override;

    void setInsertMode(DeviceScene::Mode mode);
    // z = -1.0 keeps the default stacking.
    void addDeviceItem(unsigned short key, QString description, QPointF pos, double z);
    void removeDeviceItem(unsigned short key);
    void setFrontPanel(unsigned short key, QString description);
    void addArrowLink(unsigned short from, unsigned short to);
    // (start key, end key) of every link, in creation order.
    QList<QPair<unsigned short, unsigned short>> getArrowLinkList();
    QList<unsigned short> getSelectedDevices();
    void removeSelectedArrows();
    void setSelected(unsigned short key);
    QPointF getItemPos(unsigned short key);
    double getItemZ(unsigned short key);
    void bringToFront();
    void sendToBack();
    // Blinks while any value is not "Ok".
    void setAlarmMap(QHash<unsigned short, Core::AlarmType> &map);
    void setHighlight(DeviceItem::HighLightMode mode);
    void setHighlightOff();
    // Makes the highlight follow the selection.
    void setHighlightMode();
    void setHighlightGroup(QList<unsigned short> keys, bool on);

    // The item under a key, or nullptr.
    DeviceItem *getDeviceItem(unsigned short key) const;

signals:
    void contextMenu(QPointF pos, unsigned short key);
    void contextMenuLink(QPointF pos, unsigned short from, unsigned short to);
    void doubleClick(unsigned short key);
    void togleAlarm(bool on);

public slots:
    void alarmLoopTimeout();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;
    void contextMenuEvent(QGraphicsSceneContextMenuEvent *event) override;

private:
    friend class DeviceItem;
    friend class LinkArrow;

    unsigned short keyOf(const QGraphicsItem *item) const;
    DeviceItem *firstSelectedDevice() const;
    void createLink(DeviceItem *from, DeviceItem *to);
    // Called as items die, so no lookup ever meets a deleted one.
    void forgetDevice(DeviceItem *item);
    void forgetLink(LinkArrow *link);

    DeviceScene::Mode mode = SelectMode;
    DeviceItem::HighLightMode highLightMode = DeviceItem::HighLightOff;
    QGraphicsLineItem *line = nullptr;
    QList<DeviceItem *> highLighted;
    QHash<unsigned short, DeviceItem *> devices;
    QVector<LinkArrow *> links;
    QTimer *timer;
    bool blinkPhase = false;
};

#endif // DEVICESCENE_H
