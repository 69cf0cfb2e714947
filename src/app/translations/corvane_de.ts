<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Engine</name>
    <message>
        <source>Changing Dir..</source>
        <translation>Ordner wird gewechselt …</translation>
    </message>
    <message>
        <source>Connected.</source>
        <translation>Verbunden.</translation>
    </message>
    <message>
        <source>Connecting to host.</source>
        <translation>Verbindung wird hergestellt.</translation>
    </message>
    <message>
        <source>Connection failed.</source>
        <translation>Verbindung fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Connection lost.</source>
        <translation>Verbindung abgebrochen.</translation>
    </message>
    <message>
        <source>Deleting Directory.</source>
        <translation>Ordner wird gelöscht.</translation>
    </message>
    <message>
        <source>Deleting File.</source>
        <translation>Datei wird gelöscht.</translation>
    </message>
    <message>
        <source>Deleting File..</source>
        <translation>Datei wird gelöscht …</translation>
    </message>
    <message>
        <source>Deletion Failed.</source>
        <translation>Löschen fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Deletion Success.</source>
        <translation>Gelöscht.</translation>
    </message>
    <message>
        <source>Dir Deleted.</source>
        <translation>Ordner gelöscht.</translation>
    </message>
    <message>
        <source>Downloading File.</source>
        <translation>Datei wird heruntergeladen.</translation>
    </message>
    <message>
        <source>Getting Dir Listing.</source>
        <translation>Auflistung wird geholt.</translation>
    </message>
    <message>
        <source>Login failed.</source>
        <translation>Anmeldung fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Resolving address.</source>
        <translation>Adresse wird aufgelöst.</translation>
    </message>
    <message>
        <source>Sending Password.</source>
        <translation>Passwort wird gesendet.</translation>
    </message>
    <message>
        <source>Sending Username.</source>
        <translation>Benutzername wird gesendet.</translation>
    </message>
    <message>
        <source>Transfer Complete.</source>
        <translation>Übertragung abgeschlossen.</translation>
    </message>
    <message>
        <source>Transfer Interupted.</source>
        <translation>Übertragung unterbrochen.</translation>
    </message>
    <message>
        <source>Uploading File.</source>
        <translation>Datei wird hochgeladen.</translation>
    </message>
    <message>
        <source>Listing of: %1</source>
        <translation>Auflistung von: %1</translation>
    </message>
    <message>
        <source>A line of the server&apos;s reply is too long</source>
        <translation>Eine Zeile der Serverantwort ist zu lang</translation>
    </message>
    <message>
        <source>Connection to:  %1 FAILED!</source>
        <translation>Die Verbindung mit %1 ist fehlgeschlagen!</translation>
    </message>
    <message>
        <source>Login to: %1 as anonymous failed.</source>
        <translation>Die anonyme Anmeldung bei %1 ist fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Login to: %1 failed.</source>
        <translation>Die Anmeldung bei %1 ist fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Passive connection failed.</source>
        <translation>Die passive Verbindung ist fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Service not available, closing control connection!</source>
        <translation>Der Dienst steht nicht zur Verfügung, die Verbindung wird geschlossen!</translation>
    </message>
    <message>
        <source>The connection is closed</source>
        <translation>Die Verbindung ist geschlossen</translation>
    </message>
    <message>
        <source>The connection to %1 was lost.</source>
        <translation>Die Verbindung mit %1 ist abgebrochen.</translation>
    </message>
    <message>
        <source>The server closed the connection</source>
        <translation>Der Server hat die Verbindung geschlossen</translation>
    </message>
    <message>
        <source>The server did not open the data connection.</source>
        <translation>Der Server hat die Datenverbindung nicht geöffnet.</translation>
    </message>
    <message>
        <source>The server does not answer</source>
        <translation>Der Server antwortet nicht</translation>
    </message>
    <message>
        <source>The server does not lead back to its directory</source>
        <translation>Der Server kehrt nicht in den vorherigen Ordner zurück</translation>
    </message>
    <message>
        <source>The server does not speak FTP</source>
        <translation>Der Server spricht kein FTP</translation>
    </message>
    <message>
        <source>The server gave no port for the data connection: %1</source>
        <translation>Der Server hat keinen Port für die Datenverbindung genannt: %1</translation>
    </message>
    <message>
        <source>The server refuses active connections.</source>
        <translation>Der Server lehnt aktive Verbindungen ab.</translation>
    </message>
    <message>
        <source>The server&apos;s reply is too long</source>
        <translation>Die Serverantwort ist zu lang</translation>
    </message>
    <message>
        <source>&quot;%1&quot; was not renamed.</source>
        <translation>„%1“ wurde nicht umbenannt.</translation>
    </message>
    <message>
        <source>A name or text with a line break cannot be sent to the server.</source>
        <translation>Ein Name oder Text mit Zeilenumbruch kann nicht an den Server gesendet werden.</translation>
    </message>
    <message>
        <source>Bad sequence of commands!</source>
        <translation>Falsche Reihenfolge der Befehle!</translation>
    </message>
    <message>
        <source>Command not implemented!</source>
        <translation>Der Server kennt diesen Befehl nicht!</translation>
    </message>
    <message>
        <source>Entries with names longer than 4096 bytes are not shown: %1</source>
        <translation>Einträge, deren Name länger als 4096 Byte ist, werden nicht angezeigt: %1</translation>
    </message>
    <message>
        <source>Error in parameters</source>
        <translation>Fehlerhafte Parameter</translation>
    </message>
    <message>
        <source>Left alone, for it is a link.</source>
        <translation>Nicht angerührt, denn es ist ein Link.</translation>
    </message>
    <message>
        <source>Left alone, for it leads to %1</source>
        <translation>Nicht angerührt, denn es führt nach %1</translation>
    </message>
    <message>
        <source>Left alone, for the name leads elsewhere.</source>
        <translation>Nicht angerührt, denn der Name führt woandershin.</translation>
    </message>
    <message>
        <source>The directories are nested too deeply.</source>
        <translation>Die Ordner sind zu tief verschachtelt.</translation>
    </message>
    <message>
        <source>The directory &quot;%1&quot; was not created.</source>
        <translation>Der Ordner „%1“ wurde nicht erstellt.</translation>
    </message>
    <message>
        <source>The directory cannot be opened.</source>
        <translation>Der Ordner lässt sich nicht öffnen.</translation>
    </message>
    <message>
        <source>The listing could not be read.</source>
        <translation>Die Auflistung konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The server did not delete everything:</source>
        <translation>Der Server hat nicht alles gelöscht:</translation>
    </message>
    <message>
        <source>The server has no directory or file %1.</source>
        <translation>Auf dem Server gibt es keinen Ordner und keine Datei %1.</translation>
    </message>
    <message>
        <source>The server lists a directory inside itself: %1</source>
        <translation>Der Server führt einen Ordner als Inhalt seiner selbst auf: %1</translation>
    </message>
    <message>
        <source>The server refused the request.</source>
        <translation>Der Server hat die Anfrage abgelehnt.</translation>
    </message>
    <message>
        <source>The system has no thread left to fetch the listing.</source>
        <translation>Das System stellt keinen Thread bereit, der die Auflistung holt.</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>it has more than 10,000,000 entries.</source>
        <translation>sie hat mehr als 10.000.000 Einträge.</translation>
    </message>
    <message>
        <source>the listing is larger than 1 GiB.</source>
        <translation>sie ist größer als 1 GiB.</translation>
    </message>
    <message>
        <source>  *Could not open file for reading!*</source>
        <translation>  *Datei nicht lesbar!*</translation>
    </message>
    <message>
        <source>%1 of %2 entries failed.</source>
        <translation>%1 von %2 Einträgen fehlgeschlagen.</translation>
    </message>
    <message>
        <source>Another transfer is writing %1 already.</source>
        <translation>Eine andere Übertragung schreibt bereits %1.</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>Only %1 of %2 bytes came.</source>
        <translation>Nur %1 von %2 Byte kamen an.</translation>
    </message>
    <message>
        <source>%1 bytes came of a file that has %2.</source>
        <translation>%1 Byte kamen von einer Datei an, die %2 hat.</translation>
    </message>
    <message>
        <source>The file became shorter while it was being sent.</source>
        <translation>Die Datei wurde kürzer, während sie gesendet wurde.</translation>
    </message>
    <message>
        <source>The folder has no name of its own.</source>
        <translation>Der Ordner hat keinen eigenen Namen.</translation>
    </message>
    <message>
        <source>The name &quot;%1&quot; cannot be a local folder&apos;s.</source>
        <translation>„%1“ kann kein Name eines lokalen Ordners sein.</translation>
    </message>
    <message>
        <source>The name &quot;%1&quot; cannot be used for a local file.</source>
        <translation>„%1“ kann kein Name einer lokalen Datei sein.</translation>
    </message>
    <message>
        <source>The rest of this folder was not sent.</source>
        <translation>Der Rest dieses Ordners wurde nicht gesendet.</translation>
    </message>
    <message>
        <source>What follows is not listed any more.</source>
        <translation>Alles Weitere wird nicht mehr aufgeführt.</translation>
    </message>
    <message>
        <source>a link or a special file</source>
        <translation>ein Link oder eine Spezialdatei</translation>
    </message>
    <message>
        <source>a link to a folder</source>
        <translation>ein Link auf einen Ordner</translation>
    </message>
    <message>
        <source>a link to no file</source>
        <translation>ein Link auf keine Datei</translation>
    </message>
    <message>
        <source>a special file</source>
        <translation>eine Spezialdatei</translation>
    </message>
    <message>
        <source>Another program holds the file.</source>
        <translation>Ein anderes Programm benutzt die Datei gerade.</translation>
    </message>
    <message>
        <source>The file is damaged. Move it away to begin with a new one.</source>
        <translation>Die Datei ist beschädigt. Verschieben Sie sie, um mit einer neuen zu beginnen.</translation>
    </message>
    <message>
        <source>The list is full.</source>
        <translation>Die Liste ist voll.</translation>
    </message>
    <message>
        <source>The path of the file is too long.</source>
        <translation>Der Pfad der Datei ist zu lang.</translation>
    </message>
    <message>
        <source>The preference store failed.</source>
        <translation>Der Speicher der Einstellungen hat versagt.</translation>
    </message>
    <message>
        <source>There is no list of shortcuts to add it to.</source>
        <translation>Es gibt keine Liste von Verknüpfungen, zu der sie hinzugefügt werden könnte.</translation>
    </message>
    <message>
        <source>Active connection failed.</source>
        <translation>Die aktive Verbindung ist fehlgeschlagen.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; exists already.</source>
        <translation>„%1“ gibt es bereits.</translation>
    </message>
    <message>
        <source>%1 of %2 entries failed: %3: %4</source>
        <translation>%1 von %2 Einträgen fehlgeschlagen: %3: %4</translation>
    </message>
    <message>
        <source>%1 of %2 entries failed; stopped at %3: %4</source>
        <translation>%1 von %2 Einträgen fehlgeschlagen; angehalten bei %3: %4</translation>
    </message>
    <message>
        <source>Could not make the folder: %1</source>
        <translation>Der Ordner konnte nicht erstellt werden: %1</translation>
    </message>
    <message>
        <source>Could not open %1: %2</source>
        <translation>%1 ließ sich nicht öffnen: %2</translation>
    </message>
    <message>
        <source>Could not read %1: %2</source>
        <translation>%1 ließ sich nicht lesen: %2</translation>
    </message>
    <message>
        <source>Could not read the file: %1</source>
        <translation>Die Datei ließ sich nicht lesen: %1</translation>
    </message>
    <message>
        <source>Could not read the folder: %1</source>
        <translation>Der Ordner ließ sich nicht lesen: %1</translation>
    </message>
    <message>
        <source>Could not resolve the address for:

 %1</source>
        <translation>Die Adresse ließ sich nicht auflösen:

 %1</translation>
    </message>
    <message>
        <source>Could not write the file: %1</source>
        <translation>Die Datei ließ sich nicht schreiben: %1</translation>
    </message>
    <message>
        <source>Left alone, for it is there already.</source>
        <translation>Nicht angerührt, denn es ist schon da.</translation>
    </message>
    <message>
        <source>Left out: %1 (%2)</source>
        <translation>Ausgelassen: %1 (%2)</translation>
    </message>
    <message>
        <source>Login to: %1 failed.

Username is invalid</source>
        <translation>Die Anmeldung bei %1 ist fehlgeschlagen.

Der Benutzername ist ungültig</translation>
    </message>
    <message>
        <source>Login to: %1 failed.
Invalid Username or Password.</source>
        <translation>Die Anmeldung bei %1 ist fehlgeschlagen.
Benutzername oder Passwort ist ungültig.</translation>
    </message>
    <message>
        <source>The connection could not be begun.</source>
        <translation>Die Verbindung konnte nicht begonnen werden.</translation>
    </message>
    <message>
        <source>The connection was lost: %1</source>
        <translation>Die Verbindung ist abgebrochen: %1</translation>
    </message>
    <message>
        <source>The file is not complete: %1</source>
        <translation>Die Datei ist nicht vollständig: %1</translation>
    </message>
    <message>
        <source>The listing is not complete: %1</source>
        <translation>Die Auflistung ist nicht vollständig: %1</translation>
    </message>
    <message>
        <source>The request could not be carried out: %1</source>
        <translation>Die Anfrage konnte nicht ausgeführt werden: %1</translation>
    </message>
    <message>
        <source>The server does not stop replying</source>
        <translation>Der Server hört nicht auf zu antworten</translation>
    </message>
    <message>
        <source>The server refuses passive connections.</source>
        <translation>Der Server lehnt passive Verbindungen ab.</translation>
    </message>
    <message>
        <source>The server&apos;s listing is in a form that is not understood.</source>
        <translation>Die Auflistung des Servers hat eine unbekannte Form.</translation>
    </message>
    <message>
        <source>The system has no thread to give.</source>
        <translation>Das System stellt keinen weiteren Thread bereit.</translation>
    </message>
    <message>
        <source>The transfer could not be carried out: %1</source>
        <translation>Die Übertragung konnte nicht ausgeführt werden: %1</translation>
    </message>
    <message>
        <source>the server stopped in the middle.</source>
        <translation>der Server hörte mittendrin auf.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>Reveal</name>
    <message>
        <source>Reveal in Tracker</source>
        <translation>Im Dateimanager zeigen</translation>
    </message>
    <message>
        <source>No file manager could be asked. This is where to look:</source>
        <translation>Es ließ sich kein Dateimanager ansprechen. Zu finden ist es hier:</translation>
    </message>
</context>
<context>
    <name>ShortCutItem</name>
    <message>
        <source>Passive</source>
        <translation>Passiv</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>Aktiv</translation>
    </message>
</context>
<context>
    <name>Start</name>
    <message>
        <source>Corvane runs already and refuses this address.</source>
        <translation>Corvane läuft bereits und weist diese Adresse zurück.</translation>
    </message>
    <message>
        <source>Corvane runs already but does not answer.</source>
        <translation>Corvane läuft bereits, antwortet aber nicht.</translation>
    </message>
</context>
<context>
    <name>corvane::About</name>
    <message>
        <source>About Corvane</source>
        <translation>Über Corvane</translation>
    </message>
</context>
<context>
    <name>corvane::AboutView</name>
    <message>
        <source>Corvane, version %1</source>
        <translation>Corvane, Version %1</translation>
    </message>
    <message>
        <source>An FTP client for the desktop</source>
        <translation>Ein FTP-Programm für den Desktop</translation>
    </message>
    <message>
        <source>version %1</source>
        <translation>Version %1</translation>
    </message>
</context>
<context>
    <name>corvane::BrowserCommands</name>
    <message>
        <source>&amp;Add Shortcut</source>
        <translation>&amp;Verknüpfung hinzufügen</translation>
    </message>
    <message>
        <source>Add Shortcut</source>
        <translation>Verknüpfung hinzufügen</translation>
    </message>
    <message>
        <source>&amp;New Connection</source>
        <translation>&amp;Neue Verbindung</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>&amp;Schließen</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copy URL</source>
        <translation>Adresse kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
    <message>
        <source>&amp;Download File</source>
        <translation>&amp;Herunterladen</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Herunterladen</translation>
    </message>
    <message>
        <source>&amp;Upload File</source>
        <translation>Hoch&amp;laden</translation>
    </message>
    <message>
        <source>De&amp;lete File</source>
        <translation>Lös&amp;chen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>R&amp;ename File/Dir</source>
        <translation>&amp;Umbenennen</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>&amp;Parent Dir</source>
        <translation>Ü&amp;bergeordneter Ordner</translation>
    </message>
    <message>
        <source>Parent Dir</source>
        <translation>Übergeordneter Ordner</translation>
    </message>
    <message>
        <source>&amp;Change Dir</source>
        <translation>&amp;Ordner wechseln</translation>
    </message>
    <message>
        <source>Create Di&amp;r</source>
        <translation>O&amp;rdner erstellen</translation>
    </message>
    <message>
        <source>Create Dir</source>
        <translation>Ordner erstellen</translation>
    </message>
    <message>
        <source>Re&amp;fresh Listing</source>
        <translation>&amp;Auflistung aktualisieren</translation>
    </message>
    <message>
        <source>Refresh Listing</source>
        <translation>Auflistung aktualisieren</translation>
    </message>
    <message>
        <source>View Dir Li&amp;sting</source>
        <translation>Auflistung an&amp;zeigen</translation>
    </message>
    <message>
        <source>&amp;View File</source>
        <translation>&amp;Datei anzeigen</translation>
    </message>
    <message>
        <source>View File</source>
        <translation>Datei anzeigen</translation>
    </message>
    <message>
        <source>&amp;Log Window</source>
        <translation>&amp;Protokoll</translation>
    </message>
    <message>
        <source>&amp;Transfer List</source>
        <translation>Übertragungs&amp;liste</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Commands</source>
        <translation>B&amp;efehle</translation>
    </message>
    <message>
        <source>&amp;Windows</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Control Window</source>
        <translation>&amp;Verbindungsfenster</translation>
    </message>
</context>
<context>
    <name>corvane::ConnectionForm</name>
    <message>
        <source>Label</source>
        <translation>Bezeichnung</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>Username</source>
        <translation>Benutzername</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Passwort</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>Passive C&amp;onnection</source>
        <translation>Passi&amp;ve Verbindung</translation>
    </message>
    <message>
        <source>Po&amp;rt:</source>
        <translation>Po&amp;rt:</translation>
    </message>
    <message>
        <source>&amp;Label:</source>
        <translation>Be&amp;zeichnung:</translation>
    </message>
    <message>
        <source>&amp;Host:</source>
        <translation>&amp;Host:</translation>
    </message>
    <message>
        <source>&amp;Username:</source>
        <translation>Ben&amp;utzername:</translation>
    </message>
    <message>
        <source>&amp;Password:</source>
        <translation>Pass&amp;wort:</translation>
    </message>
    <message>
        <source>Pa&amp;th:</source>
        <translation>&amp;Pfad:</translation>
    </message>
</context>
<context>
    <name>corvane::DirListModel</name>
    <message>
        <source>&lt;dir&gt;</source>
        <translation>&lt;Ordner&gt;</translation>
    </message>
    <message>
        <source>&lt;link&gt;</source>
        <translation>&lt;Link&gt;</translation>
    </message>
    <message>
        <source>.</source>
        <comment>the decimal point of a size</comment>
        <translation>,</translation>
    </message>
    <message>
        <source>%1/%2/%3</source>
        <comment>month, day, year</comment>
        <translation>%2.%1.%3</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
</context>
<context>
    <name>corvane::DirListView</name>
    <message>
        <source>Remote directory</source>
        <translation>Ordner auf dem Server</translation>
    </message>
    <message>
        <source>File Info:</source>
        <translation>Dateiinfo:</translation>
    </message>
    <message>
        <source>Permissions</source>
        <translation>Rechte</translation>
    </message>
    <message>
        <source>Owner</source>
        <translation>Besitzer</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppe</translation>
    </message>
    <message>
        <source>Perm: </source>
        <translation>Rechte: </translation>
    </message>
    <message>
        <source>User: </source>
        <translation>Besitzer: </translation>
    </message>
    <message>
        <source>Group: </source>
        <translation>Gruppe: </translation>
    </message>
</context>
<context>
    <name>corvane::DownLoadWin</name>
    <message>
        <source>Transfer List</source>
        <translation>Übertragungsliste</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Cancel Transfer</source>
        <translation>Übertragung &amp;abbrechen</translation>
    </message>
    <message>
        <source>&amp;Remove Item</source>
        <translation>Eintrag &amp;entfernen</translation>
    </message>
    <message>
        <source>&amp;Windows</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Control Window</source>
        <translation>&amp;Verbindungsfenster</translation>
    </message>
    <message>
        <source>Warning!</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>You need to cancel the transfer to remove this item.</source>
        <translation>Um diesen Eintrag zu entfernen, muss die Übertragung zuerst abgebrochen werden.</translation>
    </message>
</context>
<context>
    <name>corvane::MViewFile</name>
    <message>
        <source>Only the first %1 MiB are shown.</source>
        <translation>Nur die ersten %1 MiB werden angezeigt.</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Fin&amp;d:</source>
        <translation>Su&amp;chen:</translation>
    </message>
    <message>
        <source>&amp;Previous</source>
        <translation>&amp;Vorherige</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Nächste</translation>
    </message>
    <message>
        <source>Not found.</source>
        <translation>Nicht gefunden.</translation>
    </message>
</context>
<context>
    <name>corvane::MWindow</name>
    <message>
        <source>Connected To: %1</source>
        <translation>Verbunden mit: %1</translation>
    </message>
    <message>
        <source>Log Window: %1</source>
        <translation>Protokoll: %1</translation>
    </message>
    <message>
        <source>The system has no thread to give.</source>
        <translation>Das System stellt keinen weiteren Thread bereit.</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Status: %1</source>
        <translation>Status: %1</translation>
    </message>
    <message numerus="yes">
        <source>Delete these %n entries from the server?</source>
        <translation>
            <numerusform>Diesen %n Eintrag vom Server löschen?</numerusform>
            <numerusform>Diese %n Einträge vom Server löschen?</numerusform>
        </translation>
    </message>
    <message>
        <source>Directories go with everything in them.</source>
        <translation>Ordner werden mit ihrem gesamten Inhalt gelöscht.</translation>
    </message>
    <message>
        <source>Delete the directory &quot;%1&quot; and everything in it from the server?</source>
        <translation>Den Ordner „%1“ und seinen gesamten Inhalt vom Server löschen?</translation>
    </message>
    <message>
        <source>Delete &quot;%1&quot; from the server?</source>
        <translation>„%1“ vom Server löschen?</translation>
    </message>
    <message>
        <source>Alert!</source>
        <translation>Nachfrage</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>This moves the entry to &quot;%1&quot;; the server may replace what is there.</source>
        <translation>Damit wird der Eintrag nach „%1“ verschoben; was dort liegt, ersetzt der Server möglicherweise.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; exists already, and the server may replace it.</source>
        <translation>„%1“ gibt es schon; der Server ersetzt es möglicherweise.</translation>
    </message>
    <message>
        <source>&amp;Rename</source>
        <translation>&amp;Umbenennen</translation>
    </message>
    <message>
        <source>This connection is busy with another transfer.</source>
        <translation>Über diese Verbindung läuft gerade eine andere Übertragung.</translation>
    </message>
    <message>
        <source>&amp;Connect Again</source>
        <translation>&amp;Erneut verbinden</translation>
    </message>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 und noch %n</numerusform>
            <numerusform>%1 und noch %n</numerusform>
        </translation>
    </message>
    <message>
        <source>Nothing can be saved in &quot;%1&quot;: %2</source>
        <translation>In „%1“ lässt sich nichts speichern: %2</translation>
    </message>
    <message>
        <source>These are no files of this machine and are left out:</source>
        <translation>Dies sind keine Dateien dieses Rechners; sie werden ausgelassen:</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und noch %n</numerusform>
            <numerusform>und noch %n</numerusform>
        </translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be the name of a local file.</source>
        <translation>„%1“ kann kein Name einer lokalen Datei sein.</translation>
    </message>
    <message>
        <source>a folder</source>
        <translation>ein Ordner</translation>
    </message>
    <message>
        <source>a link</source>
        <translation>ein Link</translation>
    </message>
    <message>
        <source>no plain file</source>
        <translation>keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>&quot;%1&quot; in the download folder is %2 and is left alone.</source>
        <translation>„%1“ im Download-Ordner ist %2 und bleibt unverändert.</translation>
    </message>
    <message>
        <source>You have already downloaded the file %1.</source>
        <translation>Die Datei %1 wurde bereits heruntergeladen.</translation>
    </message>
    <message>
        <source>Would you like to download the file again?</source>
        <translation>Soll sie noch einmal heruntergeladen werden?</translation>
    </message>
    <message>
        <source>&amp;Download</source>
        <translation>&amp;Herunterladen</translation>
    </message>
    <message>
        <source>Part of the file %1 already exists.</source>
        <translation>Ein Teil der Datei %1 ist schon vorhanden.</translation>
    </message>
    <message>
        <source>Would you like to overwrite or reget the file?</source>
        <translation>Soll sie überschrieben oder das Herunterladen fortgesetzt werden?</translation>
    </message>
    <message>
        <source>&amp;Reget</source>
        <translation>&amp;Fortsetzen</translation>
    </message>
    <message>
        <source>&amp;Overwrite</source>
        <translation>Über&amp;schreiben</translation>
    </message>
    <message>
        <source>1 of these files exists already. Overwrite it?</source>
        <translation>1 dieser Dateien ist schon vorhanden. Soll sie überschrieben werden?</translation>
    </message>
    <message numerus="yes">
        <source>%n of these files exist already. Overwrite them?</source>
        <translation>
            <numerusform>%n dieser Dateien ist schon vorhanden. Soll sie überschrieben werden?</numerusform>
            <numerusform>%n dieser Dateien sind schon vorhanden. Sollen sie überschrieben werden?</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Skip it</source>
        <translation>Aus&amp;lassen</translation>
    </message>
    <message>
        <source>&amp;Skip them</source>
        <translation>Aus&amp;lassen</translation>
    </message>
    <message>
        <source>Path:</source>
        <translation>Pfad:</translation>
    </message>
    <message>
        <source>Remote path</source>
        <translation>Pfad auf dem Server</translation>
    </message>
    <message>
        <source>Use &amp;this connection.</source>
        <translation>Diese &amp;Verbindung benutzen</translation>
    </message>
    <message>
        <source>&amp;Upload</source>
        <translation>Hoch&amp;laden</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>These names cannot be names of local files and are left out:</source>
        <translation>Diese Namen können keine Namen lokaler Dateien sein; sie werden ausgelassen:</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Herunterladen</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>The folder &quot;%1&quot; exists already.

Files in it that have the same names as those on the server are replaced.</source>
        <translation>Den Ordner „%1“ gibt es schon.

Gleichnamige Dateien darin werden durch die vom Server ersetzt.</translation>
    </message>
    <message>
        <source>Close the window and stop that?</source>
        <translation>Das Fenster schließen und das abbrechen?</translation>
    </message>
    <message>
        <source>&amp;Close Window</source>
        <translation>Fenster &amp;schließen</translation>
    </message>
    <message>
        <source>no folder</source>
        <translation>kein Ordner</translation>
    </message>
    <message>
        <source>1 of these entries exists already. Overwrite it?</source>
        <translation>1 dieser Einträge ist schon vorhanden. Soll er überschrieben werden?</translation>
    </message>
    <message numerus="yes">
        <source>%n of these entries exist already. Overwrite them?</source>
        <translation>
            <numerusform>%n dieser Einträge ist schon vorhanden. Soll er überschrieben werden?</numerusform>
            <numerusform>%n dieser Einträge sind schon vorhanden. Sollen sie überschrieben werden?</numerusform>
        </translation>
    </message>
    <message>
        <source>Files in folders that have the same names as those on the server are replaced.</source>
        <translation>Dateien in Ordnern, die so heißen wie die auf dem Server, werden ersetzt.</translation>
    </message>
    <message>
        <source>1 of these names exists on the server already. Replace what is there?</source>
        <translation>1 dieser Namen ist auf dem Server schon vorhanden. Soll ersetzt werden, was dort steht?</translation>
    </message>
    <message numerus="yes">
        <source>%n of these names exist on the server already. Replace what is there?</source>
        <translation>
            <numerusform>%n dieser Namen ist auf dem Server schon vorhanden. Soll ersetzt werden, was dort steht?</numerusform>
            <numerusform>%n dieser Namen sind auf dem Server schon vorhanden. Soll ersetzt werden, was dort steht?</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Ersetzen</translation>
    </message>
    <message>
        <source>A transfer runs on the connection to %1.</source>
        <translation>Auf der Verbindung zu %1 läuft eine Übertragung.</translation>
    </message>
    <message>
        <source>Entries on %1 are still being deleted.</source>
        <translation>Auf %1 wird noch gelöscht.</translation>
    </message>
</context>
<context>
    <name>corvane::MyStatusBar</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
</context>
<context>
    <name>corvane::NewDir</name>
    <message>
        <source>New Directory</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>Create &amp;Dir</source>
        <translation>Ordner &amp;erstellen</translation>
    </message>
</context>
<context>
    <name>corvane::Notifier</name>
    <message>
        <source>Download finished</source>
        <translation>Download abgeschlossen</translation>
    </message>
    <message>
        <source>Upload finished</source>
        <translation>Upload abgeschlossen</translation>
    </message>
    <message>
        <source>Download failed</source>
        <translation>Download fehlgeschlagen</translation>
    </message>
    <message>
        <source>Upload failed</source>
        <translation>Upload fehlgeschlagen</translation>
    </message>
    <message numerus="yes">
        <source>%n transfers ended</source>
        <translation>
            <numerusform>%n Übertragung beendet</numerusform>
            <numerusform>%n Übertragungen beendet</numerusform>
        </translation>
    </message>
    <message>
        <source>All of them finished.</source>
        <translation>Alle sind abgeschlossen.</translation>
    </message>
    <message>
        <source>%1 finished, %2 failed.</source>
        <translation>%1 abgeschlossen, %2 fehlgeschlagen.</translation>
    </message>
</context>
<context>
    <name>corvane::Password</name>
    <message>
        <source>&amp;Paste</source>
        <translation>&amp;Einfügen</translation>
    </message>
    <message>
        <source>&amp;Clear</source>
        <translation>&amp;Leeren</translation>
    </message>
</context>
<context>
    <name>corvane::PrefWindow</name>
    <message>
        <source>   8 KB</source>
        <translation>   8 KB</translation>
    </message>
    <message>
        <source> 32 KB</source>
        <translation> 32 KB</translation>
    </message>
    <message>
        <source> 64 KB</source>
        <translation> 64 KB</translation>
    </message>
    <message>
        <source>128 KB</source>
        <translation>128 KB</translation>
    </message>
    <message>
        <source>Corvane: Preferences</source>
        <translation>Corvane: Einstellungen</translation>
    </message>
    <message>
        <source>&amp;Misc</source>
        <translation>All&amp;gemein</translation>
    </message>
    <message>
        <source>So&amp;und</source>
        <translation>&amp;Klänge</translation>
    </message>
    <message>
        <source>Pro&amp;xy</source>
        <translation>Pro&amp;xy</translation>
    </message>
    <message>
        <source>&amp;Default Password:</source>
        <translation>Standard&amp;passwort:</translation>
    </message>
    <message>
        <source>D&amp;ownload Folder:</source>
        <translation>Download-&amp;Ordner:</translation>
    </message>
    <message>
        <source>Ask for each download</source>
        <translation>Bei jedem Download fragen</translation>
    </message>
    <message>
        <source>Select &amp;Folder</source>
        <translation>Ordner &amp;wählen</translation>
    </message>
    <message>
        <source>Show &amp;Transfer Window on new transfer.</source>
        <translation>Bei einer neuen Übertragung die Übertragungs&amp;liste zeigen</translation>
    </message>
    <message>
        <source>In force from the next start on.</source>
        <translation>Gilt ab dem nächsten Start.</translation>
    </message>
    <message>
        <source>&amp;Remove transfer item after transfer is done.</source>
        <translation>Abgeschlossene Übertragungen aus der Liste &amp;entfernen</translation>
    </message>
    <message>
        <source>Show a &amp;notification when transfers end.</source>
        <translation>Be&amp;nachrichtigen, wenn Übertragungen enden</translation>
    </message>
    <message>
        <source>Only while no window of Corvane is active.</source>
        <translation>Nur solange kein Fenster von Corvane aktiv ist.</translation>
    </message>
    <message>
        <source>&amp;Always use same connection to transfer files.</source>
        <translation>Dateien immer über &amp;dieselbe Verbindung übertragen</translation>
    </message>
    <message>
        <source>&amp;Buffer Size:</source>
        <translation>Pu&amp;ffergröße:</translation>
    </message>
    <message>
        <source>&amp;Login Success:</source>
        <translation>An&amp;meldung gelungen:</translation>
    </message>
    <message>
        <source>Login &amp;Failure:</source>
        <translation>Anmeldung &amp;fehlgeschlagen:</translation>
    </message>
    <message>
        <source>U&amp;pload Sound:</source>
        <translation>Ho&amp;chladen abgeschlossen:</translation>
    </message>
    <message>
        <source>&amp;Download Sound:</source>
        <translation>&amp;Herunterladen abgeschlossen:</translation>
    </message>
    <message>
        <source>S&amp;elect Sound</source>
        <translation>Klang &amp;wählen</translation>
    </message>
    <message>
        <source>Select the TextBox you want to set the sound for first.</source>
        <translation>Zuerst das Feld anklicken, für das ein Klang gewählt werden soll.</translation>
    </message>
    <message>
        <source>&amp;Enable Proxy</source>
        <translation>Proxy &amp;benutzen</translation>
    </message>
    <message>
        <source>Proxy &amp;Host :</source>
        <translation>Proxy-&amp;Host:</translation>
    </message>
    <message>
        <source>Proxy &amp;Port :</source>
        <translation>Proxy-Po&amp;rt:</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Select Folder</source>
        <translation>Ordner wählen</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Select Sound</source>
        <translation>Klang wählen</translation>
    </message>
    <message>
        <source>Warning!</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Please enter the address of the proxy.</source>
        <translation>Bitte die Adresse des Proxys eingeben.</translation>
    </message>
    <message>
        <source>The proxy&apos;s port has to be a number from 1 to 65535.</source>
        <translation>Der Port des Proxys muss eine Zahl von 1 bis 65535 sein.</translation>
    </message>
    <message>
        <source>The preferences are in force but could not be saved for the next start.</source>
        <translation>Die Einstellungen gelten, konnten aber nicht für den nächsten Start gespeichert werden.</translation>
    </message>
    <message>
        <source>Show &amp;in the tray at login.</source>
        <translation>&amp;Beim Anmelden im Benachrichtigungsfeld zeigen</translation>
    </message>
    <message>
        <source>An icon whose menu opens your shortcuts.</source>
        <translation>Ein Symbol, dessen Menü Ihre Verknüpfungen öffnet.</translation>
    </message>
    <message>
        <source>The preferences are saved, all but what is shown in the tray at login.</source>
        <translation>Die Einstellungen sind gespeichert, nur nicht, ob das Symbol beim Anmelden gezeigt wird.</translation>
    </message>
    <message>
        <source>C&amp;lassic style</source>
        <translation>Klass&amp;ischer Stil</translation>
    </message>
    <message>
        <source>Figures, texts and editing of the classic windows.</source>
        <translation>Zahlen, Texte und Eingabe der klassischen Fenster.</translation>
    </message>
</context>
<context>
    <name>corvane::RenameWin</name>
    <message>
        <source>Rename Item</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>&amp;Filename:</source>
        <translation>&amp;Dateiname:</translation>
    </message>
    <message>
        <source>Rename &amp;To:</source>
        <translation>Neuer Na&amp;me:</translation>
    </message>
    <message>
        <source>&amp;Rename</source>
        <translation>Umbe&amp;nennen</translation>
    </message>
</context>
<context>
    <name>corvane::ReplicantView</name>
    <message>
        <source>Corvane</source>
        <translation>Corvane</translation>
    </message>
    <message>
        <source>&amp;Launch Corvane</source>
        <translation>Corvane &amp;starten</translation>
    </message>
    <message>
        <source>&amp;Remove from the tray</source>
        <translation>Aus dem Benachrichtigungsfeld &amp;entfernen</translation>
    </message>
    <message>
        <source>The port of this shortcut is no number from 1 to 65535.</source>
        <translation>Der Port dieser Verknüpfung ist keine Zahl von 1 bis 65535.</translation>
    </message>
    <message>
        <source>The shortcuts could not be read.</source>
        <translation>Die Verknüpfungen konnten nicht gelesen werden.</translation>
    </message>
</context>
<context>
    <name>corvane::ShortCutEditWindow</name>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Edit Shortcut</source>
        <translation>Verknüpfung bearbeiten</translation>
    </message>
    <message>
        <source>Add Shortcut</source>
        <translation>Verknüpfung hinzufügen</translation>
    </message>
    <message>
        <source>Chan&amp;ge</source>
        <translation>Än&amp;dern</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>Hinzufü&amp;gen</translation>
    </message>
    <message>
        <source>Warning!</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Please enter the address of the server.</source>
        <translation>Bitte die Adresse des Servers eingeben.</translation>
    </message>
    <message>
        <source>A label cannot hold a &quot;*&quot;, and none of the other fields a &quot;:&quot;; username, password and host hold no &quot;@&quot; or &quot;/&quot; either.</source>
        <translation>Eine Bezeichnung darf kein „*“ enthalten, die anderen Felder kein „:“; Benutzername, Passwort und Host außerdem kein „@“ oder „/“.</translation>
    </message>
    <message>
        <source>This shortcut cannot be saved as you entered it.</source>
        <translation>Diese Verknüpfung kann so nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>This shortcut would not come back as you entered it.</source>
        <translation>Diese Verknüpfung würde beim nächsten Laden anders aussehen als jetzt eingegeben.</translation>
    </message>
    <message>
        <source>&amp;Save Anyway</source>
        <translation>&amp;Trotzdem speichern</translation>
    </message>
    <message>
        <source>&amp;Go Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>This shortcut is no longer in the list.</source>
        <translation>Diese Verknüpfung steht nicht mehr in der Liste.</translation>
    </message>
    <message>
        <source>The shortcut could not be saved.</source>
        <translation>Die Verknüpfung konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>The port has to be a number from 1 to 65535.</source>
        <translation>Der Port muss eine Zahl von 1 bis 65535 sein.</translation>
    </message>
</context>
<context>
    <name>corvane::ShortCutWindow</name>
    <message>
        <source>Label</source>
        <translation>Bezeichnung</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Connection Type</source>
        <translation>Verbindungsart</translation>
    </message>
    <message>
        <source>Shortcuts[*]</source>
        <translation>Verknüpfungen[*]</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Verknüpfungen</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;New Shortcut</source>
        <translation>&amp;Neue Verknüpfung</translation>
    </message>
    <message>
        <source>&amp;Edit Shortcut</source>
        <translation>Verknüpfung &amp;bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Remove Shortcut</source>
        <translation>Verknüpfung &amp;entfernen</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>&amp;Alles auswählen</translation>
    </message>
    <message>
        <source>Warning!</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>You need to have at least one remaining shortcut.</source>
        <translation>Mindestens eine Verknüpfung muss übrig bleiben.</translation>
    </message>
    <message>
        <source>The shortcuts could not be saved.</source>
        <translation>Die Verknüpfungen konnten nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Alert!</source>
        <translation>Nachfrage</translation>
    </message>
    <message>
        <source>You have made some changes.  Would you like to save them or discard them?</source>
        <translation>Es gibt ungespeicherte Änderungen. Sollen sie gespeichert oder verworfen werden?</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Verwerfen</translation>
    </message>
    <message numerus="yes">
        <source>One stored shortcut cannot be read. Saving the list loses it and all that lie behind it, %n in all.</source>
        <translation>
            <numerusform>Eine gespeicherte Verknüpfung ist nicht lesbar. Wird die Liste gespeichert, so geht sie verloren.</numerusform>
            <numerusform>Eine gespeicherte Verknüpfung ist nicht lesbar. Wird die Liste gespeichert, so geht sie mit allen dahinter verloren, zusammen %n.</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Save Anyway</source>
        <translation>&amp;Trotzdem speichern</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>corvane::ShortcutField</name>
    <message>
        <source>Shortcuts</source>
        <translation>Verknüpfungen</translation>
    </message>
    <message>
        <source>&amp;Shortcuts</source>
        <translation>Ver&amp;knüpfungen</translation>
    </message>
</context>
<context>
    <name>corvane::SmallView</name>
    <message>
        <source>1 Item</source>
        <translation>1 Eintrag</translation>
    </message>
    <message numerus="yes">
        <source>%n Items</source>
        <translation>
            <numerusform>%n Eintrag</numerusform>
            <numerusform>%n Einträge</numerusform>
        </translation>
    </message>
    <message>
        <source>Number of entries: %1</source>
        <translation>Anzahl der Einträge: %1</translation>
    </message>
</context>
<context>
    <name>corvane::StartWin</name>
    <message>
        <source>Corvane</source>
        <translation>Corvane</translation>
    </message>
    <message>
        <source>Warning!</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>Please enter the address of the server.</source>
        <translation>Bitte die Adresse des Servers eingeben.</translation>
    </message>
    <message>
        <source>The port has to be a number from 1 to 65535.</source>
        <translation>Der Port muss eine Zahl von 1 bis 65535 sein.</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>Verbi&amp;nden</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;About Corvane…</source>
        <translation>Ü&amp;ber Corvane…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>B&amp;eenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>&amp;Einfügen</translation>
    </message>
    <message>
        <source>&amp;Shortcuts</source>
        <translation>&amp;Verknüpfungen</translation>
    </message>
    <message>
        <source>P&amp;references</source>
        <translation>E&amp;instellungen</translation>
    </message>
    <message>
        <source>&amp;Windows</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Transfer List</source>
        <translation>Übertragungs&amp;liste</translation>
    </message>
    <message>
        <source>This address cannot be read.</source>
        <translation>Diese Adresse ist nicht lesbar.</translation>
    </message>
    <message>
        <source>The shortcuts could not be read.</source>
        <translation>Die Verknüpfungen konnten nicht gelesen werden.</translation>
    </message>
</context>
<context>
    <name>corvane::TambleApp</name>
    <message>
        <source>Warning!</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>The shortcuts could not be read.</source>
        <translation>Die Verknüpfungen konnten nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Your preferences could not be read. What you see are the defaults.</source>
        <translation>Die Einstellungen konnten nicht gelesen werden. Gezeigt werden die Vorgaben.</translation>
    </message>
    <message>
        <source>Alert!</source>
        <translation>Nachfrage</translation>
    </message>
    <message>
        <source>Quit and stop 1 transfer?</source>
        <translation>Beenden und 1 Übertragung abbrechen?</translation>
    </message>
    <message numerus="yes">
        <source>Quit and stop %n transfers?</source>
        <translation>
            <numerusform>Beenden und %n Übertragung abbrechen?</numerusform>
            <numerusform>Beenden und %n Übertragungen abbrechen?</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Keep running</source>
        <translation>&amp;Weiterlaufen lassen</translation>
    </message>
    <message>
        <source>Your preferences could not be read: a proxy that you have set would be bypassed. Connect all the same?</source>
        <translation>Ihre Einstellungen konnten nicht gelesen werden: Ein eingestellter Proxy würde umgangen. Trotzdem verbinden?</translation>
    </message>
    <message>
        <source>Co&amp;nnect</source>
        <translation>&amp;Verbinden</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>What you entered here is not saved. Quit and lose it?</source>
        <translation>Was Sie hier eingegeben haben, ist nicht gespeichert. Beenden und verwerfen?</translation>
    </message>
    <message>
        <source>&amp;Go Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>Quit and stop deleting?</source>
        <translation>Beenden und das Löschen abbrechen?</translation>
    </message>
</context>
<context>
    <name>corvane::TransferItem</name>
    <message>
        <source>Server: %1</source>
        <translation>Server: %1</translation>
    </message>
    <message>
        <source>Saving to: </source>
        <translation>Speichern in: </translation>
    </message>
    <message>
        <source>Uploading to: </source>
        <translation>Hochladen nach: </translation>
    </message>
    <message>
        <source>File: %1</source>
        <translation>Datei: %1</translation>
    </message>
    <message numerus="yes">
        <source>%n done</source>
        <translation>
            <numerusform>%n fertig</numerusform>
            <numerusform>%n fertig</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n left out</source>
        <translation>
            <numerusform>%n ausgelassen</numerusform>
            <numerusform>%n ausgelassen</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 bytes/sec</source>
        <translation>%1 Byte/s</translation>
    </message>
    <message>
        <source>Cancelled.</source>
        <translation>Abgebrochen.</translation>
    </message>
    <message>
        <source>The transfer failed.</source>
        <translation>Die Übertragung ist fehlgeschlagen.</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und noch %n</numerusform>
            <numerusform>und noch %n</numerusform>
        </translation>
    </message>
    <message>
        <source>Finished</source>
        <translation>Abgeschlossen</translation>
    </message>
</context>
<context>
    <name>corvane::TransferListView</name>
    <message>
        <source>Transfers</source>
        <translation>Übertragungen</translation>
    </message>
    <message>
        <source>Cancel Transfer</source>
        <translation>Übertragung abbrechen</translation>
    </message>
    <message>
        <source>Remove Item</source>
        <translation>Eintrag entfernen</translation>
    </message>
    <message>
        <source>Reveal in Tracker</source>
        <translation>Im Dateimanager zeigen</translation>
    </message>
</context>
<context>
    <name>corvane::TransferPane</name>
    <message>
        <source>Direction</source>
        <translation>Richtung</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>Rate</source>
        <translation>Geschwindigkeit</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Download: </source>
        <translation>Herunterladen: </translation>
    </message>
    <message>
        <source>Upload: </source>
        <translation>Hochladen: </translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Ausblenden</translation>
    </message>
</context>
<context>
    <name>corvane::TrayProgram</name>
    <message>
        <source>Corvane stands in the tray already.</source>
        <translation>Corvane steht bereits im Benachrichtigungsfeld.</translation>
    </message>
    <message>
        <source>This desktop has no tray for Corvane&apos;s icon.</source>
        <translation>Dieser Desktop hat kein Benachrichtigungsfeld für das Symbol von Corvane.</translation>
    </message>
    <message>
        <source>Corvane refuses this shortcut.</source>
        <translation>Corvane nimmt diese Verknüpfung nicht an.</translation>
    </message>
    <message>
        <source>Corvane runs already but does not answer.</source>
        <translation>Corvane läuft bereits, antwortet aber nicht.</translation>
    </message>
    <message>
        <source>Corvane could not be started.</source>
        <translation>Corvane konnte nicht gestartet werden.</translation>
    </message>
</context>
<context>
    <name>corvane::UploadPanel</name>
    <message>
        <source>Upload</source>
        <translation>Hochladen</translation>
    </message>
    <message>
        <source>Select</source>
        <translation>Auswählen</translation>
    </message>
</context>
<context>
    <name>corvane::WindowLog</name>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
</context>
</TS>
