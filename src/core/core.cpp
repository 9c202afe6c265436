#include "core/core.h"

namespace {

// Registered when the library loads, so hosts can queue and spy on signals
// that carry the vocabulary without registering it themselves.
void registerCoreMetaTypes()
{
    qRegisterMetaType<Core::AlarmType>("Core::AlarmType");
    qRegisterMetaType<Core::AccessMode>("Core::AccessMode");
    qRegisterMetaType<Core::ActionType>("Core::ActionType");
    qRegisterMetaType<Core::SystemEvens>("Core::SystemEvens");
    qRegisterMetaType<Core::InterfaceProtocolType>("Core::InterfaceProtocolType");
}
Q_CONSTRUCTOR_FUNCTION(registerCoreMetaTypes)

} // namespace

// Each table is filled once, on first use, in the language in force then.

Core::Core(QObject *parent)
    : QObject(parent)
{
}

QHash<int, QString> Core::getActionConstDictionary()
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(ACT_USER_AND_GROUP, tr("ACT_USER_AND_GROUP"));
        table.insert(ACT_DATABASE, tr("ACT_DATABASE"));
        table.insert(ACT_MAP, tr("ACT_MAP"));
        table.insert(ACT_DEVICE, tr("ACT_DEVICE"));
        table.insert(ACT_SYSTEM, tr("ACT_SYSTEM"));
    }
    return table;
}

QHash<int, QString> Core::getActionDisplayDictionary()
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(ACT_USER_AND_GROUP, tr("Manage users and groups"));
        table.insert(ACT_DATABASE, tr("Manage database"));
        table.insert(ACT_MAP, tr("Manage device map"));
        table.insert(ACT_DEVICE, tr("Manage device settings"));
        table.insert(ACT_SYSTEM, tr("System data"));
    }
    return table;
}

QHash<int, QString> Core::getAccessConstDictionary()
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(ACM_DENY, tr("ACM_DENY"));
        table.insert(ACM_READ, tr("ACM_READ"));
        table.insert(ACM_READ_AND_WRITE, tr("ACM_READ_AND_WRITE"));
    }
    return table;
}

QHash<int, QString> Core::getAccessDisplayDictionary()
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(ACM_DENY, tr("Deny"));
        table.insert(ACM_READ, tr("Read only"));
        table.insert(ACM_READ_AND_WRITE, tr("Read and write"));
    }
    return table;
}

QHash<int, QString> Core::getEventConstDictionary()
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(SE_APP_CLOSE, tr("SE_APP_CLOSE"));
        table.insert(SE_APP_CRASH, tr("SE_APP_CRASH"));
        table.insert(SE_APP_START, tr("SE_APP_START"));
        table.insert(SE_DATABASE_BACKUP, tr("SE_DATABASE_BACKUP"));
        table.insert(SE_DATABASE_ERROR, tr("SE_DATABASE_ERROR"));
        table.insert(SE_DATABASE_SETTINGS, tr("SE_DATABASE_SETTINGS"));
        table.insert(SE_GROUPS_NEW, tr("SE_GROUPS_NEW"));
        table.insert(SE_GROUPS_EDIT, tr("SE_GROUPS_EDIT"));
        table.insert(SE_GROUPS_REMOVE, tr("SE_GROUPS_REMOVE"));
        table.insert(SE_LOGIN_FAIL, tr("SE_LOGIN_FAIL"));
        table.insert(SE_LOGIN_SUCCESS, tr("SE_LOGIN_SUCCESS"));
        table.insert(SE_LOGOUT, tr("SE_LOGOUT"));
        table.insert(SE_USERS_NEW, tr("SE_USERS_NEW"));
        table.insert(SE_USERS_EDIT, tr("SE_USERS_EDIT"));
        table.insert(SE_USERS_REMOVE, tr("SE_USERS_REMOVE"));
        table.insert(SE_DEVICE, tr("SE_DEVICE"));
        table.insert(SE_FILE_SYSTEM, tr("SE_FILE_SYSTEM"));
        table.insert(SE_EXPORT_TO_FILE, tr("SE_EXPORT_TO_FILE"));
        table.insert(SE_EXPORT_PRINT, tr("SE_EXPORT_PRINT"));
    }
    return table;
}

QHash<int, QString> Core::getEventDisplayDictionary()
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(SE_APP_CLOSE, tr("Application close"));
        table.insert(SE_APP_CRASH, tr("Application crash"));
        table.insert(SE_APP_START, tr("Application start"));
        table.insert(SE_DATABASE_BACKUP, tr("Database backup"));
        table.insert(SE_DATABASE_ERROR, tr("Database error"));
        table.insert(SE_DATABASE_SETTINGS, tr("Database settings"));
        table.insert(SE_GROUPS_NEW, tr("Group new"));
        table.insert(SE_GROUPS_EDIT, tr("Group edit"));
        table.insert(SE_GROUPS_REMOVE, tr("Group remove"));
        table.insert(SE_LOGIN_FAIL, tr("Login fail"));
        table.insert(SE_LOGIN_SUCCESS, tr("Login success"));
        table.insert(SE_LOGOUT, tr("Logout"));
        table.insert(SE_USERS_NEW, tr("User new"));
        table.insert(SE_USERS_EDIT, tr("User edit"));
        table.insert(SE_USERS_REMOVE, tr("User remove"));
        table.insert(SE_DEVICE, tr("Device"));
        table.insert(SE_DEVICE_APPLY, tr("Apply changes"));
        table.insert(SE_DEVICE_CLEAR_JOURNAL, tr("Clear event journal"));
        table.insert(SE_DEVICE_READ_ALL, tr("Read all"));
        table.insert(SE_DEVICE_RESTORE_SAVED, tr("Restore last saved"));
        table.insert(SE_DEVICE_RESTART, tr("Restart"));
        table.insert(SE_DEVICE_SAVE, tr("Save changes"));
        table.insert(SE_DEVICE_FACTORY, tr("Restore factory settings"));
        table.insert(SE_DEVICE_WRITE_ALL, tr("Write all"));
        table.insert(SE_FILE_SYSTEM, tr("File system"));
        table.insert(SE_EXPORT_TO_FILE, tr("Export to file"));
        table.insert(SE_EXPORT_PRINT, tr("Print"));
    }
    return table;
}

QString Core::alarmStr(Core::AlarmType type)
{
    switch (type) {
    case ALARM_OK:
        return QStringLiteral("Ok");
    case ALARM_MAJOR:
        return QStringLiteral("Major");
    case ALARM_MINOR:
        return QStringLiteral("Minor");
    case ALARM_MAJOR_MINOR:
        return QStringLiteral("Major+Minor");
    }
    return QString();
}

QString &Core::iptString(const Core::InterfaceProtocolType &type)
{
    static QHash<int, QString> table;
    if (table.isEmpty()) {
        table.insert(IPT_SERIAL, QStringLiteral("Serial"));
        table.insert(IPT_SNMP_V1, QStringLiteral("SnmpV1"));
        table.insert(IPT_SNMP_V3, QStringLiteral("SnmpV3"));
        table.insert(IPT_WEB, QStringLiteral("Web"));
    }
    return table[type];
}
