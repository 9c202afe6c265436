// Front-panel descriptions as a host might send them, parsed by the panel
// and by a device item, then painted.

#include "fuzzinput.h"

#include <topology/deviceitem.h>
#include <topology/frontpanel.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <cmath>
#include <cstdlib>

namespace {

// Paints as the scene would.
class PaintedItem : public DeviceItem
{
public:
    using DeviceItem::paint;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // Painting text needs fonts, and fonts a GUI application.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: tearing Qt down at exit only makes leak noise.
    static QApplication *app = new QApplication(*argc, *argv);
    Q_UNUSED(app)
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray raw(reinterpret_cast<const char *>(data), int(size));
    QString description = QString::fromUtf8(raw);

    FrontPanel panel;
    const QRectF before = panel.getDimensionRect();
    const bool parsed = panel.parse(description);
    const QRectF rect = panel.getDimensionRect();
    if (!parsed) {
        FUZZ_CHECK(panel.getElements().isEmpty());
        FUZZ_CHECK(rect == before);
    }
    FUZZ_CHECK(std::isfinite(rect.width()) && std::isfinite(rect.height()));
    FUZZ_CHECK(rect.width() >= 0 && rect.height() >= 0);
    for (const FrontPanelElement &element : panel.getElements()) {
        FUZZ_CHECK(element.kind >= FrontPanel::Text && element.kind < FrontPanel::ToolTip);
        FUZZ_CHECK(std::isfinite(element.x) && std::isfinite(element.y));
    }

    QImage image(64, 48, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        panel.paint(&painter);
    }

    // The same text through the item a scene shows.
    PaintedItem item;
    item.setParameters(description);
    FUZZ_CHECK(item.getFrontPanel().getElements().size() == panel.getElements().size());
    QStyleOptionGraphicsItem option;
    QPainter painter(&image);
    item.paint(&painter, &option, nullptr);
    return 0;
}
