#ifndef LOGGING_P_H
#define LOGGING_P_H

#include <QLoggingCategory>

// One category a subsystem, so that a host can turn each on or off with its
// logging rules, e.g. QT_LOGGING_RULES="muxcore.*.debug=true". Warnings are
// shown by default, debug and info output only when enabled.
Q_DECLARE_LOGGING_CATEGORY(lcCore)
Q_DECLARE_LOGGING_CATEGORY(lcMemory)
Q_DECLARE_LOGGING_CATEGORY(lcDevice)
Q_DECLARE_LOGGING_CATEGORY(lcTopology)
Q_DECLARE_LOGGING_CATEGORY(lcStorage)
Q_DECLARE_LOGGING_CATEGORY(lcUi)

#endif // LOGGING_P_H
