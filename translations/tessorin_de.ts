<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>AboutPage</name>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>Version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>See and fix what photos and videos say about themselves: dates, places, camera, lens, exposure and every EXIF, TIFF, GPS, IPTC and QuickTime tag.</source>
        <translation>Sehen und korrigieren, was Fotos und Videos über sich selbst erzählen: Datum, Ort, Kamera, Objektiv, Belichtung und jedes EXIF-, TIFF-, GPS-, IPTC- und QuickTime-Tag.</translation>
    </message>
    <message>
        <source>Licensed under %1</source>
        <translation>Lizenziert unter %1</translation>
    </message>
    <message>
        <source>Data</source>
        <translation>Daten</translation>
    </message>
    <message>
        <source>Libraries</source>
        <translation>Bibliotheken</translation>
    </message>
</context>
<context>
    <name>AddressListModel</name>
    <message>
        <source>Show in Maps</source>
        <translation>In Karten zeigen</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Coordinates</source>
        <translation>Koordinaten</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>Richtung</translation>
    </message>
    <message>
        <source>Altitude</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Geschwindigkeit</translation>
    </message>
</context>
<context>
    <name>AlbumListPage</name>
    <message>
        <source>Change Photo Access...</source>
        <translation>Fotozugriff ändern …</translation>
    </message>
    <message>
        <source>Open photos and videos</source>
        <translation>Fotos und Videos öffnen</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Open Files</source>
        <translation>Dateien öffnen</translation>
    </message>
    <message numerus="yes">
        <source>%1, %n item(s)</source>
        <translation>
            <numerusform>%1, %n Objekt</numerusform>
            <numerusform>%1, %n Objekte</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>AlbumListViewModel</name>
    <message>
        <source>Images (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>Images and videos (%1 %2)</source>
        <translation>Bilder und Videos (%1 %2)</translation>
    </message>
    <message>
        <source>Videos (%1)</source>
        <translation>Videos (%1)</translation>
    </message>
    <message>
        <source>Photo Library Unavailable</source>
        <translation>Fotomediathek nicht verfügbar</translation>
    </message>
    <message>
        <source>Please check to see if device settings doesn&apos;t allow photo library access</source>
        <translation>Bitte prüfen Sie, ob die Einstellungen des Geräts den Zugriff auf die Fotomediathek verhindern.</translation>
    </message>
    <message>
        <source>All albums</source>
        <translation>Alle Alben</translation>
    </message>
</context>
<context>
    <name>Albums</name>
    <message>
        <source>All Photos</source>
        <translation>Alle Fotos</translation>
    </message>
    <message>
        <source>Selected Photos</source>
        <translation>Ausgewählte Fotos</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>From files</source>
        <translation>Aus Dateien</translation>
    </message>
    <message>
        <source>Burst Photos</source>
        <translation>Serienfotos</translation>
    </message>
    <message>
        <source>Saved Photos</source>
        <translation>Gesicherte Fotos</translation>
    </message>
    <message>
        <source>Albums</source>
        <translation>Alben</translation>
    </message>
    <message>
        <source>Smart Albums</source>
        <translation>Intelligente Alben</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Ereignisse</translation>
    </message>
    <message>
        <source>Synced Albums</source>
        <translation>Synchronisierte Alben</translation>
    </message>
    <message>
        <source>Faces</source>
        <translation>Gesichter</translation>
    </message>
    <message>
        <source>Imported</source>
        <translation>Importiert</translation>
    </message>
    <message>
        <source>Cloud Shared</source>
        <translation>In der Cloud geteilt</translation>
    </message>
    <message>
        <source>Recents</source>
        <translation>Zuletzt</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Videos</source>
        <translation>Videos</translation>
    </message>
    <message>
        <source>Live Photos</source>
        <translation>Live Photos</translation>
    </message>
    <message>
        <source>Portrait</source>
        <translation>Porträt</translation>
    </message>
    <message>
        <source>Panoramas</source>
        <translation>Panoramen</translation>
    </message>
    <message>
        <source>Screenshots</source>
        <translation>Bildschirmfotos</translation>
    </message>
    <message>
        <source>Selfies</source>
        <translation>Selfies</translation>
    </message>
    <message>
        <source>Bursts</source>
        <translation>Serien</translation>
    </message>
    <message>
        <source>Slo-mo</source>
        <translation>Zeitlupe</translation>
    </message>
    <message>
        <source>Time-lapse</source>
        <translation>Zeitraffer</translation>
    </message>
    <message>
        <source>RAW</source>
        <translation>RAW</translation>
    </message>
    <message>
        <source>Recently Added</source>
        <translation>Zuletzt hinzugefügt</translation>
    </message>
    <message>
        <source>Hidden</source>
        <translation>Ausgeblendet</translation>
    </message>
</context>
<context>
    <name>DateModifierViewModel</name>
    <message>
        <source>Time</source>
        <translation>Uhrzeit</translation>
    </message>
    <message>
        <source>From a photo</source>
        <translation>Aus einem Foto</translation>
    </message>
    <message>
        <source>From current photo </source>
        <translation>Aus dem aktuellen Foto </translation>
    </message>
    <message>
        <source>Most recent</source>
        <translation>Zuletzt verwendet</translation>
    </message>
</context>
<context>
    <name>DatePage</name>
    <message>
        <source>Pictures (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng *.avif)</source>
        <translation>Bilder (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng *.avif)</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Uhrzeit</translation>
    </message>
</context>
<context>
    <name>DetailPage</name>
    <message>
        <source>Downloading...</source>
        <translation>Wird geladen …</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>DetailTableModel</name>
    <message>
        <source>This image has no exif tags</source>
        <translation>Dieses Bild hat keine Exif-Tags</translation>
    </message>
    <message>
        <source>Screenshot</source>
        <translation>Bildschirmfoto</translation>
    </message>
</context>
<context>
    <name>DetailTableView</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Sources</source>
        <translation>Quellen</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>Karte</translation>
    </message>
</context>
<context>
    <name>DetailToolBar</name>
    <message>
        <source>Resources</source>
        <translation>Ressourcen</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Teilen</translation>
    </message>
    <message>
        <source>Show Details</source>
        <translation>Details zeigen</translation>
    </message>
    <message>
        <source>Show All Tags</source>
        <translation>Alle Tags zeigen</translation>
    </message>
    <message>
        <source>Remove from Favorites</source>
        <translation>Aus Favoriten entfernen</translation>
    </message>
    <message>
        <source>Add to Favorites</source>
        <translation>Zu Favoriten hinzufügen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Burst Photos</source>
        <translation>Serienfotos</translation>
    </message>
    <message>
        <source>More</source>
        <translation>Mehr</translation>
    </message>
</context>
<context>
    <name>DetailViewModel</name>
    <message>
        <source>Alert</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>The Photo was added in a different album. Go to see it?</source>
        <translation>Das Foto wurde in einem anderen Album hinzugefügt. Möchten Sie es ansehen?</translation>
    </message>
    <message>
        <source>In the “%1” Album</source>
        <translation>Im Album „%1“</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>All Tags</source>
        <translation>Alle Tags</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Details</translation>
    </message>
</context>
<context>
    <name>EditPage</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>From this album...</source>
        <translation>Aus diesem Album …</translation>
    </message>
    <message>
        <source>From files...</source>
        <translation>Aus Dateien …</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Pictures (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng *.avif)</source>
        <translation>Bilder (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng *.avif)</translation>
    </message>
</context>
<context>
    <name>EditScreen</name>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
</context>
<context>
    <name>EditViewModel</name>
    <message>
        <source>Change Video Tags</source>
        <translation>Video-Tags ändern</translation>
    </message>
    <message>
        <source>%1 [removed]</source>
        <translation>%1 [entfernt]</translation>
    </message>
    <message>
        <source>Unchanged</source>
        <translation>Unverändert</translation>
    </message>
    <message>
        <source>Add %1 here</source>
        <translation>%1 hier eingeben</translation>
    </message>
    <message>
        <source>No Tags</source>
        <translation>Keine Tags</translation>
    </message>
    <message>
        <source>No extra data</source>
        <translation>Keine weiteren Daten</translation>
    </message>
    <message>
        <source>May result in a different rotation</source>
        <translation>Kann die Drehung verändern</translation>
    </message>
    <message>
        <source>Image structure tags only</source>
        <translation>Nur Tags zum Bildaufbau</translation>
    </message>
    <message>
        <source>Date and time</source>
        <translation>Datum und Uhrzeit</translation>
    </message>
    <message>
        <source>No Date and Time tags</source>
        <translation>Keine Datums- und Zeit-Tags</translation>
    </message>
    <message>
        <source>Shift by...</source>
        <translation>Verschieben um …</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Ort</translation>
    </message>
    <message>
        <source>No location tag</source>
        <translation>Kein Orts-Tag</translation>
    </message>
    <message>
        <source>From a track log...</source>
        <translation>Aus einer Routenaufzeichnung …</translation>
    </message>
    <message>
        <source>Orientation</source>
        <translation>Ausrichtung</translation>
    </message>
    <message>
        <source>User Comment</source>
        <translation>Benutzerkommentar</translation>
    </message>
    <message>
        <source>IPTC tags</source>
        <translation>IPTC-Tags</translation>
    </message>
    <message>
        <source>Edit IPTC tags</source>
        <translation>IPTC-Tags bearbeiten</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>max %1</source>
        <translation>höchstens %1</translation>
    </message>
    <message>
        <source>Alert</source>
        <translation>Hinweis</translation>
    </message>
    <message>
        <source>One or more selected photos are already among the chosen set</source>
        <translation>Mindestens eines der ausgewählten Fotos ist bereits in der Auswahl.</translation>
    </message>
    <message>
        <source>Loading Photo...</source>
        <translation>Foto wird geladen …</translation>
    </message>
    <message>
        <source>Not a clock offset: %1</source>
        <translation>Keine gültige Zeitabweichung: %1</translation>
    </message>
    <message>
        <source>Not a duration: %1</source>
        <translation>Keine gültige Dauer: %1</translation>
    </message>
    <message>
        <source>No date to shift</source>
        <translation>Kein Datum zum Verschieben</translation>
    </message>
    <message>
        <source>Save a new video</source>
        <translation>Als neues Video sichern</translation>
    </message>
    <message>
        <source>Save a new picture</source>
        <translation>Als neues Bild sichern</translation>
    </message>
    <message>
        <source>Save a new picture or modify the current one?</source>
        <translation>Als neues Bild sichern oder das aktuelle ändern?</translation>
    </message>
    <message>
        <source>Save new pictures</source>
        <translation>Als neue Bilder sichern</translation>
    </message>
    <message>
        <source>Save new pictures or modify the current ones?</source>
        <translation>Als neue Bilder sichern oder die aktuellen ändern?</translation>
    </message>
    <message>
        <source>New Picture</source>
        <translation>Neues Bild</translation>
    </message>
    <message>
        <source>New Video</source>
        <translation>Neues Video</translation>
    </message>
    <message>
        <source>Modify</source>
        <translation>Ändern</translation>
    </message>
    <message>
        <source>Save to Files</source>
        <translation>In Dateien sichern</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Error getting image data</source>
        <translation>Die Bilddaten konnten nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Error writing data to file</source>
        <translation>Die Daten konnten nicht in die Datei geschrieben werden.</translation>
    </message>
    <message>
        <source>Saving Photo...</source>
        <translation>Foto wird gesichert …</translation>
    </message>
    <message>
        <source>Error getting video data</source>
        <translation>Die Videodaten konnten nicht gelesen werden.</translation>
    </message>
    <message>
        <source>Error: Exporting Data</source>
        <translation>Fehler beim Exportieren der Daten</translation>
    </message>
    <message>
        <source>Saving Video...</source>
        <translation>Video wird gesichert …</translation>
    </message>
    <message>
        <source>Error: Exporting Data (2)</source>
        <translation>Fehler beim Exportieren der Daten (2)</translation>
    </message>
    <message>
        <source>Nothing changed</source>
        <translation>Nichts geändert</translation>
    </message>
    <message>
        <source>No changes to save.</source>
        <translation>Es gibt keine Änderungen zu sichern.</translation>
    </message>
    <message>
        <source>Saved in XMP sidecars, the photos left as they are:</source>
        <translation>In XMP-Begleitdateien gesichert, die Fotos bleiben, wie sie sind:</translation>
    </message>
    <message>
        <source>Saved in XMP Sidecars</source>
        <translation>In XMP-Begleitdateien gesichert</translation>
    </message>
</context>
<context>
    <name>ExifTableView</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Go To:</source>
        <translation>Gehe zu:</translation>
    </message>
    <message>
        <source>Not on this device</source>
        <translation>Nicht auf diesem Gerät</translation>
    </message>
</context>
<context>
    <name>FullScreenView</name>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>GroupPage</name>
    <message>
        <source>No items</source>
        <translation>Keine Objekte</translation>
    </message>
    <message>
        <source>Show as List</source>
        <translation>Als Liste zeigen</translation>
    </message>
    <message>
        <source>Show as Grid</source>
        <translation>Als Raster zeigen</translation>
    </message>
</context>
<context>
    <name>IptcEditorModel</name>
    <message>
        <source>[removed]</source>
        <translation>[entfernt]</translation>
    </message>
    <message>
        <source>Unchanged</source>
        <translation>Unverändert</translation>
    </message>
    <message>
        <source>%1 (comma-separated list)</source>
        <translation>%1 (durch Kommas getrennt)</translation>
    </message>
    <message>
        <source>Add %1 here</source>
        <translation>%1 hier eingeben</translation>
    </message>
    <message>
        <source>Unselected</source>
        <translation>Nicht ausgewählt</translation>
    </message>
    <message>
        <source>No %1</source>
        <translation>%1: keine</translation>
    </message>
    <message>
        <source>%1 (edited)</source>
        <translation>%1 (bearbeitet)</translation>
    </message>
</context>
<context>
    <name>IptcPage</name>
    <message>
        <source>IPTC</source>
        <translation>IPTC</translation>
    </message>
    <message>
        <source>IPTC Template</source>
        <translation>IPTC-Vorlage</translation>
    </message>
    <message>
        <source>Edit...</source>
        <translation>Bearbeiten …</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Anwenden</translation>
    </message>
    <message>
        <source>Country Code</source>
        <translation>Ländercode</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Kein Land</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Template</source>
        <translation>Vorlage</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>IptcViewModel</name>
    <message>
        <source>Add %1 here</source>
        <translation>%1 hier eingeben</translation>
    </message>
    <message>
        <source>Creator Contact Info</source>
        <translation>Kontaktdaten des Urhebers</translation>
    </message>
</context>
<context>
    <name>LibraryDialogs</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>LocationModifierViewModel</name>
    <message>
        <source>No location data in image</source>
        <translation>Keine Ortsdaten im Bild</translation>
    </message>
    <message>
        <source>Actual position</source>
        <translation>Aktueller Standort</translation>
    </message>
    <message>
        <source>Location not available</source>
        <translation>Standort nicht verfügbar</translation>
    </message>
    <message>
        <source>From a photo</source>
        <translation>Aus einem Foto</translation>
    </message>
    <message>
        <source>From map</source>
        <translation>Aus der Karte</translation>
    </message>
    <message>
        <source>From current photo</source>
        <translation>Aus dem aktuellen Foto</translation>
    </message>
    <message>
        <source>Most recent</source>
        <translation>Zuletzt verwendet</translation>
    </message>
    <message>
        <source>Search or insert an address</source>
        <translation>Adresse suchen oder eingeben</translation>
    </message>
</context>
<context>
    <name>LocationPage</name>
    <message>
        <source>From a photo</source>
        <translation>Aus einem Foto</translation>
    </message>
    <message>
        <source>Choose a File...</source>
        <translation>Datei auswählen …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Pictures (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng)</source>
        <translation>Bilder (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng)</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>No location</source>
        <translation>Kein Ort</translation>
    </message>
</context>
<context>
    <name>MapPickerPage</name>
    <message>
        <source>Search or insert an address</source>
        <translation>Adresse suchen oder eingeben</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>MapView</name>
    <message>
        <source> Show in Maps...</source>
        <translation> In Karten zeigen …</translation>
    </message>
    <message>
        <source>Map Style</source>
        <translation>Kartenstil</translation>
    </message>
    <message>
        <source>Back to the Pin</source>
        <translation>Zurück zur Stecknadel</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
</context>
<context>
    <name>NavigationBar</name>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>ResourceList</name>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Teilen</translation>
    </message>
</context>
<context>
    <name>Resources</name>
    <message>
        <source>Original Photo</source>
        <translation>Originalfoto</translation>
    </message>
    <message>
        <source>Original Video</source>
        <translation>Originalvideo</translation>
    </message>
    <message>
        <source>Original Audio</source>
        <translation>Originalaudio</translation>
    </message>
    <message>
        <source>Alternate Photo</source>
        <translation>Alternatives Foto</translation>
    </message>
    <message>
        <source>Actual Photo</source>
        <translation>Aktuelles Foto</translation>
    </message>
    <message>
        <source>Actual Video</source>
        <translation>Aktuelles Video</translation>
    </message>
    <message>
        <source>Adjustment Data</source>
        <translation>Anpassungsdaten</translation>
    </message>
    <message>
        <source>Adjustment Base Photo</source>
        <translation>Basisfoto der Anpassung</translation>
    </message>
    <message>
        <source>Original Live Photo</source>
        <translation>Original-Live-Photo</translation>
    </message>
    <message>
        <source>Actual Live Photo</source>
        <translation>Aktuelles Live Photo</translation>
    </message>
    <message>
        <source>Adjustment Base Live Photo</source>
        <translation>Basis-Live-Photo der Anpassung</translation>
    </message>
    <message>
        <source>Adjustment Base Video</source>
        <translation>Basisvideo der Anpassung</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Depth Map</source>
        <translation>Tiefenkarte</translation>
    </message>
    <message>
        <source>Image Disparity</source>
        <translation>Bilddisparität</translation>
    </message>
    <message>
        <source>HDR Gain Map</source>
        <translation>HDR-Gain-Map</translation>
    </message>
    <message>
        <source>Portrait Effects Matte</source>
        <translation>Porträteffekt-Maske</translation>
    </message>
    <message>
        <source>Glasses Matte</source>
        <translation>Brillenmaske</translation>
    </message>
    <message>
        <source>Hair Matte</source>
        <translation>Haarmaske</translation>
    </message>
    <message>
        <source>Skin Matte</source>
        <translation>Hautmaske</translation>
    </message>
    <message>
        <source>Sky Matte</source>
        <translation>Himmelsmaske</translation>
    </message>
    <message>
        <source>Teeth Matte</source>
        <translation>Zahnmaske</translation>
    </message>
</context>
<context>
    <name>RotationModifierViewModel</name>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>RotationPage</name>
    <message>
        <source>Orientation</source>
        <translation>Ausrichtung</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Change Photo Access...</source>
        <translation>Fotozugriff ändern …</translation>
    </message>
    <message>
        <source>Appearance</source>
        <translation>Erscheinungsbild</translation>
    </message>
    <message>
        <source>As the Desktop</source>
        <translation>Wie der Desktop</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
</context>
<context>
    <name>ScanProgressViewModel</name>
    <message>
        <source>%L1 files found, %L2 read, %L3 left</source>
        <translation>%L1 Dateien gefunden, %L2 gelesen, %L3 übrig</translation>
    </message>
    <message>
        <source>Looking for photos...</source>
        <translation>Fotos werden gesucht …</translation>
    </message>
</context>
<context>
    <name>SettingsViewModel</name>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>About Tessorin</source>
        <translation>Über Tessorin</translation>
    </message>
    <message>
        <source>Photo Order</source>
        <translation>Reihenfolge der Fotos</translation>
    </message>
    <message>
        <source>Most recent first</source>
        <translation>Neueste zuerst</translation>
    </message>
    <message>
        <source>Tags</source>
        <translation>Tags</translation>
    </message>
    <message>
        <source>Human Readable</source>
        <translation>Lesbar</translation>
    </message>
    <message>
        <source>Live Photos</source>
        <translation>Live Photos</translation>
    </message>
    <message>
        <source>Show Live Photos preview</source>
        <translation>Vorschau der Live Photos zeigen</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>Video</translation>
    </message>
    <message>
        <source>Show Videos</source>
        <translation>Videos zeigen</translation>
    </message>
    <message>
        <source>Allow Photo Access</source>
        <translation>Fotozugriff erlauben</translation>
    </message>
    <message>
        <source>Change Photo Access...</source>
        <translation>Fotozugriff ändern …</translation>
    </message>
    <message>
        <source>Modified Images</source>
        <translation>Geänderte Bilder</translation>
    </message>
    <message>
        <source>Save in Tessorin album</source>
        <translation>Im Album „Tessorin“ sichern</translation>
    </message>
    <message>
        <source>Save changes in</source>
        <translation>Änderungen sichern in</translation>
    </message>
    <message>
        <source>the photo</source>
        <translation>dem Foto</translation>
    </message>
    <message>
        <source>an XMP sidecar</source>
        <translation>einer XMP-Begleitdatei</translation>
    </message>
    <message>
        <source>Name new sidecars NAME.xmp</source>
        <translation>Neue Begleitdateien NAME.xmp nennen</translation>
    </message>
</context>
<context>
    <name>ShareMenu</name>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>ShareViewModel</name>
    <message>
        <source>Share Photo</source>
        <translation>Foto teilen</translation>
    </message>
    <message>
        <source>With Metadata</source>
        <translation>Mit Metadaten</translation>
    </message>
    <message>
        <source>Without Metadata</source>
        <translation>Ohne Metadaten</translation>
    </message>
    <message>
        <source>Without Location</source>
        <translation>Ohne Ort</translation>
    </message>
    <message>
        <source>Share Details Only</source>
        <translation>Nur Details teilen</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>Share All Tags as</source>
        <translation>Alle Tags teilen als</translation>
    </message>
    <message>
        <source>Human Readable</source>
        <translation>Lesbar</translation>
    </message>
    <message>
        <source>JSON</source>
        <translation>JSON</translation>
    </message>
    <message>
        <source>Raw</source>
        <translation>Rohwerte</translation>
    </message>
    <message>
        <source>Save %1</source>
        <translation>%1 sichern</translation>
    </message>
</context>
<context>
    <name>ShiftPage</name>
    <message>
        <source>Shift by...</source>
        <translation>Verschieben um …</translation>
    </message>
    <message>
        <source>Offset, as +H:MM[:SS] or -D H:MM:SS</source>
        <translation>Verschiebung, als +H:MM[:SS] oder -T H:MM:SS</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Verschiebung</translation>
    </message>
</context>
<context>
    <name>TSKey</name>
    <message>
        <source>Content</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>Creator</source>
        <translation>Urheber</translation>
    </message>
    <message>
        <source>Rights</source>
        <translation>Rechte</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Ort</translation>
    </message>
    <message>
        <source>Media</source>
        <translation>Medium</translation>
    </message>
    <message>
        <source>File size:</source>
        <translation>Dateigröße:</translation>
    </message>
    <message>
        <source>File name:</source>
        <translation>Dateiname:</translation>
    </message>
    <message>
        <source>Original Date:</source>
        <translation>Aufnahmedatum:</translation>
    </message>
    <message>
        <source>File Date:</source>
        <translation>Dateidatum:</translation>
    </message>
    <message>
        <source>Location:</source>
        <translation>Ort:</translation>
    </message>
    <message>
        <source>File Location:</source>
        <translation>Speicherort:</translation>
    </message>
    <message>
        <source>Digitized Date:</source>
        <translation>Digitalisiert am:</translation>
    </message>
    <message>
        <source>Camera:</source>
        <translation>Kamera:</translation>
    </message>
    <message>
        <source>Camera Maker:</source>
        <translation>Kamerahersteller:</translation>
    </message>
    <message>
        <source>Lens:</source>
        <translation>Objektiv:</translation>
    </message>
    <message>
        <source>Lens Maker:</source>
        <translation>Objektivhersteller:</translation>
    </message>
    <message>
        <source>Maker:</source>
        <translation>Hersteller:</translation>
    </message>
    <message>
        <source>Lens Serial Number:</source>
        <translation>Seriennummer des Objektivs:</translation>
    </message>
    <message>
        <source>Body Serial Number:</source>
        <translation>Seriennummer der Kamera:</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>Autor:</translation>
    </message>
    <message>
        <source>Copyright:</source>
        <translation>Urheberrecht:</translation>
    </message>
    <message>
        <source>Description:</source>
        <translation>Beschreibung:</translation>
    </message>
    <message>
        <source>User comment:</source>
        <translation>Kommentar:</translation>
    </message>
    <message>
        <source>Software:</source>
        <translation>Software:</translation>
    </message>
    <message>
        <source>ISO Speed:</source>
        <translation>ISO-Wert:</translation>
    </message>
    <message>
        <source>Focal Length:</source>
        <translation>Brennweite:</translation>
    </message>
    <message>
        <source>35 mm equiv.:</source>
        <translation>KB-äquiv.:</translation>
    </message>
    <message>
        <source>Exp. comp.:</source>
        <translation>Belichtungskorr.:</translation>
    </message>
    <message>
        <source>Aperture:</source>
        <translation>Blende:</translation>
    </message>
    <message>
        <source>Shutter speed:</source>
        <translation>Belichtungszeit:</translation>
    </message>
    <message>
        <source>Color:</source>
        <translation>Farbe:</translation>
    </message>
    <message>
        <source>Resolution:</source>
        <translation>Auflösung:</translation>
    </message>
    <message>
        <source>Image size:</source>
        <translation>Bildgröße:</translation>
    </message>
    <message>
        <source>Aspect ratio:</source>
        <translation>Seitenverhältnis:</translation>
    </message>
    <message>
        <source>Flash:</source>
        <translation>Blitz:</translation>
    </message>
    <message>
        <source>Metering:</source>
        <translation>Messmethode:</translation>
    </message>
    <message>
        <source>AWB:</source>
        <translation>Weißabgleich:</translation>
    </message>
    <message>
        <source>File type:</source>
        <translation>Dateityp:</translation>
    </message>
    <message>
        <source>Author&apos;s Job Title</source>
        <translation>Berufsbezeichnung des Autors</translation>
    </message>
    <message>
        <source>Document title</source>
        <translation>Dokumenttitel</translation>
    </message>
    <message>
        <source>Keywords:</source>
        <translation>Stichwörter:</translation>
    </message>
    <message>
        <source>Headline</source>
        <translation>Überschrift</translation>
    </message>
    <message>
        <source>Credit:</source>
        <translation>Bildnachweis:</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Editor&apos;s Description</source>
        <translation>Beschreibung des Bearbeiters</translation>
    </message>
    <message>
        <source>Rights Usage Terms</source>
        <translation>Nutzungsbedingungen</translation>
    </message>
    <message>
        <source>Creator Contact Info</source>
        <translation>Kontaktdaten des Urhebers</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>Adresse:</translation>
    </message>
    <message>
        <source>City:</source>
        <translation>Stadt:</translation>
    </message>
    <message>
        <source>Postal Code:</source>
        <translation>Postleitzahl:</translation>
    </message>
    <message>
        <source>State/Province:</source>
        <translation>Bundesland/Provinz:</translation>
    </message>
    <message>
        <source>Country:</source>
        <translation>Land:</translation>
    </message>
    <message>
        <source>Email(s):</source>
        <translation>E-Mail(s):</translation>
    </message>
    <message>
        <source>Phone(s):</source>
        <translation>Telefon(e):</translation>
    </message>
    <message>
        <source>URL(s):</source>
        <translation>URL(s):</translation>
    </message>
    <message>
        <source>City</source>
        <translation>Stadt</translation>
    </message>
    <message>
        <source>Location within the city</source>
        <translation>Ort innerhalb der Stadt</translation>
    </message>
    <message>
        <source>State or Province</source>
        <translation>Bundesland oder Provinz</translation>
    </message>
    <message>
        <source>Country</source>
        <translation>Land</translation>
    </message>
    <message>
        <source>Country Code</source>
        <translation>Ländercode</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Ereignis</translation>
    </message>
    <message>
        <source>Source Type</source>
        <translation>Quelltyp</translation>
    </message>
    <message>
        <source>Genre</source>
        <translation>Genre</translation>
    </message>
    <message>
        <source>Creation Date</source>
        <translation>Erstellungsdatum</translation>
    </message>
    <message>
        <source>Creation Time (UTC)</source>
        <translation>Erstellungszeit (UTC)</translation>
    </message>
    <message>
        <source>Digital Creation Date</source>
        <translation>Digitalisierungsdatum</translation>
    </message>
    <message>
        <source>Digital Creation Time (UTC)</source>
        <translation>Digitalisierungszeit (UTC)</translation>
    </message>
    <message>
        <source>Duration:</source>
        <translation>Dauer:</translation>
    </message>
    <message>
        <source>FPS:</source>
        <translation>Bilder/s:</translation>
    </message>
    <message>
        <source>Audio Coding:</source>
        <translation>Audiocodierung:</translation>
    </message>
    <message>
        <source>User Comment</source>
        <translation>Benutzerkommentar</translation>
    </message>
    <message>
        <source>a comment</source>
        <translation>ein Kommentar</translation>
    </message>
    <message>
        <source>Camera Model</source>
        <translation>Kameramodell</translation>
    </message>
</context>
<context>
    <name>TagValues</name>
    <message>
        <source>Adobe RGB</source>
        <translation>Adobe RGB</translation>
    </message>
    <message>
        <source>Wide Gamut RGB</source>
        <translation>Wide Gamut RGB</translation>
    </message>
    <message>
        <source>ICC Profile</source>
        <translation>ICC-Profil</translation>
    </message>
    <message>
        <source>Uncalibrated</source>
        <translation>Nicht kalibriert</translation>
    </message>
    <message>
        <source>Not defined</source>
        <translation>Nicht festgelegt</translation>
    </message>
    <message>
        <source>Manual</source>
        <translation>Manuell</translation>
    </message>
    <message>
        <source>Program AE</source>
        <translation>Programmautomatik</translation>
    </message>
    <message>
        <source>Aperture priority</source>
        <translation>Blendenvorwahl</translation>
    </message>
    <message>
        <source>Shutter speed priority</source>
        <translation>Zeitvorwahl</translation>
    </message>
    <message>
        <source>Creative program (biased toward depth of field)</source>
        <translation>Kreativprogramm (für große Schärfentiefe)</translation>
    </message>
    <message>
        <source>Action program (biased toward fast shutter speed)</source>
        <translation>Sportprogramm (für kurze Belichtungszeiten)</translation>
    </message>
    <message>
        <source>Portrait mode (for closeup photos with the background out of focus)</source>
        <translation>Porträt (Nahaufnahme mit unscharfem Hintergrund)</translation>
    </message>
    <message>
        <source>Landscape mode (for landscape photos with the background in focus)</source>
        <translation>Landschaft (mit scharfem Hintergrund)</translation>
    </message>
    <message>
        <source>Bulb</source>
        <translation>Langzeitbelichtung (Bulb)</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unbekannt</translation>
    </message>
    <message>
        <source>Average</source>
        <translation>Integral</translation>
    </message>
    <message>
        <source>Center-weighted Average</source>
        <translation>Mittenbetont integral</translation>
    </message>
    <message>
        <source>Spot</source>
        <translation>Spot</translation>
    </message>
    <message>
        <source>MultiSpot</source>
        <translation>Mehrfach-Spot</translation>
    </message>
    <message>
        <source>Multi-segment (or Pattern) </source>
        <translation>Mehrfeld (Matrix)</translation>
    </message>
    <message>
        <source>Partial</source>
        <translation>Selektiv</translation>
    </message>
    <message>
        <source>Daylight</source>
        <translation>Tageslicht</translation>
    </message>
    <message>
        <source>Fluorescent</source>
        <translation>Leuchtstofflampe</translation>
    </message>
    <message>
        <source>Tungsten (incandescent light)</source>
        <translation>Kunstlicht (Glühlampe)</translation>
    </message>
    <message>
        <source>Flash</source>
        <translation>Blitz</translation>
    </message>
    <message>
        <source>Fine weather</source>
        <translation>Sonnig</translation>
    </message>
    <message>
        <source>Cloudy weather</source>
        <translation>Bewölkt</translation>
    </message>
    <message>
        <source>Shade</source>
        <translation>Schatten</translation>
    </message>
    <message>
        <source>Daylight fluorescent (D 5700 – 7100K)</source>
        <translation>Tageslicht-Leuchtstofflampe (D 5700 – 7100K)</translation>
    </message>
    <message>
        <source>Day white fluorescent (N 4600 – 5400K)</source>
        <translation>Neutralweiße Leuchtstofflampe (N 4600 – 5400K)</translation>
    </message>
    <message>
        <source>Cool white fluorescent (W 3900 – 4500K)</source>
        <translation>Kaltweiße Leuchtstofflampe (W 3900 – 4500K)</translation>
    </message>
    <message>
        <source>White fluorescent (WW 3200 – 3700K)</source>
        <translation>Warmweiße Leuchtstofflampe (WW 3200 – 3700K)</translation>
    </message>
    <message>
        <source>Standard light A</source>
        <translation>Normlicht A</translation>
    </message>
    <message>
        <source>Standard light B</source>
        <translation>Normlicht B</translation>
    </message>
    <message>
        <source>Standard light C</source>
        <translation>Normlicht C</translation>
    </message>
    <message>
        <source>ISO studio tungsten</source>
        <translation>ISO-Studio-Kunstlicht</translation>
    </message>
    <message>
        <source>other light source</source>
        <translation>andere Lichtquelle</translation>
    </message>
    <message>
        <source>Monochrome area</source>
        <translation>Monochromer Flächensensor</translation>
    </message>
    <message>
        <source>One-chip color area sensor</source>
        <translation>Ein-Chip-Farbflächensensor</translation>
    </message>
    <message>
        <source>Two-chip color area sensor</source>
        <translation>Zwei-Chip-Farbflächensensor</translation>
    </message>
    <message>
        <source>Three-chip color area sensor</source>
        <translation>Drei-Chip-Farbflächensensor</translation>
    </message>
    <message>
        <source>Color sequential area sensor</source>
        <translation>Farbsequenzieller Flächensensor</translation>
    </message>
    <message>
        <source>Monochrome linear</source>
        <translation>Monochromer Zeilensensor</translation>
    </message>
    <message>
        <source>Trilinear sensor</source>
        <translation>Trilinearer Sensor</translation>
    </message>
    <message>
        <source>Color sequential linear sensor</source>
        <translation>Farbsequenzieller Zeilensensor</translation>
    </message>
    <message>
        <source>Film Scanner</source>
        <translation>Filmscanner</translation>
    </message>
    <message>
        <source>Reflection Print Scanner</source>
        <translation>Aufsichtsscanner</translation>
    </message>
    <message>
        <source>A directly photographed image</source>
        <translation>Direkt aufgenommenes Bild</translation>
    </message>
    <message>
        <source>Normal process</source>
        <translation>Normale Verarbeitung</translation>
    </message>
    <message>
        <source>Custom process</source>
        <translation>Eigene Verarbeitung</translation>
    </message>
    <message>
        <source>Auto exposure</source>
        <translation>Automatische Belichtung</translation>
    </message>
    <message>
        <source>Manual exposure</source>
        <translation>Manuelle Belichtung</translation>
    </message>
    <message>
        <source>Auto bracket</source>
        <translation>Belichtungsreihe</translation>
    </message>
    <message>
        <source>Auto white balance</source>
        <translation>Automatischer Weißabgleich</translation>
    </message>
    <message>
        <source>Manual white balance</source>
        <translation>Manueller Weißabgleich</translation>
    </message>
    <message>
        <source>Standard</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Landscape</source>
        <translation>Landschaft</translation>
    </message>
    <message>
        <source>Portrait</source>
        <translation>Porträt</translation>
    </message>
    <message>
        <source>Night scene</source>
        <translation>Nachtaufnahme</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Low gain up</source>
        <translation>Geringe Verstärkung</translation>
    </message>
    <message>
        <source>High gain up</source>
        <translation>Hohe Verstärkung</translation>
    </message>
    <message>
        <source>Low gain down</source>
        <translation>Geringe Abschwächung</translation>
    </message>
    <message>
        <source>High gain down</source>
        <translation>Hohe Abschwächung</translation>
    </message>
    <message>
        <source>Normal</source>
        <translation>Normal</translation>
    </message>
    <message>
        <source>Soft</source>
        <translation>Weich</translation>
    </message>
    <message>
        <source>Hard</source>
        <translation>Hart</translation>
    </message>
    <message>
        <source>Low saturation</source>
        <translation>Geringe Sättigung</translation>
    </message>
    <message>
        <source>High saturation</source>
        <translation>Hohe Sättigung</translation>
    </message>
    <message>
        <source>Macro</source>
        <translation>Makro</translation>
    </message>
    <message>
        <source>Close view</source>
        <translation>Nah</translation>
    </message>
    <message>
        <source>Distant view</source>
        <translation>Fern</translation>
    </message>
    <message>
        <source>Uncompressed</source>
        <translation>Unkomprimiert</translation>
    </message>
    <message>
        <source>Horizontal</source>
        <translation>Horizontal</translation>
    </message>
    <message>
        <source>Mirror horizontal</source>
        <translation>Horizontal gespiegelt</translation>
    </message>
    <message>
        <source>Rotate 180°</source>
        <translation>Um 180° gedreht</translation>
    </message>
    <message>
        <source>Mirror vertical</source>
        <translation>Vertikal gespiegelt</translation>
    </message>
    <message>
        <source>Mirror horizontal and rotate 270° CW</source>
        <translation>Horizontal gespiegelt und um 270° im Uhrzeigersinn gedreht</translation>
    </message>
    <message>
        <source>Rotate 90° CW</source>
        <translation>Um 90° im Uhrzeigersinn gedreht</translation>
    </message>
    <message>
        <source>Mirror horizontal and rotate 90° CW</source>
        <translation>Horizontal gespiegelt und um 90° im Uhrzeigersinn gedreht</translation>
    </message>
    <message>
        <source>Rotate 270° CW</source>
        <translation>Um 270° im Uhrzeigersinn gedreht</translation>
    </message>
    <message>
        <source>Inches</source>
        <translation>Zoll</translation>
    </message>
    <message>
        <source>Centimeters</source>
        <translation>Zentimeter</translation>
    </message>
    <message>
        <source>North latitude</source>
        <translation>Nördliche Breite</translation>
    </message>
    <message>
        <source>South latitude</source>
        <translation>Südliche Breite</translation>
    </message>
    <message>
        <source>East longitude</source>
        <translation>Östliche Länge</translation>
    </message>
    <message>
        <source>West longitude</source>
        <translation>Westliche Länge</translation>
    </message>
    <message>
        <source>Sea level</source>
        <translation>Über dem Meeresspiegel</translation>
    </message>
    <message>
        <source>Below Sea level</source>
        <translation>Unter dem Meeresspiegel</translation>
    </message>
    <message>
        <source>Measurement in progress</source>
        <translation>Messung läuft</translation>
    </message>
    <message>
        <source>Measurement Interoperability</source>
        <translation>Messung ungültig</translation>
    </message>
    <message>
        <source>2-dimensional measurement</source>
        <translation>Zweidimensionale Messung</translation>
    </message>
    <message>
        <source>3-dimensional measurement</source>
        <translation>Dreidimensionale Messung</translation>
    </message>
    <message>
        <source>Kilometers per hour</source>
        <translation>Kilometer pro Stunde</translation>
    </message>
    <message>
        <source>Miles per hour</source>
        <translation>Meilen pro Stunde</translation>
    </message>
    <message>
        <source>Knots</source>
        <translation>Knoten</translation>
    </message>
    <message>
        <source>True North</source>
        <translation>Geografisch Nord</translation>
    </message>
    <message>
        <source>Magnetic North</source>
        <translation>Magnetisch Nord</translation>
    </message>
    <message>
        <source>Kilometers</source>
        <translation>Kilometer</translation>
    </message>
    <message>
        <source>Miles</source>
        <translation>Meilen</translation>
    </message>
    <message>
        <source>Nautical Miles</source>
        <translation>Seemeilen</translation>
    </message>
    <message>
        <source>Measurement without differential correction</source>
        <translation>Messung ohne Differenzialkorrektur</translation>
    </message>
    <message>
        <source>Differential correction applied</source>
        <translation>Mit Differenzialkorrektur</translation>
    </message>
    <message>
        <source>Flash fired</source>
        <translation>Blitz ausgelöst</translation>
    </message>
    <message>
        <source>Flash did not fire</source>
        <translation>Blitz nicht ausgelöst</translation>
    </message>
    <message>
        <source>Strobe return light detected</source>
        <translation>Reflexion erkannt</translation>
    </message>
    <message>
        <source>Strobe return light not detected</source>
        <translation>Reflexion nicht erkannt</translation>
    </message>
    <message>
        <source>Auto mode</source>
        <translation>Automatik</translation>
    </message>
    <message>
        <source>Compulsory flash suppression</source>
        <translation>Blitz aus</translation>
    </message>
    <message>
        <source>Compulsory flash firing</source>
        <translation>Blitz erzwungen</translation>
    </message>
    <message>
        <source>No flash function</source>
        <translation>Keine Blitzfunktion</translation>
    </message>
    <message>
        <source>Red-eye reduction supported</source>
        <translation>Rote-Augen-Reduzierung</translation>
    </message>
</context>
<context>
    <name>ToolBarModel</name>
    <message>
        <source>Favorite</source>
        <translation>Favorit</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this video?</source>
        <translation>Möchten Sie dieses Video wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this photo?</source>
        <translation>Möchten Sie dieses Foto wirklich löschen?</translation>
    </message>
    <message>
        <source>Delete Video</source>
        <translation>Video löschen</translation>
    </message>
    <message>
        <source>Delete Photo</source>
        <translation>Foto löschen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Burst Photos</source>
        <translation>Serienfotos</translation>
    </message>
</context>
<context>
    <name>TrackLogPage</name>
    <message>
        <source>From a track log...</source>
        <translation>Aus einer Routenaufzeichnung …</translation>
    </message>
    <message>
        <source>Choose a log...</source>
        <translation>Aufzeichnung auswählen …</translation>
    </message>
    <message>
        <source>Camera clock offset</source>
        <translation>Abweichung der Kamerauhr</translation>
    </message>
    <message>
        <source>Longest gap</source>
        <translation>Längste Lücke</translation>
    </message>
    <message>
        <source>Track logs (*.gpx *.kml *.nmea *.txt *.log)</source>
        <translation>Routenaufzeichnungen (*.gpx *.kml *.nmea *.txt *.log)</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>UserSettings</name>
    <message>
        <source>Unchanged</source>
        <translation>Unverändert</translation>
    </message>
    <message>
        <source>No location data in image</source>
        <translation>Keine Ortsdaten im Bild</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>See and fix what photos and videos say about themselves.</source>
        <translation>Sehen und korrigieren, was Fotos und Videos über sich selbst erzählen.</translation>
    </message>
    <message>
        <source>Write pictures of every screen into &lt;dir&gt; and quit.</source>
        <translation>Bilder jeder Ansicht in &lt;dir&gt; schreiben und beenden.</translation>
    </message>
    <message>
        <source>Open the photo last viewed.</source>
        <translation>Das zuletzt angesehene Foto öffnen.</translation>
    </message>
    <message>
        <source>Photos and videos, or a tessorin://ALBUM link.</source>
        <translation>Fotos und Videos oder ein tessorin://ALBUM-Link.</translation>
    </message>
</context>
</TS>
