#ifndef CORE_H
#define CORE_H

#include "muxcore_export.h"

#include <QHash>
#include <QObject>
#include <QString>

/**
 * The vocabulary every part of the suite speaks: alarm levels, access rights,
 * journal events, rights areas and interface kinds, with their dictionaries.
 *
 * The numeric values cross the library's interface and never change. The
 * enumerations are registered with the meta-object system when the library
 * loads, so they travel through queued connections and show by name in logs.
 *
 * Every dictionary maps a value to its constant name (for storage and logs) or
 * to its display text (for the user). Each is filled once per process, on
 * first use, through tr(): install the translator before the first call, a
 * later language change does not refill it. The constant names go through
 * tr() as well; translations keep them unchanged.
 */
class MUXCORE_EXPORT Core : public QObject
{
    Q_OBJECT
public:
    /**
     * Alarm level of a unit. Major and minor are independent bits.
     *
     * A fixed underlying type: values outside the table are answered, not undefined.
     */
    enum AlarmType : int {
        ALARM_OK = 0, ///< No alarm ("Ok").
        ALARM_MAJOR = 1, ///< A major alarm ("Major").
        ALARM_MINOR = 2, ///< A minor alarm ("Minor").
        ALARM_MAJOR_MINOR = 3 ///< Both at once ("Major+Minor").
    };
    Q_ENUM(AlarmType)

    /// A user's right on an action area or a unit; there is no value 0.
    enum AccessMode {
        ACM_DENY = 1, ///< No access ("Deny").
        ACM_READ = 2, ///< May look, not change ("Read only").
        ACM_READ_AND_WRITE = 3 ///< Full access ("Read and write").
    };
    Q_ENUM(AccessMode)

    /// The administrative areas rights are granted on; there is no value 0.
    enum ActionType {
        ACT_USER_AND_GROUP = 1, ///< "Manage users and groups".
        ACT_DATABASE = 2, ///< "Manage database".
        ACT_MAP = 3, ///< "Manage device map".
        ACT_DEVICE = 4, ///< "Manage device settings".
        ACT_SYSTEM = 5 ///< "System data".
    };
    Q_ENUM(ActionType)

    /**
     * Kinds of entry in the system event journal.
     *
     * High nibble: category; low nibble: event within it. The device
     * operations 0x51 to 0x58 have display texts but no constant names.
     */
    enum SystemEvens {
        SE_APP_START = 0x01, ///< "Application start".
        SE_APP_CLOSE = 0x02, ///< "Application close".
        SE_APP_CRASH = 0x03, ///< "Application crash".
        SE_LOGIN_SUCCESS = 0x10, ///< "Login success".
        SE_LOGIN_FAIL = 0x11, ///< "Login fail".
        SE_LOGOUT = 0x12, ///< "Logout".
        SE_DATABASE_ERROR = 0x20, ///< "Database error".
        SE_DATABASE_SETTINGS = 0x21, ///< "Database settings".
        SE_DATABASE_BACKUP = 0x22, ///< "Database backup".
        SE_USERS_NEW = 0x30, ///< "User new".
        SE_USERS_EDIT = 0x31, ///< "User edit".
        SE_USERS_REMOVE = 0x32, ///< "User remove".
        SE_GROUPS_NEW = 0x40, ///< "Group new".
        SE_GROUPS_EDIT = 0x41, ///< "Group edit".
        SE_GROUPS_REMOVE = 0x42, ///< "Group remove".
        SE_DEVICE = 0x50, ///< "Device": the category of the device operations below.
        SE_DEVICE_WRITE_ALL = 0x51, ///< "Write all".
        SE_DEVICE_READ_ALL = 0x52, ///< "Read all".
        SE_DEVICE_SAVE = 0x53, ///< "Save changes".
        SE_DEVICE_APPLY = 0x54, ///< "Apply changes".
        SE_DEVICE_RESTORE_SAVED = 0x55, ///< "Restore last saved".
        SE_DEVICE_FACTORY = 0x56, ///< "Restore factory settings".
        SE_DEVICE_CLEAR_JOURNAL = 0x57, ///< "Clear event journal".
        SE_DEVICE_RESTART = 0x58, ///< "Restart".
        SE_FILE_SYSTEM = 0x60, ///< "File system".
        SE_EXPORT_TO_FILE = 0x70, ///< "Export to file".
        SE_EXPORT_PRINT = 0x71 ///< "Print".
    };
    Q_ENUM(SystemEvens)

    /// How a unit is reached.
    enum InterfaceProtocolType : int {
        IPT_SERIAL = 0, ///< Serial line ("Serial").
        IPT_SNMP_V1 = 1, ///< SNMP version 1 ("SnmpV1").
        IPT_SNMP_V3 = 2, ///< SNMP version 3 ("SnmpV3").
        IPT_WEB = 3 ///< Web interface ("Web").
    };
    Q_ENUM(InterfaceProtocolType)

    /// Only passes @p parent on: every lookup is static, an instance is never needed.
    explicit Core(QObject *parent);

    /// ActionType value to constant name ("ACT_MAP"); a copy of one shared table.
    static QHash<int, QString> getActionConstDictionary();
    /// ActionType value to display text ("Manage device map").
    static QHash<int, QString> getActionDisplayDictionary();
    /// AccessMode value to constant name.
    static QHash<int, QString> getAccessConstDictionary();
    /// AccessMode value to display text.
    static QHash<int, QString> getAccessDisplayDictionary();
    /// SystemEvens value to constant name: 19 entries, none for 0x51 to 0x58.
    static QHash<int, QString> getEventConstDictionary();
    /// SystemEvens value to display text: all 27 entries.
    static QHash<int, QString> getEventDisplayDictionary();

    /// Fixed, untranslated text of an alarm level ("Major+Minor"); empty for an unknown level.
    static QString alarmStr(Core::AlarmType type);
    /**
     * Text of an interface kind ("SnmpV1"), held in a process-wide table.
     *
     * Unknown kinds are added to the table as empty texts (insert-on-miss),
     * so the reference stays valid.
     */
    static QString &iptString(const Core::InterfaceProtocolType &type);
};

#endif // CORE_H
