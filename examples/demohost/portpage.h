#ifndef PORTPAGE_H
#define PORTPAGE_H

#include <QWidget>

class DemoUnit;
class QCheckBox;
class QComboBox;
class QLabel;

// One E1 port: whether it carries traffic, its framing and line code, and its state.
class PortPage : public QWidget
{
    Q_OBJECT
public:
    PortPage(DemoUnit *unit, int port, QWidget *parent = nullptr);

public slots:
    void updateData();

private:
    DemoUnit *unit;
    int port;
    QCheckBox *chbEnabled;
    QCheckBox *chbCrc4;
    QComboBox *cbxLineCode;
    QLabel *lblState;
};

#endif // PORTPAGE_H
