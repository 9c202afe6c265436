#ifndef DEVICEGRAPHICSVIEW_H
#define DEVICEGRAPHICSVIEW_H

#include "muxcore_export.h"

#include <QGraphicsView>

// The view a host shows the topology in; Ctrl + wheel zooms around the
// pointer, without limits.
class MUXCORE_EXPORT DeviceGraphicsView : public QGraphicsView
{
    Q_OBJECT
public:
    explicit DeviceGraphicsView(QWidget *parent = nullptr);
    explicit DeviceGraphicsView(QGraphicsScene *scene, QWidget *parent = nullptr);

protected:
    void wheelEvent(QWheelEvent *event) override;
};

#endif // DEVICEGRAPHICSVIEW_H
