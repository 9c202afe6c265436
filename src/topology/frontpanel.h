#ifndef FRONTPANEL_H
#define FRONTPANEL_H

#include "muxcore_export.h"

#include <QFont>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QRectF>
#include <QString>
#include <QStringList>

class QPainter;

// One positioned element of a front-panel description, as parsed.
struct MUXCORE_EXPORT FrontPanelElement
{
    int kind = 0;
    qreal x = 0; // pixels: description units × scale
    qreal y = 0;
    QStringList parameters;
};

// The picture of a unit's front panel, described by the host in a small
// text language ("dimension: 10x4; 9x1(led): 0,255,0; tooltip: ...").
// Parsed once when a description arrives; painting only walks the elements,
// so the twice-a-second alarm repaints stay cheap.
class MUXCORE_EXPORT FrontPanel
{
public:
    enum ElementKind {
        Text = 0,
        Interface = 1,
        Alarm = 2,
        Led = 3,
        Db9 = 4,
        Db25 = 5,
        Rj45 = 6,
        Rj11 = 7,
        Sfp = 8,
        Ofm = 9,
        LedMatrix = 10,
        Background = 11,
        ProgressBar = 12,
        ToolTip = 13
    };

    static constexpr int scale = 20; // pixels per description unit

    FrontPanel();

    // Replaces the content. On a bad size entry the panel keeps its previous
    // rectangle, holds no elements and false is returned; bad element entries
    // are skipped one by one.
    bool parse(const QString &description);

    QRectF getDimensionRect() const { return dimensionRect; }
    QString getToolTip() const { return toolTip; }
    int getWidth() const { return width; }
    int getHeight() const { return height; }
    QList<FrontPanelElement> getElements() const { return elements; }

    // Paints every element in description order, in item coordinates.
    void paint(QPainter *painter) const;

    // Keyword to element kind; case-sensitive. -1 for an unknown keyword.
    static int kindOf(const QString &keyword);

private:
    bool parseElement(const QString &entry, FrontPanelElement *element) const;
    void paintElements(QPainter *painter) const;
    // Whether the painter maps item pixels one to one onto a raster device,
    // where a composited layer gives the same pixels as painting each element.
    static bool canUseLayer(const QPainter *painter);
    // Paints the elements once into the layer for this font and these hints;
    // false when the elements reach too far for a layer.
    bool ensureLayer(const QFont &font, int hints) const;
    QRectF elementExtent(const QFont &font) const;

    QRectF dimensionRect;
    int width = 10;
    int height = 4;
    QList<FrontPanelElement> elements;
    QString toolTip;

    // The elements as painted last, so that the repaints of alarm blinking
    // composite one image instead of drawing every element again. Dropped by
    // parse().
    mutable QImage layer;
    mutable QPoint layerOrigin; // item coordinates of the layer's top-left
    mutable QFont layerFont;
    mutable int layerHints = -1;
};

#endif // FRONTPANEL_H
