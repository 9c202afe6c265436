#ifndef TOPOLOGY_RENDERING_H
#define TOPOLOGY_RENDERING_H

#include <QColor>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>

// Renders a scene area 1:1 onto white, without antialiasing, so pixels
// can be checked against hand-computed geometry.
inline QImage renderScene(QGraphicsScene *scene, const QRect &area)
{
    QImage image(area.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene->render(&painter, QRectF(QPointF(0, 0), area.size()), area);
    return image;
}

inline QColor pixelAt(const QImage &image, int x, int y)
{
    return QColor(image.pixel(x, y));
}

#endif // TOPOLOGY_RENDERING_H
