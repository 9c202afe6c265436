<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Core</name>
    <message>
        <location filename="../src/core/core.cpp" line="+30"/>
        <source>ACT_USER_AND_GROUP</source>
        <translation>ACT_USER_AND_GROUP</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>ACT_DATABASE</source>
        <translation>ACT_DATABASE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>ACT_MAP</source>
        <translation>ACT_MAP</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>ACT_DEVICE</source>
        <translation>ACT_DEVICE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>ACT_SYSTEM</source>
        <translation>ACT_SYSTEM</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Manage users and groups</source>
        <translation>Benutzer und Gruppen verwalten</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Manage database</source>
        <translation>Datenbank verwalten</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Manage device map</source>
        <translation>Geräteverzeichnis verwalten</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Manage device settings</source>
        <translation>Geräteeinstellungen verwalten</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>System data</source>
        <translation>Systemdaten</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>ACM_DENY</source>
        <translation>ACM_DENY</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>ACM_READ</source>
        <translation>ACM_READ</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>ACM_READ_AND_WRITE</source>
        <translation>ACM_READ_AND_WRITE</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Deny</source>
        <translation>Kein Zugriff</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Read only</source>
        <translation>Nur lesen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Read and write</source>
        <translation>Lesen und schreiben</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>SE_APP_CLOSE</source>
        <translation>SE_APP_CLOSE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_APP_CRASH</source>
        <translation>SE_APP_CRASH</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_APP_START</source>
        <translation>SE_APP_START</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_DATABASE_BACKUP</source>
        <translation>SE_DATABASE_BACKUP</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_DATABASE_ERROR</source>
        <translation>SE_DATABASE_ERROR</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_DATABASE_SETTINGS</source>
        <translation>SE_DATABASE_SETTINGS</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_GROUPS_NEW</source>
        <translation>SE_GROUPS_NEW</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_GROUPS_EDIT</source>
        <translation>SE_GROUPS_EDIT</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_GROUPS_REMOVE</source>
        <translation>SE_GROUPS_REMOVE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_LOGIN_FAIL</source>
        <translation>SE_LOGIN_FAIL</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_LOGIN_SUCCESS</source>
        <translation>SE_LOGIN_SUCCESS</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_LOGOUT</source>
        <translation>SE_LOGOUT</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_USERS_NEW</source>
        <translation>SE_USERS_NEW</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_USERS_EDIT</source>
        <translation>SE_USERS_EDIT</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_USERS_REMOVE</source>
        <translation>SE_USERS_REMOVE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_DEVICE</source>
        <translation>SE_DEVICE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_FILE_SYSTEM</source>
        <translation>SE_FILE_SYSTEM</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_EXPORT_TO_FILE</source>
        <translation>SE_EXPORT_TO_FILE</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>SE_EXPORT_PRINT</source>
        <translation>SE_EXPORT_PRINT</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Application close</source>
        <translation>Anwendung beendet</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Application crash</source>
        <translation>Anwendung abgestürzt</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Application start</source>
        <translation>Anwendung gestartet</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Database backup</source>
        <translation>Datenbanksicherung</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Database error</source>
        <translation>Datenbankfehler</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Database settings</source>
        <translation>Datenbankeinstellungen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Group new</source>
        <translation>Gruppe angelegt</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Group edit</source>
        <translation>Gruppe geändert</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Group remove</source>
        <translation>Gruppe entfernt</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Login fail</source>
        <translation>Anmeldung fehlgeschlagen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Login success</source>
        <translation>Anmeldung erfolgreich</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Logout</source>
        <translation>Abmeldung</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>User new</source>
        <translation>Benutzer angelegt</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>User edit</source>
        <translation>Benutzer geändert</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>User remove</source>
        <translation>Benutzer entfernt</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Apply changes</source>
        <translation>Änderungen übernehmen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Clear event journal</source>
        <translation>Ereignisprotokoll löschen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Read all</source>
        <translation>Alles lesen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Restore last saved</source>
        <translation>Zuletzt gespeicherte Einstellungen wiederherstellen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Restart</source>
        <translation>Neustart</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Save changes</source>
        <translation>Änderungen speichern</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Restore factory settings</source>
        <translation>Werkseinstellungen wiederherstellen</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Write all</source>
        <translation>Alles schreiben</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>File system</source>
        <translation>Dateisystem</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Export to file</source>
        <translation>Export in Datei</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
</context>
<context>
    <name>DatetimeDialog</name>
    <message>
        <location filename="../src/ui/datetimedialog.ui" line="+14"/>
        <source>Set datetime</source>
        <translation>Datum und Uhrzeit einstellen</translation>
    </message>
</context>
<context>
    <name>DeviceDescriptor</name>
    <message>
        <location filename="../src/device/devicedescriptor.cpp" line="+165"/>
        <source>Autorisation</source>
        <translation>Autorisierung</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
</context>
<context>
    <name>DeviceMainWindow</name>
    <message>
        <location filename="../src/ui/devicemainwindow.ui" line="+14"/>
        <source>MainWindow</source>
        <translation>Hauptfenster</translation>
    </message>
    <message>
        <location line="+61"/>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Actions</source>
        <translation>Aktionen</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>toolBar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <location line="+33"/>
        <source>Read data</source>
        <translation>Daten lesen</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Write data</source>
        <translation>Daten schreiben</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Apply</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Load settings</source>
        <translation>Einstellungen laden</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Save settings</source>
        <translation>Einstellungen speichern</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Exit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>To factory settings</source>
        <translation>Auf Werkseinstellungen zurücksetzen</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Restart</source>
        <translation>Neustart</translation>
    </message>
    <message>
        <location line="+9"/>
        <location filename="../src/ui/devicemainwindow.cpp" line="+390"/>
        <source>Load last saved</source>
        <translation>Zuletzt Gespeichertes laden</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Set date time</source>
        <translation>Datum und Uhrzeit einstellen</translation>
    </message>
    <message>
        <location line="+5"/>
        <source>Reset statistics</source>
        <translation>Statistik zurücksetzen</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>Serial port connection</source>
        <translation>Verbindung über serielle Schnittstelle</translation>
    </message>
    <message>
        <location line="+9"/>
        <source>Switch to Active</source>
        <translation>Auf aktiv umschalten</translation>
    </message>
    <message>
        <location line="+12"/>
        <source>Statistics auto refresh</source>
        <translation>Statistik automatisch aktualisieren</translation>
    </message>
    <message>
        <location filename="../src/ui/devicemainwindow.cpp" line="-124"/>
        <source>Information</source>
        <translation>Information</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <location line="+82"/>
        <source>Select file.</source>
        <translation>Datei auswählen</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Device settings file(*.%1)</source>
        <translation>Geräteeinstellungsdatei (*.%1)</translation>
    </message>
    <message>
        <location line="+14"/>
        <source>Reset to factory settings</source>
        <translation>Auf Werkseinstellungen zurücksetzen</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>This action not supported trough SNMP</source>
        <translation>Diese Aktion wird über SNMP nicht unterstützt.</translation>
    </message>
    <message>
        <location line="+16"/>
        <source>Restart device</source>
        <translation>Gerät neu starten</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Do you realy want restart device?</source>
        <translation>Soll das Gerät wirklich neu gestartet werden?</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Do you realy want load last saved settings?</source>
        <translation>Sollen die zuletzt gespeicherten Einstellungen wirklich geladen werden?</translation>
    </message>
</context>
<context>
    <name>LoadSettingsDialog</name>
    <message>
        <location filename="../src/ui/loadsettingsdialog.ui" line="+14"/>
        <location filename="../src/ui/loadsettingsdialog.cpp" line="+47"/>
        <source>Select file.</source>
        <translation>Datei auswählen</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>Settings location:</source>
        <translation>Speicherort der Einstellungen:</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>...</source>
        <translation>...</translation>
    </message>
    <message>
        <location line="+7"/>
        <source>Do not load addresses</source>
        <translation>Adressen nicht laden</translation>
    </message>
    <message>
        <location filename="../src/ui/loadsettingsdialog.cpp" line="+0"/>
        <source>Device settings file(*.%1)</source>
        <translation>Geräteeinstellungsdatei (*.%1)</translation>
    </message>
</context>
<context>
    <name>ResetSettingsDialog</name>
    <message>
        <location filename="../src/ui/resetsettingsdialog.ui" line="+14"/>
        <source>Factory Reset</source>
        <translation>Auf Werkseinstellungen zurücksetzen</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>The current connection address will not be reset! Do you realy want to reset all settings to factory default?</source>
        <translation>Die aktuelle Verbindungsadresse wird nicht zurückgesetzt! Sollen wirklich alle Einstellungen auf die Werkseinstellungen zurückgesetzt werden?</translation>
    </message>
    <message>
        <location line="+10"/>
        <source>Do not reset all network addresses</source>
        <translation>Netzwerkadressen nicht zurücksetzen</translation>
    </message>
</context>
<context>
    <name>SnmpClient</name>
    <message>
        <location filename="../src/snmp/snmpclient.cpp" line="+113"/>
        <source>A version 3 target needs a user.</source>
        <translation>Ein Ziel der Version 3 braucht einen Benutzer.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Privacy needs an authentication protocol.</source>
        <translation>Verschlüsselung setzt ein Authentifizierungsprotokoll voraus.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>A passphrase must have at least 8 characters.</source>
        <translation>Eine Passphrase muss mindestens 8 Zeichen haben.</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>The target has no address.</source>
        <translation>Das Ziel hat keine Adresse.</translation>
    </message>
    <message>
        <location line="+4"/>
        <source>The target&apos;s timeout or retries are out of range.</source>
        <translation>Zeitlimit oder Wiederholungen des Ziels liegen außerhalb des zulässigen Bereichs.</translation>
    </message>
    <message>
        <location line="+69"/>
        <source>Cannot open a session to %1 port %2: %3</source>
        <translation>Keine Sitzung zu %1 Port %2 möglich: %3</translation>
    </message>
    <message>
        <location line="+72"/>
        <source>Cannot send to %1 port %2: %3</source>
        <translation>Senden an %1 Port %2 nicht möglich: %3</translation>
    </message>
    <message>
        <location line="+72"/>
        <source>No answer from %1 port %2.</source>
        <translation>Keine Antwort von %1 Port %2.</translation>
    </message>
    <message>
        <location line="+1"/>
        <source>The agent at %1 port %2 did not name its engine.</source>
        <translation>Der Agent unter %1 Port %2 hat seine Engine-ID nicht genannt.</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>No answer from %1 port %2 within %3 ms.</source>
        <translation>Keine Antwort von %1 Port %2 innerhalb von %3 ms.</translation>
    </message>
    <message>
        <location line="+6"/>
        <source>The exchange with %1 port %2 broke off.</source>
        <translation>Der Austausch mit %1 Port %2 wurde abgebrochen.</translation>
    </message>
    <message>
        <location line="+15"/>
        <source>The agent refused the request: %1</source>
        <translation>Der Agent hat die Anfrage abgelehnt: %1</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>%1 (variable %2, %3)</source>
        <translation>%1 (Variable %2, %3)</translation>
    </message>
    <message>
        <location line="+22"/>
        <source>The agent answered %1 after %2.</source>
        <translation>Der Agent hat nach %2 mit %1 geantwortet.</translation>
    </message>
    <message>
        <location line="+13"/>
        <source>The answer holds more than %1 variables.</source>
        <translation>Die Antwort enthält mehr als %1 Variablen.</translation>
    </message>
    <message>
        <location line="+159"/>
        <source>No OIDs to read.</source>
        <translation>Keine OIDs zum Lesen.</translation>
    </message>
    <message>
        <location line="+8"/>
        <location line="+12"/>
        <location line="+19"/>
        <source>&quot;%1&quot; is not an OID.</source>
        <translation>„%1“ ist keine OID.</translation>
    </message>
    <message>
        <location line="-8"/>
        <source>No variables to write.</source>
        <translation>Keine Variablen zum Schreiben.</translation>
    </message>
    <message>
        <location line="+11"/>
        <source>The value of %1 has no SNMP type.</source>
        <translation>Der Wert von %1 hat keinen SNMP-Typ.</translation>
    </message>
</context>
<context>
    <name>SnmpTrapReceiver</name>
    <message>
        <location filename="../src/snmp/snmptrapreceiver.cpp" line="+151"/>
        <location line="+11"/>
        <source>Cannot listen on %1 port %2.</source>
        <translation>Empfang auf %1 Port %2 nicht möglich.</translation>
    </message>
    <message>
        <location line="+48"/>
        <source>&quot;%1&quot; is not an engine id.</source>
        <translation>„%1“ ist keine Engine-ID.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>&quot;%1&quot; is not a user name.</source>
        <translation>„%1“ ist kein Benutzername.</translation>
    </message>
    <message>
        <location line="+3"/>
        <source>A passphrase must have at least 8 characters and no blanks or quotes.</source>
        <translation>Eine Passphrase muss mindestens 8 Zeichen haben und darf keine Leerzeichen oder Anführungszeichen enthalten.</translation>
    </message>
    <message>
        <location line="+2"/>
        <source>Privacy needs an authentication protocol.</source>
        <translation>Verschlüsselung setzt ein Authentifizierungsprotokoll voraus.</translation>
    </message>
    <message>
        <location line="+19"/>
        <source>net-snmp refused the user %1.</source>
        <translation>net-snmp hat den Benutzer %1 abgelehnt.</translation>
    </message>
</context>
<context>
    <name>StatAutoRefreshDialog</name>
    <message>
        <location filename="../src/ui/statautorefreshdialog.ui" line="+14"/>
        <source>Auto refresh statistics</source>
        <translation>Statistik automatisch aktualisieren</translation>
    </message>
    <message>
        <location line="+8"/>
        <source>Period (sec)</source>
        <translation>Intervall (s)</translation>
    </message>
</context>
<context>
    <name>TrapVisual</name>
    <message>
        <location filename="../src/ui/trapvisual.cpp" line="+39"/>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Device</source>
        <translation>Gerät</translation>
    </message>
    <message>
        <location line="+0"/>
        <source>Information</source>
        <translation>Information</translation>
    </message>
</context>
</TS>
