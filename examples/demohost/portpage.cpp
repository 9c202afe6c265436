#include "portpage.h"

#include "demounit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QSignalBlocker>

PortPage::PortPage(DemoUnit *unit, int port, QWidget *parent)
    : QWidget(parent)
    , unit(unit)
    , port(port)
    , chbEnabled(new QCheckBox(tr("In service"), this))
    , chbCrc4(new QCheckBox(tr("CRC-4 multiframe"), this))
    , cbxLineCode(new QComboBox(this))
    , lblState(new QLabel(this))
{
    chbEnabled->setObjectName(QStringLiteral("chbEnabled"));
    chbCrc4->setObjectName(QStringLiteral("chbCrc4"));
    cbxLineCode->setObjectName(QStringLiteral("cbxLineCode"));
    cbxLineCode->addItems({tr("HDB3"), tr("AMI")});
    auto *form = new QFormLayout(this);
    form->addRow(QString(), chbEnabled);
    form->addRow(QString(), chbCrc4);
    form->addRow(tr("Line code"), cbxLineCode);
    form->addRow(tr("State"), lblState);

    connect(chbEnabled, &QCheckBox::toggled, this,
        [this](bool on) { this->unit->setPortEnabled(this->port, on); });
    connect(chbCrc4, &QCheckBox::toggled, this, [this](bool on) { this->unit->setPortCrc4(this->port, on); });
    connect(cbxLineCode, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        [this](int index) { this->unit->setPortAmi(this->port, index == 1); });
    updateData();
}

void PortPage::updateData()
{
    // Refreshing must not read back as an edit.
    const QSignalBlocker b1(chbEnabled);
    const QSignalBlocker b2(chbCrc4);
    const QSignalBlocker b3(cbxLineCode);
    chbEnabled->setChecked(unit->portEnabled(port));
    chbCrc4->setChecked(unit->portCrc4(port));
    cbxLineCode->setCurrentIndex(unit->portAmi(port) ? 1 : 0);
    QString state;
    switch (unit->portState(port)) {
    case UnitLayout::PortDisabled:
        state = tr("Out of service");
        break;
    case UnitLayout::PortUp:
        state = unit->portActivity(port) ? tr("Up, traffic") : tr("Up");
        break;
    case UnitLayout::PortLos:
        state = tr("Loss of signal");
        break;
    case UnitLayout::PortAis:
        state = tr("Alarm indication signal");
        break;
    }
    lblState->setText(unit->hasAnswered() ? state : tr("unknown"));
}
