#ifndef UNITWINDOW_H
#define UNITWINDOW_H

#include <ui/devicemainwindow.h>

#include <QList>
#include <QPointer>

class DemoUnit;

// The configuration window of one DemoMux-4E1: the library's frame with
// this model's pages in its tree. Pages read the model's memory maps and
// put edits back into them; the window's actions reach the model through
// the signals that DemoUnit::showUi() connects.
class UnitWindow : public DeviceMainWindow
{
    Q_OBJECT
public:
    explicit UnitWindow(DemoUnit *unit);
    ~UnitWindow() override;

    // Brings the page with this dotted path into view, as a click in the tree would.
    bool showPage(const QString &path);

private:
    QList<QPointer<QWidget>> pages;
};

#endif // UNITWINDOW_H
