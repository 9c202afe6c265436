#ifndef SYSTEMPAGE_H
#define SYSTEMPAGE_H

#include <QWidget>

class DemoUnit;
class QLabel;
class QLineEdit;

// The unit's name, addresses, clock and health.
class SystemPage : public QWidget
{
    Q_OBJECT
public:
    explicit SystemPage(DemoUnit *unit, QWidget *parent = nullptr);

public slots:
    // Called by the window when the page comes into view, and by the model after a read.
    void updateData();

private:
    void commitAddress(QLineEdit *edit, bool mask);

    DemoUnit *unit;
    QLineEdit *leLabel;
    QLineEdit *leIp;
    QLineEdit *leMask;
    QLabel *lblFirmware;
    QLabel *lblClock;
    QLabel *lblTemperature;
    QLabel *lblLoad;
    QLabel *lblAlarm;
};

#endif // SYSTEMPAGE_H
