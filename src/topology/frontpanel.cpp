#include "frontpanel.h"

#include <QFontMetricsF>
#include <QHash>
#include <QImage>
#include <QLine>
#include <QPaintEngine>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace {

const QHash<QString, int> &keywordTable()
{
    static const QHash<QString, int> table {
        {QStringLiteral("text"), FrontPanel::Text},
        {QStringLiteral("interf"), FrontPanel::Interface},
        {QStringLiteral("alarm"), FrontPanel::Alarm},
        {QStringLiteral("led"), FrontPanel::Led},
        {QStringLiteral("db9"), FrontPanel::Db9},
        {QStringLiteral("db25"), FrontPanel::Db25},
        {QStringLiteral("rj45"), FrontPanel::Rj45},
        {QStringLiteral("rj11"), FrontPanel::Rj11},
        {QStringLiteral("sfp"), FrontPanel::Sfp},
        {QStringLiteral("ofm"), FrontPanel::Ofm},
        {QStringLiteral("ledmat"), FrontPanel::LedMatrix},
        {QStringLiteral("background"), FrontPanel::Background},
        {QStringLiteral("progressbar"), FrontPanel::ProgressBar},
        {QStringLiteral("tooltip"), FrontPanel::ToolTip},
    };
    return table;
}

// A strip wider than this is far outside any scene; the cap keeps a hostile
// count from stalling every repaint.
constexpr int maxBackgroundCells = 4096;
// Keeps pixel arithmetic on host-supplied numbers inside int range.
constexpr int maxPixels = 1 << 20;

constexpr int s = FrontPanel::scale;

int intParam(const QStringList &params, int index, bool *ok = nullptr)
{
    return params.at(index).toInt(ok, 10);
}

int pixel(qreal value)
{
    // Truncates towards zero, as the integer rectangles of the panel expect.
    return static_cast<int>(qBound<qreal>(-maxPixels, value, maxPixels));
}

QColor rgbParams(const QStringList &params)
{
    auto channel = [&](int i) { return qBound(0, intParam(params, i), 255); };
    return QColor(channel(0), channel(1), channel(2));
}

QPen blackPen()
{
    return QPen(QBrush(Qt::black), 1, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

// The picture of an interface type, or a null image. The large variant
// serves targets wider than the picture on the device, where blowing up the
// small one would blur it (high-density screens, zoomed views, printers).
const QImage &interfaceImage(int type, bool large)
{
    static const QImage serial(QStringLiteral(":/images/serial-port.png"));
    static const QImage ethernet(QStringLiteral(":/images/ethernet.png"));
    static const QImage serialLarge(QStringLiteral(":/images/serial-port@2x.png"));
    static const QImage ethernetLarge(QStringLiteral(":/images/ethernet@2x.png"));
    static const QImage none;
    if (type == 0)
        return large ? serialLarge : serial;
    return type == 1 ? (large ? ethernetLarge : ethernet) : none;
}

// The label as shown: cut to the length given as second parameter.
QString shownText(const FrontPanelElement &e)
{
    QString text = e.parameters.value(0);
    if (e.parameters.size() > 1) {
        bool ok = false;
        const int n = intParam(e.parameters, 1, &ok);
        if (ok)
            text = text.left(n);
    }
    return text;
}

QFont labelFont(QFont font)
{
    font.setPixelSize(16);
    // Glyphs on the pixel grid: Qt 6 otherwise places them at fractional
    // positions where Qt 5 does not, and a panel would look different.
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

QPointF textOrigin(const FrontPanelElement &e)
{
    return QPointF(e.x + 5, e.y + s - 3);
}

void paintText(QPainter *p, const FrontPanelElement &e)
{
    if (e.parameters.isEmpty())
        return;
    p->setPen(blackPen());
    p->setFont(labelFont(p->font()));
    p->drawText(textOrigin(e), shownText(e));
}

void paintLamp(QPainter *p, const FrontPanelElement &e, qreal inset)
{
    if (e.parameters.size() < 3)
        return;
    p->setPen(blackPen());
    p->setBrush(rgbParams(e.parameters));
    p->drawEllipse(QRectF(e.x + inset, e.y + inset, s - 2 * inset, s - 2 * inset));
}

void paintBackground(QPainter *p, const FrontPanelElement &e)
{
    if (e.parameters.size() < 4)
        return;
    const QColor colour = rgbParams(e.parameters);
    const int count = std::min(intParam(e.parameters, 3), maxBackgroundCells);
    p->setPen(colour);
    p->setBrush(colour);
    for (int i = 0; i < count; ++i)
        p->drawRect(QRect(pixel(e.x + i * s), pixel(e.y), s, s));
}

// The frame and the bar of a level bar; false when its numbers do not read.
bool progressBarRects(const FrontPanelElement &e, QRect *frame, QRect *bar)
{
    if (e.parameters.size() < 2)
        return false;
    bool valueOk = false;
    bool lengthOk = false;
    const int value = intParam(e.parameters, 0, &valueOk);
    const int length = intParam(e.parameters, 1, &lengthOk);
    if (!valueOk || !lengthOk)
        return false;
    *frame = QRect(pixel(e.x), pixel(e.y), pixel(qreal(length) * s), s);
    // The fill is computed in real numbers: integer division would leave
    // bars shorter than five units empty.
    const qreal fill = qreal(length) * s / 100 * std::min(value, 100) - 4;
    *bar = QRect(pixel(e.x + 2), pixel(e.y + 2), pixel(fill), s - 4);
    return true;
}

QRectF progressBarArea(const FrontPanelElement &e)
{
    QRect frame;
    QRect bar;
    if (!progressBarRects(e, &frame, &bar))
        return QRectF(e.x, e.y, s, s);
    // Rectangles of negative size are drawn reaching left or up.
    return QRectF(frame.normalized().adjusted(-1, -1, 1, 1))
        .united(QRectF(bar.normalized().adjusted(-1, -1, 1, 1)));
}

void paintProgressBar(QPainter *p, const FrontPanelElement &e)
{
    QRect frame;
    QRect bar;
    if (!progressBarRects(e, &frame, &bar))
        return;
    p->setPen(Qt::darkGray);
    p->setBrush(Qt::darkGray);
    p->drawRect(frame);
    p->setPen(Qt::NoPen);
    p->setBrush(QColor(0, 230, 117));
    p->drawRect(bar);
}

void paintInterface(QPainter *p, const FrontPanelElement &e)
{
    bool ok = false;
    const int type = e.parameters.isEmpty() ? -1 : intParam(e.parameters, 0, &ok);
    const QRectF target(e.x, e.y, 1.5 * s, 1.5 * s);
    const qreal deviceWidth = p->deviceTransform().mapRect(target).width();
    const QImage &image = interfaceImage(type, deviceWidth > interfaceImage(type, false).width());
    if (!ok || image.isNull())
        return;
    p->drawImage(target, image);
}

// A jack body with two LED windows along its top edge.
void paintJack(QPainter *p, const FrontPanelElement &e, qreal inset, const QColor &left, const QColor &right)
{
    const QRectF body(e.x + inset, e.y + inset, s - 2 * inset, s - 2 * inset);
    p->setPen(blackPen());
    p->setBrush(Qt::black);
    p->drawRect(body);
    const QSizeF led(body.width() / 3, body.height() / 6);
    p->fillRect(QRectF(body.topLeft(), led), left);
    p->fillRect(QRectF(QPointF(body.left() + body.width() * 2 / 3, body.top()), led), right);
}

void paintRj45(QPainter *p, const FrontPanelElement &e)
{
    QColor left = Qt::gray;
    QColor right = Qt::gray;
    if (e.parameters.size() == 2) {
        if (intParam(e.parameters, 1) != 0)
            left = Qt::green;
        if (intParam(e.parameters, 0) != 0)
            right = Qt::red;
    }
    paintJack(p, e, 2, left, right);
}

void paintOfm(QPainter *p, const FrontPanelElement &e)
{
    p->setPen(QPen(QBrush(Qt::black), 2.5));
    p->setBrush(Qt::darkGray);
    p->drawEllipse(QRectF(e.x + 4, e.y + 4, s - 8, s - 8));
}

void paintSfp(QPainter *p, const FrontPanelElement &e)
{
    const QRectF cage(e.x + 2, e.y + 8, s - 4, s - 10);
    p->setPen(blackPen());
    p->setBrush(Qt::darkGray);
    p->drawRect(cage);
    p->setPen(QPen(QBrush(Qt::blue), 2));
    p->drawLine(QLine(pixel(cage.left() + 3), pixel(cage.top()), pixel(cage.right() - 3), pixel(cage.top())));
    p->setPen(QPen(QBrush(Qt::lightGray), 2));
    p->setBrush(Qt::gray);
    const qreal cy = cage.top() + cage.height() / 2;
    const qreal r = 2.2;
    p->drawEllipse(QPointF(cage.left() + cage.width() / 4, cy), r, r);
    p->drawEllipse(QPointF(cage.left() + cage.width() * 3 / 4, cy), r, r);
}

void paintDsub(QPainter *p, const FrontPanelElement &e, int shellWidth)
{
    const QRectF shell(e.x + 8, e.y + 5, shellWidth, s - 10);
    p->setPen(blackPen());
    p->setBrush(Qt::lightGray);
    p->drawRect(shell);
    const qreal cy = shell.top() + shell.height() / 2;
    p->drawEllipse(QPointF(shell.left() + 2.5, cy), 1.5, 1.5);
    p->drawEllipse(QPointF(shell.right() - 2.5, cy), 1.5, 1.5);
    const qreal top = shell.top() + shell.height() / 4;
    const QPolygonF outline({QPointF(shell.left() + 5, top), QPointF(shell.right() - 5, top),
        QPointF(shell.right() - 8, top + 5), QPointF(shell.left() + 8, top + 5)});
    p->drawPolygon(outline);
}

void paintLedMatrix(QPainter *p, const FrontPanelElement &e)
{
    const int count = e.parameters.size();
    if (count < 3)
        return;
    const int g = s / 4;
    const int d = g - 2;
    for (int k = 0; k < 4; ++k) {
        // Without a fourth state the last LED repeats the third.
        const int source = k < 3 ? k : (count >= 4 ? 3 : 2);
        const bool on = intParam(e.parameters, source) != 0;
        p->setPen(QPen(QBrush(on ? Qt::green : Qt::black), 1, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
        p->setBrush(on ? Qt::green : Qt::gray);
        p->drawEllipse(QRect(pixel(e.x + 3 * g + 1), pixel(e.y + k * g + 1), d, d));
    }
}

} // namespace

FrontPanel::FrontPanel()
    : dimensionRect(0, 0, 200, 80)
{
}

int FrontPanel::kindOf(const QString &keyword)
{
    return keywordTable().value(keyword, -1);
}

bool FrontPanel::parse(const QString &description)
{
    elements.clear();
    toolTip.clear();
    layer = QImage();
    layerHints = -1;

    const QStringList entries = description.split(QLatin1Char(';'));
    if (entries.isEmpty())
        return false;

    const QString &size = entries.first();
    if (!size.contains(QLatin1String("dimension:")))
        return false;
    const QStringList pieces = size.section(QLatin1Char(':'), 1).trimmed().split(QLatin1Char('x'));
    if (pieces.size() < 2)
        return false;
    bool widthOk = false;
    bool heightOk = false;
    const int w = pieces.at(0).toInt(&widthOk, 10);
    const int h = pieces.at(1).toInt(&heightOk, 10);
    // A negative size has no picture; refusing it keeps the item's
    // bounding rectangle sane.
    if (!widthOk || !heightOk || w < 0 || h < 0)
        return false;
    width = w;
    height = h;
    dimensionRect = QRectF(0, 0, qreal(width) * scale, qreal(height) * scale);

    for (int i = 1; i < entries.size(); ++i) {
        const QString &entry = entries.at(i);
        if (entry.contains(QLatin1String("tooltip:"))) {
            const int colon = entry.indexOf(QLatin1Char(':'));
            if (kindOf(entry.left(colon).trimmed()) == ToolTip)
                toolTip = entry.mid(colon + 1);
            continue;
        }
        FrontPanelElement element;
        if (parseElement(entry, &element))
            elements.append(element);
    }
    return true;
}

bool FrontPanel::parseElement(const QString &entry, FrontPanelElement *element) const
{
    const int open = entry.indexOf(QLatin1Char('('));
    const int close = entry.indexOf(QLatin1Char(')'));
    if (open < 0 || close <= open)
        return false;

    const QStringList position = entry.left(open).trimmed().split(QLatin1Char('x'));
    if (position.size() < 2)
        return false;
    bool xOk = false;
    bool yOk = false;
    const double x = position.at(0).toDouble(&xOk);
    const double y = position.at(1).toDouble(&yOk);
    // Infinities and NaN parse as numbers but cannot be painted.
    if (!xOk || !yOk || !std::isfinite(x) || !std::isfinite(y))
        return false;

    const int kind = kindOf(entry.mid(open + 1, close - open - 1).trimmed());
    if (kind < 0)
        return false;

    element->kind = kind;
    element->x = x * scale;
    element->y = y * scale;
    const int colon = entry.indexOf(QLatin1Char(':'));
    const QString parameters = colon < 0 ? QString() : entry.mid(colon + 1);
    element->parameters = parameters.trimmed().split(QLatin1Char(','));
    return true;
}

// Layers larger than this are not kept: such a panel is painted directly.
constexpr qint64 maxLayerPixels = 1 << 18;

bool FrontPanel::canUseLayer(const QPainter *painter)
{
    const QTransform t = painter->deviceTransform();
    const QPaintEngine *engine = painter->paintEngine();
    // Elements overlapping each other blend differently from one layer under
    // opacity or another composition mode.
    return engine && engine->type() == QPaintEngine::Raster && t.type() <= QTransform::TxTranslate
        && t.dx() == std::floor(t.dx()) && t.dy() == std::floor(t.dy()) && painter->opacity() == 1.0
        && painter->compositionMode() == QPainter::CompositionMode_SourceOver;
}

// Where the elements may put ink, in item pixels: each element's own area
// with room for the widest pen, a label by its font. Kept in real numbers:
// hostile positions reach beyond what an integer rectangle can measure.
QRectF FrontPanel::elementExtent(const QFont &font) const
{
    QRectF extent;
    const QFontMetricsF metrics(labelFont(font));
    for (const FrontPanelElement &e : elements) {
        QRectF area(e.x, e.y, s, s);
        switch (e.kind) {
        case Text:
            area = metrics.boundingRect(shownText(e)).translated(textOrigin(e));
            break;
        case Interface:
            area.setSize(QSizeF(1.5 * s, 1.5 * s));
            break;
        case Db9:
        case Db25:
            area.setWidth(3 * s);
            break;
        case Background:
            if (e.parameters.size() >= 4)
                area.setWidth(qreal(qBound(0, intParam(e.parameters, 3), maxBackgroundCells)) * s);
            break;
        case ProgressBar:
            area = progressBarArea(e);
            break;
        default:
            break;
        }
        extent = extent.united(area.adjusted(-3, -3, 3, 3));
    }
    return extent;
}

bool FrontPanel::ensureLayer(const QFont &font, int hints) const
{
    if (hints == layerHints && font == layerFont)
        return !layer.isNull();
    layer = QImage();
    layerFont = font;
    layerHints = hints;
    // A refusal is kept too, so that huge panels are not measured on every repaint.
    const QRectF reach = elementExtent(font);
    if (reach.isEmpty() || reach.width() * reach.height() > qreal(maxLayerPixels)
        || qMax(qAbs(reach.left()), qAbs(reach.top())) > maxPixels)
        return false;
    const QRect extent = reach.toAlignedRect();

    QImage image(extent.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::RenderHints(hints));
    painter.setFont(font);
    painter.translate(-extent.topLeft());
    paintElements(&painter);
    painter.end();

    layer = image;
    layerOrigin = extent.topLeft();
    return true;
}

void FrontPanel::paint(QPainter *painter) const
{
    if (elements.isEmpty())
        return;
    if (canUseLayer(painter) && ensureLayer(painter->font(), int(painter->renderHints()))) {
        painter->drawImage(layerOrigin, layer);
        return;
    }
    paintElements(painter);
}

void FrontPanel::paintElements(QPainter *painter) const
{
    painter->save();
    for (const FrontPanelElement &e : elements) {
        switch (e.kind) {
        case Text:
            paintText(painter, e);
            break;
        case Interface:
            paintInterface(painter, e);
            break;
        case Alarm:
            paintLamp(painter, e, 4);
            break;
        case Led:
            paintLamp(painter, e, 7);
            break;
        case Db9:
            paintDsub(painter, e, 2 * s - 16);
            break;
        case Db25:
            paintDsub(painter, e, 3 * s - 24);
            break;
        case Rj45:
            paintRj45(painter, e);
            break;
        case Rj11:
            paintJack(painter, e, 3, Qt::gray, Qt::gray);
            break;
        case Sfp:
            paintSfp(painter, e);
            break;
        case Ofm:
            paintOfm(painter, e);
            break;
        case LedMatrix:
            paintLedMatrix(painter, e);
            break;
        case Background:
            paintBackground(painter, e);
            break;
        case ProgressBar:
            paintProgressBar(painter, e);
            break;
        default: // the tooltip is never painted
            break;
        }
    }
    painter->restore();
}
