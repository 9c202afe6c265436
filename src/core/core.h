#ifndef CORE_H
#define CORE_H

#include "muxcore_export.h"

#include <QHash>
#include <QObject>
#include <QString>

// The vocabulary every part of the suite speaks: alarm levels, access rights,
// journal events, rights areas and interface kinds, with their dictionaries.
// The numeric values cross the library's interface and never change.
class MUXCORE_EXPORT Core : public QObject
{
    Q_OBJECT
public:
    // A fixed underlying type: values outside the table are answered, not undefined.
    enum AlarmType : int {
        ALARM_OK = 0,
        ALARM_MAJOR = 1,
        ALARM_MINOR = 2,
        ALARM_MAJOR_MINOR = 3
    };

    enum AccessMode {
        ACM_DENY = 1,
        ACM_READ = 2,
        ACM_READ_AND_WRITE = 3
    };

    enum ActionType {
        ACT_USER_AND_GROUP = 1,
        ACT_DATABASE = 2,
        ACT_MAP = 3,
        ACT_DEVICE = 4,
        ACT_SYSTEM = 5
    };

    // High nibble: category; low nibble: event within it.
    enum SystemEvens {
        SE_APP_START = 0x01,
        SE_APP_CLOSE = 0x02,
        SE_APP_CRASH = 0x03,
        SE_LOGIN_SUCCESS = 0x10,
        SE_LOGIN_FAIL = 0x11,
        SE_LOGOUT = 0x12,
        SE_DATABASE_ERROR = 0x20,
        SE_DATABASE_SETTINGS = 0x21,
        SE_DATABASE_BACKUP = 0x22,
        SE_USERS_NEW = 0x30,
        SE_USERS_EDIT = 0x31,
        SE_USERS_REMOVE = 0x32,
        SE_GROUPS_NEW = 0x40,
        SE_GROUPS_EDIT = 0x41,
        SE_GROUPS_REMOVE = 0x42,
        SE_DEVICE = 0x50,
        // Device operations: display texts only, no constant names.
        SE_DEVICE_WRITE_ALL = 0x51,
        SE_DEVICE_READ_ALL = 0x52,
        SE_DEVICE_SAVE = 0x53,
        SE_DEVICE_APPLY = 0x54,
        SE_DEVICE_RESTORE_SAVED = 0x55,
        SE_DEVICE_FACTORY = 0x56,
        SE_DEVICE_CLEAR_JOURNAL = 0x57,
        SE_DEVICE_RESTART = 0x58,
        SE_FILE_SYSTEM = 0x60,
        SE_EXPORT_TO_FILE = 0x70,
        SE_EXPORT_PRINT = 0x71
    };

    enum InterfaceProtocolType : int {
        IPT_SERIAL = 0,
        IPT_SNMP_V1 = 1,
        IPT_SNMP_V3 = 2,
        IPT_WEB = 3
    };

    explicit Core(QObject *parent);

    static QHash<int, QString> getActionConstDictionary();
    static QHash<int, QString> getActionDisplayDictionary();
    static QHash<int, QString> getAccessConstDictionary();
    static QHash<int, QString> getAccessDisplayDictionary();
    static QHash<int, QString> getEventConstDictionary();
    static QHash<int, QString> getEventDisplayDictionary();

    // Fixed, untranslated text; empty for an unknown level.
    static QString alarmStr(Core::AlarmType type);
    // Unknown kinds are added to the table as empty texts (insert-on-miss).
    static QString &iptString(const Core::InterfaceProtocolType &type);
};

#endif // CORE_H
