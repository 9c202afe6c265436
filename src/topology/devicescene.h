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

/**
 * The topology picture: one item per managed unit under its 16-bit key, the
 * links between them, and the interaction rules (link drawing, stacking,
 * selection-driven highlighting, alarm blinking).
 *
 * The host owns the scene; the scene owns its DeviceItem and LinkArrow objects.
 * Key 65535 stands for "no unit" in lookups and signals. Units in alarm blink
 * with a 500 ms timer that runs while setAlarmMap() reports any alarm.
 */
class MUXCORE_EXPORT DeviceScene : public QGraphicsScene
{
    Q_OBJECT
public:
    /// What a left-button drag does.
    enum Mode {
        LinkMode = 0, ///< A drag from one unit to another draws a link.
        SelectMode = 1 ///< Ordinary selection and moving.
    };
    Q_ENUM(Mode)

    /// An empty scene in #SelectMode, blink timer stopped.
    explicit DeviceScene(QObject *parent = nullptr);
    /// Deletes the items and links.
    ~DeviceScene() override;

    /// Sets what a left-button drag does.
    void setInsertMode(DeviceScene::Mode mode);
    /**
     * Creates the item of unit @p key from a FrontPanel description at @p pos with stacking value @p z.
     *
     * z = -1.0 keeps the default stacking. A key already in use is
     * overwritten in the table; the earlier item stays on the scene, unreachable by key.
     */
    void addDeviceItem(unsigned short key, QString description, QPointF pos, double z);
    /// Removes and deletes a unit's item and its links; nothing for an unknown key.
    void removeDeviceItem(unsigned short key);
    /// Gives a unit's item a new front-panel description, for example from Map::frontpanel().
    void setFrontPanel(unsigned short key, QString description);
    /// Links two units, drawn beneath them; nothing when either key is unknown.
    void addArrowLink(unsigned short from, unsigned short to);
    /// (start key, end key) of every link, in creation order.
    QList<QPair<unsigned short, unsigned short>> getArrowLinkList();
    /// The keys of the selected units, in selection order.
    QList<unsigned short> getSelectedDevices();
    /// Deletes the selected links.
    void removeSelectedArrows();
    /// Makes that unit the only selected item.
    void setSelected(unsigned short key);
    /// A unit item's position; (0, 0) for an unknown key.
    QPointF getItemPos(unsigned short key);
    /// A unit item's stacking value; 0.0 for an unknown key.
    double getItemZ(unsigned short key);
    /// Lifts the first selected unit just above the units it overlaps.
    void bringToFront();
    /// Lowers the first selected unit just below the units it overlaps.
    void sendToBack();
    /**
     * Gives every known unit its alarm level, for example from Map::getAlarmMap().
     *
     * Blinking runs while any value is not "Ok"; with none, it stops and
     * every item shows its ordinary look at once.
     */
    void setAlarmMap(QHash<unsigned short, Core::AlarmType> &map);
    /// Sets the highlight mode and applies it to the selected units.
    void setHighlight(DeviceItem::HighLightMode mode);
    /// Clears every highlight applied so far; the mode stays.
    void setHighlightOff();
    /// Makes the highlight follow the selection.
    void setHighlightMode();
    /// Marks or unmarks the listed units as a group.
    void setHighlightGroup(QList<unsigned short> keys, bool on);

    /// The item under a key, or nullptr.
    DeviceItem *getDeviceItem(unsigned short key) const;

signals:
    /// The user asked for the context menu of unit @p key, at scene position @p pos.
    void contextMenu(QPointF pos, unsigned short key);
    /// The user asked for the context menu of the link from @p from to @p to.
    void contextMenuLink(QPointF pos, unsigned short from, unsigned short to);
    /// The user double-clicked the selected unit, typically to open its configuration window.
    void doubleClick(unsigned short key);
    /// The blink phase: true the ordinary look, false the alarm look; every item follows it.
    void togleAlarm(bool on);

public slots:
    /// Turns the blink phase over and emits togleAlarm().
    void alarmLoopTimeout();

protected:
    /// Starts a link in #LinkMode; the highlight follows the selection.
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    /// Stretches the link being drawn in #LinkMode.
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    /// In #LinkMode, ends the link being drawn: links the two units under its ends.
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    /// Emits doubleClick() for the first selected unit.
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;
    /// Emits contextMenu() or contextMenuLink() for the item under the pointer.
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
