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

#ifdef TOPOLOGY_REFERENCE_DIR
// Renderings of equal size stacked top to bottom, compared with a reference
// image pixel for pixel. MUXCORE_UPDATE_REFERENCES writes the reference
// instead; a mismatch is left in the working directory for a person to see.
inline bool matchesReference(const QList<QImage> &tiles, const QString &name)
{
    QImage sheet(tiles.first().width(), tiles.first().height() * tiles.size(), QImage::Format_RGB32);
    QPainter painter(&sheet);
    for (int i = 0; i < tiles.size(); ++i)
        painter.drawImage(0, i * tiles.first().height(), tiles.at(i));
    const QString file = QStringLiteral(TOPOLOGY_REFERENCE_DIR "/") + name + QStringLiteral(".png");
    if (qEnvironmentVariableIsSet("MUXCORE_UPDATE_REFERENCES"))
        sheet.save(file);
    return QImage(file).convertToFormat(sheet.format()) == sheet || (sheet.save(name + ".png") && false);
}
#endif

#endif // TOPOLOGY_RENDERING_H
