#include "core/logging_p.h"

Q_LOGGING_CATEGORY(lcCore, "muxcore.core", QtWarningMsg)
Q_LOGGING_CATEGORY(lcMemory, "muxcore.memory", QtWarningMsg)
Q_LOGGING_CATEGORY(lcDevice, "muxcore.device", QtWarningMsg)
Q_LOGGING_CATEGORY(lcTopology, "muxcore.topology", QtWarningMsg)
Q_LOGGING_CATEGORY(lcStorage, "muxcore.storage", QtWarningMsg)
Q_LOGGING_CATEGORY(lcUi, "muxcore.ui", QtWarningMsg)
