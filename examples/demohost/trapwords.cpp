#include "trapwords.h"

#include <unitlayout.h>

using namespace UnitLayout;

namespace {

const QString trapOidName = QStringLiteral("1.3.6.1.6.3.1.1.4.1.0");
const QString upTimeName = QStringLiteral("1.3.6.1.2.1.1.3.0");

// The notifications of a demo unit, under productArc().0.
enum Notification {
    NotifyColdStart = 1,
    NotifyPortDown = 2,
    NotifyPortUp = 3,
    NotifyPowerFail = 4,
    NotifyPowerBack = 5,
    NotifyTemperature = 6 // crossed the threshold, either way
};

} // namespace

QHash<QString, QVariant> TrapWords::describe(const QHash<QString, QVariant> &variables, int alarm)
{
    QHash<QString, QVariant> words;
    const QString portPrefix
        = oidPortStatus() + QLatin1Char('.') + QLatin1String(colPortState) + QLatin1Char('.');
    const QString notificationPrefix = productArc() + QStringLiteral(".0.");
    int notification = 0;
    int state = -1;
    QString event;
    for (auto it = variables.cbegin(); it != variables.cend(); ++it) {
        const QString &name = it.key();
        bool ok = false;
        if (name == trapOidName) {
            const QString value = it.value().toString();
            if (value.startsWith(notificationPrefix))
                notification = value.mid(notificationPrefix.size()).toInt(&ok);
            if (!ok || notification < NotifyColdStart || notification > NotifyTemperature) {
                notification = 0;
                event = value; // a notification this host does not know, by its OID
            }
        } else if (name == oidAlarmLevel()) {
            alarm = it.value().toInt();
        } else if (name.startsWith(portPrefix) && name.mid(portPrefix.size()).toInt(&ok) > 0 && ok) {
            words.insert(tr("Port"), tr("E1 %1").arg(name.mid(portPrefix.size())));
            state = it.value().toInt() - 1; // sent as PortState + 1
        } else if (name == upTimeName) {
            words.insert(tr("Up time"), upTime(it.value().toULongLong()));
        } else if (name == oidEndpointPort()) {
            words.insert(tr("SNMP port"), it.value());
        } else {
            words.insert(name, it.value());
        }
    }
    switch (notification) {
    case NotifyColdStart:
        event = tr("restarted");
        break;
    case NotifyPortDown:
        event = state >= 0 ? portState(state) : tr("port down");
        break;
    case NotifyPortUp:
        event = tr("back in service");
        break;
    case NotifyPowerFail:
        event = tr("power supply failed");
        break;
    case NotifyPowerBack:
        event = tr("power supply restored");
        break;
    case NotifyTemperature:
        event = tr("temperature crossed its threshold");
        break;
    default:
        // The port's state is the only word on what happened.
        if (state >= 0)
            words.insert(tr("State"), portState(state));
    }
    if (!event.isEmpty())
        words.insert(tr("Event"), event);
    words.insert(tr("Severity"), severity(alarm));
    return words;
}

QString TrapWords::severity(int alarm)
{
    switch (alarm) {
    case 0:
        return tr("Ok");
    case 1:
        return tr("Major");
    case 2:
        return tr("Minor");
    case 3:
        return tr("Major+Minor");
    case 4:
        return tr("not responding");
    default:
        return tr("level %1").arg(alarm);
    }
}

QString TrapWords::portState(int state)
{
    switch (state) {
    case PortDisabled:
        return tr("port disabled");
    case PortUp:
        return tr("port up");
    case PortLos:
        return tr("loss of signal");
    case PortAis:
        return tr("alarm indication signal");
    default:
        return tr("port state %1").arg(state + 1);
    }
}

QString TrapWords::upTime(qulonglong ticks)
{
    // Hundredths of a second since the unit started.
    const qulonglong seconds = ticks / 100;
    const QString clock = QStringLiteral("%1:%2:%3")
                              .arg((seconds / 3600) % 24, 2, 10, QLatin1Char('0'))
                              .arg((seconds / 60) % 60, 2, 10, QLatin1Char('0'))
                              .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    const qulonglong days = seconds / 86400;
    return days > 0 ? tr("%1 d %2").arg(days).arg(clock) : clock;
}
