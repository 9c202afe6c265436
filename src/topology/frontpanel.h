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

/// One positioned element of a front-panel description, as parsed.
struct MUXCORE_EXPORT FrontPanelElement
{
    int kind = 0; ///< A FrontPanel::ElementKind value.
    qreal x = 0; ///< Pixels: description units × FrontPanel::scale.
    qreal y = 0; ///< Pixels: description units × FrontPanel::scale.
    QStringList parameters; ///< The comma-separated values after the colon.
};

/**
 * The picture of a unit's front panel, described by the host in a small
 * text language.
 *
 * A description is a ";"-separated list: first "dimension: WxH" in units of
 * #scale pixels, then elements "XxY(keyword): parameters" and an optional
 * "tooltip: text", for example
 * "dimension: 10x4; 9x1(led): 0,255,0; tooltip: Unit A".
 * Keywords are case-sensitive (see #ElementKind).
 *
 * Parsed once when a description arrives; painting only walks the elements,
 * so the twice-a-second alarm repaints stay cheap.
 */
class MUXCORE_EXPORT FrontPanel
{
public:
    /// The element kinds, with their keywords.
    enum ElementKind {
        Text = 0, ///< "text": a text label.
        Interface = 1, ///< "interf": an interface picture (serial or Ethernet).
        Alarm = 2, ///< "alarm": an alarm lamp.
        Led = 3, ///< "led": a small LED.
        Db9 = 4, ///< "db9": a 9-pin D-sub connector.
        Db25 = 5, ///< "db25": a 25-pin D-sub connector.
        Rj45 = 6, ///< "rj45": an RJ-45 jack with two LEDs.
        Rj11 = 7, ///< "rj11": an RJ-11 jack.
        Sfp = 8, ///< "sfp": an SFP cage.
        Ofm = 9, ///< "ofm": an optical connector.
        LedMatrix = 10, ///< "ledmat": a column of four LEDs.
        Background = 11, ///< "background": a coloured strip.
        ProgressBar = 12, ///< "progressbar": a level bar.
        ToolTip = 13 ///< "tooltip": the item's tooltip text, not painted.
    };

    static constexpr int scale = 20; ///< Pixels per description unit.

    /// An empty 10 × 4 panel.
    FrontPanel();

    /**
     * Replaces the content with a parsed description.
     *
     * On a bad size entry the panel keeps its previous rectangle, holds no
     * elements and false is returned; bad element entries are skipped one by one.
     */
    bool parse(const QString &description);

    /// The panel rectangle in pixels, at the origin.
    QRectF getDimensionRect() const { return dimensionRect; }
    /// The tooltip text, as written after "tooltip:".
    QString getToolTip() const { return toolTip; }
    /// Width in description units.
    int getWidth() const { return width; }
    /// Height in description units.
    int getHeight() const { return height; }
    /// The painted elements, in description order.
    QList<FrontPanelElement> getElements() const { return elements; }

    /// Paints every element in description order, in item coordinates.
    void paint(QPainter *painter) const;

    /// Keyword to element kind; case-sensitive. -1 for an unknown keyword.
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
