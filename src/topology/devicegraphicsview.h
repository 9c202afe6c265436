#ifndef DEVICEGRAPHICSVIEW_H
#define DEVICEGRAPHICSVIEW_H

#include "muxcore_export.h"

#include <QGraphicsView>

/**
 * The view a host shows the topology in; Ctrl + wheel zooms around the
 * pointer, without limits. Without Ctrl the wheel scrolls as usual.
 */
class MUXCORE_EXPORT DeviceGraphicsView : public QGraphicsView
{
    Q_OBJECT
public:
    /// A view without scene.
    explicit DeviceGraphicsView(QWidget *parent = nullptr);
    /// A view of @p scene, which it does not own.
    explicit DeviceGraphicsView(QGraphicsScene *scene, QWidget *parent = nullptr);

protected:
    /// Zooms with Ctrl held, scrolls otherwise.
    void wheelEvent(QWheelEvent *event) override;
};

#endif // DEVICEGRAPHICSVIEW_H
