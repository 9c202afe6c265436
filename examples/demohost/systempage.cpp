#include "systempage.h"

#include "demounit.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

SystemPage::SystemPage(DemoUnit *unit, QWidget *parent)
    : QWidget(parent)
    , unit(unit)
    , leLabel(new QLineEdit(this))
    , leIp(new QLineEdit(this))
    , leMask(new QLineEdit(this))
    , lblFirmware(new QLabel(this))
    , lblClock(new QLabel(this))
    , lblTemperature(new QLabel(this))
    , lblLoad(new QLabel(this))
    , lblAlarm(new QLabel(this))
{
    leLabel->setObjectName(QStringLiteral("leLabel"));
    leIp->setObjectName(QStringLiteral("leIp"));
    leMask->setObjectName(QStringLiteral("leMask"));
    leLabel->setMaxLength(UnitLayout::cfgLabelSize);
    auto *form = new QFormLayout(this);
    form->addRow(tr("Label"), leLabel);
    form->addRow(tr("IP address"), leIp);
    form->addRow(tr("Subnet mask"), leMask);
    form->addRow(tr("Firmware"), lblFirmware);
    form->addRow(tr("Unit clock"), lblClock);
    form->addRow(tr("Temperature"), lblTemperature);
    form->addRow(tr("Processor load"), lblLoad);
    form->addRow(tr("Alarm"), lblAlarm);

    connect(leLabel, &QLineEdit::editingFinished, this, [this] { this->unit->setLabel(leLabel->text()); });
    connect(leIp, &QLineEdit::editingFinished, this, [this] { commitAddress(leIp, false); });
    connect(leMask, &QLineEdit::editingFinished, this, [this] { commitAddress(leMask, true); });
    updateData();
}

void SystemPage::commitAddress(QLineEdit *edit, bool mask)
{
    const bool ok = mask ? unit->setSubnetMask(edit->text()) : unit->setIpAddress(edit->text());
    // A value the unit would refuse stays visible in red until it is corrected.
    edit->setStyleSheet(ok ? QString() : QStringLiteral("color: red"));
    edit->setToolTip(ok ? QString() : tr("Not a valid %1").arg(mask ? tr("subnet mask") : tr("IP address")));
}

void SystemPage::updateData()
{
    // Fields being edited keep the user's text.
    if (!leLabel->hasFocus())
        leLabel->setText(unit->label());
    if (!leIp->hasFocus())
        leIp->setText(unit->ipAddress());
    if (!leMask->hasFocus())
        leMask->setText(unit->subnetMask());
    const unsigned short firmware = unit->unitFirmware();
    unsigned char major = 0;
    unsigned char minor = 0;
    DeviceDescriptor::splitVersion(firmware, major, minor);
    lblFirmware->setText(unit->hasAnswered() ? QStringLiteral("%1.%2").arg(major).arg(minor) : tr("unknown"));
    const QDateTime clock = unit->unitClock();
    lblClock->setText(clock.isValid() ? clock.toString(Qt::ISODate) : tr("unknown"));
    lblTemperature->setText(tr("%1 °C").arg(unit->temperature()));
    lblLoad->setText(tr("%1 %").arg(unit->load()));
    const QString alarm = Core::alarmStr(unit->getAlarmState());
    lblAlarm->setText(alarm.isEmpty() ? tr("Not responding") : alarm);
}
