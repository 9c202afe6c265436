#include "devicegraphicsview.h"

#include <QWheelEvent>

namespace {

constexpr qreal zoomStep = 1.15;

} // namespace

DeviceGraphicsView::DeviceGraphicsView(QWidget *parent)
    : QGraphicsView(parent)
{
}

DeviceGraphicsView::DeviceGraphicsView(QGraphicsScene *scene, QWidget *parent)
    : QGraphicsView(scene, parent)
{
}

void DeviceGraphicsView::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QGraphicsView::wheelEvent(event);
        return;
    }
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    const qreal factor = event->angleDelta().y() > 0 ? zoomStep : 1.0 / zoomStep;
    scale(factor, factor);
    event->accept();
}
