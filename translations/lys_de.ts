<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ColorsDock</name>
    <message>
        <source>Colors</source>
        <translation>Farben</translation>
    </message>
</context>
<context>
    <name>DefectDock</name>
    <message>
        <source>Defects</source>
        <translation>Defekte</translation>
    </message>
</context>
<context>
    <name>DefectPanel</name>
    <message>
        <source>Save &amp;Report…</source>
        <translation>&amp;Bericht sichern…</translation>
    </message>
    <message>
        <source>Defects</source>
        <translation>Defekte</translation>
    </message>
    <message>
        <source>Defects are listed here after the analysis &quot;Defect volume&quot;.</source>
        <translation>Hier stehen nach der Analyse „Defektvolumen“ die Defekte.</translation>
    </message>
    <message>
        <source>Defects: %1   Volume: %2   Porosity: %3 %</source>
        <translation>Defekte: %1   Volumen: %2   Porosität: %3 %</translation>
    </message>
    <message>
        <source>Save Report</source>
        <translation>Bericht sichern</translation>
    </message>
    <message>
        <source>Reports (*.csv *.json)</source>
        <translation>Berichte (*.csv *.json)</translation>
    </message>
    <message>
        <source>The report is not written</source>
        <translation>Der Bericht ist nicht geschrieben</translation>
    </message>
    <message>
        <source>Pass: %1   Warn: %2   Fail: %3</source>
        <translation>Gut: %1   Grenzwertig: %2   Ausschuss: %3</translation>
    </message>
    <message>
        <source>&amp;Judged by:</source>
        <translation>Beurteilt &amp;nach:</translation>
    </message>
    <message>
        <source>Tolerance table</source>
        <translation>Toleranztabelle</translation>
    </message>
</context>
<context>
    <name>DefectTableModel</name>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>X</source>
        <translation>X</translation>
    </message>
    <message>
        <source>Y</source>
        <translation>Y</translation>
    </message>
    <message>
        <source>Z</source>
        <translation>Z</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Sphericity</source>
        <translation>Sphärizität</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Gut</translation>
    </message>
    <message>
        <source>Warn</source>
        <translation>Grenzwertig</translation>
    </message>
    <message>
        <source>Fail</source>
        <translation>Ausschuss</translation>
    </message>
    <message>
        <source>Verdict</source>
        <translation>Urteil</translation>
    </message>
</context>
<context>
    <name>DefectVolumeAnalysis</name>
    <message>
        <source>Defect volume</source>
        <translation>Defektvolumen</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Nummer</translation>
    </message>
    <message>
        <source>Volume (mm³)</source>
        <translation>Volumen (mm³)</translation>
    </message>
    <message>
        <source>X (mm)</source>
        <translation>X (mm)</translation>
    </message>
    <message>
        <source>Y (mm)</source>
        <translation>Y (mm)</translation>
    </message>
    <message>
        <source>Z (mm)</source>
        <translation>Z (mm)</translation>
    </message>
    <message>
        <source>Size (mm)</source>
        <translation>Größe (mm)</translation>
    </message>
    <message>
        <source>Sphericity</source>
        <translation>Sphärizität</translation>
    </message>
    <message>
        <source>Defects</source>
        <translation>Defekte</translation>
    </message>
    <message>
        <source>Volume of all defects (mm³)</source>
        <translation>Volumen aller Defekte (mm³)</translation>
    </message>
    <message>
        <source>Porosity (%)</source>
        <translation>Porosität (%)</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>Schwellwert</translation>
    </message>
</context>
<context>
    <name>LegendDock</name>
    <message>
        <source>Legend</source>
        <translation>Legende</translation>
    </message>
</context>
<context>
    <name>LyqAnalysisRun</name>
    <message>
        <source>%1 is not written: the analysis has no report.</source>
        <translation>%1 wird nicht geschrieben: Die Analyse hat keinen Bericht.</translation>
    </message>
</context>
<context>
    <name>LyqBackgroundJob</name>
    <message>
        <source>There is not enough memory. Close other programs or take a part of the data.</source>
        <translation>Der Speicher reicht nicht. Schließen Sie andere Programme oder nehmen Sie nur einen Teil der Daten.</translation>
    </message>
    <message>
        <source>No further thread can be started. Close other programs and try again.</source>
        <translation>Es kann kein weiterer Thread gestartet werden. Schließen Sie andere Programme und versuchen Sie es noch einmal.</translation>
    </message>
</context>
<context>
    <name>LyqCameraWidget</name>
    <message>
        <source>A view changes with every frame: a handler or a layer reports a change in each update. The view is not updated until something else changes.</source>
        <translation>Eine Ansicht ändert sich mit jedem Bild: Ein Handler oder eine Ebene meldet bei jeder Aktualisierung eine Änderung. Die Ansicht wird erst wieder aktualisiert, wenn sich etwas anderes ändert.</translation>
    </message>
    <message>
        <source>The display platform “%1” cannot show OpenGL, so views stay empty. Start the program on a desktop, or with xvfb-run.</source>
        <translation>Die Anzeigeplattform „%1“ kann kein OpenGL, die Ansichten bleiben daher leer. Starten Sie das Programm auf einem Desktop oder mit xvfb-run.</translation>
    </message>
    <message>
        <source>OpenGL could not be started, so views stay empty. Install a graphics driver with OpenGL 2.1 or later, for example Mesa.</source>
        <translation>OpenGL konnte nicht gestartet werden, die Ansichten bleiben daher leer. Installieren Sie einen Grafiktreiber mit OpenGL 2.1 oder neuer, zum Beispiel Mesa.</translation>
    </message>
    <message>
        <source>This OpenGL offers its core profile only, but views need the compatibility profile, so they stay empty. Install a driver that offers it, for example Mesa.</source>
        <translation>Dieses OpenGL bietet nur sein Core-Profil, die Ansichten brauchen das Kompatibilitätsprofil und bleiben daher leer. Installieren Sie einen Treiber, der es bietet, zum Beispiel Mesa.</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSmoothDialog</name>
    <message>
        <source>Create smooth colortable</source>
        <translation>Stetige Farbtabelle erzeugen</translation>
    </message>
    <message>
        <source>Invalid parameters</source>
        <translation>Ungültige Parameter</translation>
    </message>
    <message>
        <source>Could not create lookup table.
Invalid parameters given.</source>
        <translation>Die Farbtabelle konnte nicht erzeugt werden.
Die angegebenen Parameter sind ungültig.</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSmoothDialogUI</name>
    <message>
        <source>Create smooth table</source>
        <translation>Stetige Tabelle erzeugen</translation>
    </message>
    <message>
        <source>Create continuous lookup-table with</source>
        <translation>Stetige Farbtabelle erzeugen mit</translation>
    </message>
    <message>
        <source>from</source>
        <translation>&amp;von</translation>
    </message>
    <message>
        <source>to</source>
        <translation>&amp;bis</translation>
    </message>
    <message>
        <source>type</source>
        <translation>T&amp;yp</translation>
    </message>
    <message>
        <source>Rainbow</source>
        <translation>Regenbogen</translation>
    </message>
    <message>
        <source>Reverse Rainbow</source>
        <translation>Umgekehrter Regenbogen</translation>
    </message>
    <message>
        <source>Hue Cycle</source>
        <translation>Farbkreis</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>&amp;OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSphereSegmentSteppedDialog</name>
    <message>
        <source>Create stepped colortable</source>
        <translation>Gestufte Farbtabelle erzeugen</translation>
    </message>
    <message>
        <source>Invalid parameters</source>
        <translation>Ungültige Parameter</translation>
    </message>
    <message>
        <source>Could not create lookup table.
Invalid parameters given.</source>
        <translation>Die Farbtabelle konnte nicht erzeugt werden.
Die angegebenen Parameter sind ungültig.</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSphereSegmentSteppedDialogUI</name>
    <message>
        <source>Create stepped table</source>
        <translation>Gestufte Tabelle erzeugen</translation>
    </message>
    <message>
        <source>Create stepped lookup-table with</source>
        <translation>Gestufte Farbtabelle erzeugen mit</translation>
    </message>
    <message>
        <source>from</source>
        <translation>&amp;von</translation>
    </message>
    <message>
        <source>to</source>
        <translation>&amp;bis</translation>
    </message>
    <message>
        <source>step</source>
        <translation>&amp;Schritt</translation>
    </message>
    <message>
        <source>type</source>
        <translation>T&amp;yp</translation>
    </message>
    <message>
        <source>Rainbow</source>
        <translation>Regenbogen</translation>
    </message>
    <message>
        <source>Reverse Rainbow</source>
        <translation>Umgekehrter Regenbogen</translation>
    </message>
    <message>
        <source>Hue Cycle</source>
        <translation>Farbkreis</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>&amp;OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSteppedDialog</name>
    <message>
        <source>Create stepped colortable</source>
        <translation>Gestufte Farbtabelle erzeugen</translation>
    </message>
    <message>
        <source>Invalid parameters</source>
        <translation>Ungültige Parameter</translation>
    </message>
    <message>
        <source>Could not create lookup table.
Invalid parameters given.</source>
        <translation>Die Farbtabelle konnte nicht erzeugt werden.
Die angegebenen Parameter sind ungültig.</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableCreateSteppedDialogUI</name>
    <message>
        <source>Create stepped table</source>
        <translation>Gestufte Tabelle erzeugen</translation>
    </message>
    <message>
        <source>Create stepped lookup-table with</source>
        <translation>Gestufte Farbtabelle erzeugen mit</translation>
    </message>
    <message>
        <source>from</source>
        <translation>&amp;von</translation>
    </message>
    <message>
        <source>to</source>
        <translation>&amp;bis</translation>
    </message>
    <message>
        <source>step</source>
        <translation>&amp;Schritt</translation>
    </message>
    <message>
        <source>type</source>
        <translation>T&amp;yp</translation>
    </message>
    <message>
        <source>Rainbow</source>
        <translation>Regenbogen</translation>
    </message>
    <message>
        <source>Reverse Rainbow</source>
        <translation>Umgekehrter Regenbogen</translation>
    </message>
    <message>
        <source>Hue Cycle</source>
        <translation>Farbkreis</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>&amp;OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableEditor</name>
    <message>
        <source>Sections</source>
        <translation>Abschnitte</translation>
    </message>
    <message>
        <source>Sections [%1]</source>
        <translation>Abschnitte [%1]</translation>
    </message>
    <message>
        <source>Change auto-label settings</source>
        <translation>Automatische Beschriftung ändern</translation>
    </message>
    <message>
        <source>Change auto-scale settings</source>
        <translation>Automatische Skalierung ändern</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no number.</source>
        <translation>„%1“ ist keine Zahl.</translation>
    </message>
    <message>
        <source>%1 is larger than any number that a boundary can have.</source>
        <translation>%1 ist größer als jede Zahl, die eine Grenze haben kann.</translation>
    </message>
    <message>
        <source>Change colorbar settings</source>
        <translation>Farbskala ändern</translation>
    </message>
    <message>
        <source>Set transparency</source>
        <translation>Transparenz festlegen</translation>
    </message>
    <message>
        <source>Alpha value</source>
        <translation>Alphawert</translation>
    </message>
    <message>
        <source>split</source>
        <translation>Teilen</translation>
    </message>
    <message>
        <source>merge</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Constant</source>
        <translation>Konstant</translation>
    </message>
    <message>
        <source>Gradient</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Rainbow</source>
        <translation>Regenbogen</translation>
    </message>
    <message>
        <source>Reverse Rainbow</source>
        <translation>Umgekehrter Regenbogen</translation>
    </message>
    <message>
        <source>Hue cycle</source>
        <translation>Farbkreis</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Fortsetzen</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableEditorUI</name>
    <message>
        <source>LUT</source>
        <translation>Farbtabelle</translation>
    </message>
    <message>
        <source>Sections</source>
        <translation>Abschnitte</translation>
    </message>
    <message>
        <source>From</source>
        <translation>Von</translation>
    </message>
    <message>
        <source>To</source>
        <translation>Bis</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Detail</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Create smooth</source>
        <translation>Ste&amp;tig erzeugen</translation>
    </message>
    <message>
        <source>Create stepped</source>
        <translation>&amp;Gestuft erzeugen</translation>
    </message>
    <message>
        <source>Create stepped (equi-surface)</source>
        <translation>Gestuft erzeugen (flächengleich)</translation>
    </message>
    <message>
        <source>Auto tickmarks</source>
        <translation>Automatische Teilstr&amp;iche</translation>
    </message>
    <message>
        <source>Auto scale</source>
        <translation>Automatisch s&amp;kalieren</translation>
    </message>
    <message>
        <source>checkBox3</source>
        <translation>checkBox3</translation>
    </message>
    <message>
        <source>Preset selection</source>
        <translation>Voreinstellung</translation>
    </message>
    <message>
        <source>&lt;special_options&gt;</source>
        <translation>&lt;special_options&gt;</translation>
    </message>
    <message>
        <source>&lt;opt0&gt;</source>
        <translation>&lt;opt0&gt;</translation>
    </message>
    <message>
        <source>&lt;opt1&gt;</source>
        <translation>&lt;opt1&gt;</translation>
    </message>
    <message>
        <source>&lt;opt2&gt;</source>
        <translation>&lt;opt2&gt;</translation>
    </message>
    <message>
        <source>&lt;opt3&gt;</source>
        <translation>&lt;opt3&gt;</translation>
    </message>
    <message>
        <source>&lt;opt0_a&gt;</source>
        <translation>&lt;opt0_a&gt;</translation>
    </message>
    <message>
        <source>&lt;opt1_a&gt;</source>
        <translation>&lt;opt1_a&gt;</translation>
    </message>
    <message>
        <source>&lt;opt2_a&gt;</source>
        <translation>&lt;opt2_a&gt;</translation>
    </message>
    <message>
        <source>&lt;opt3_a&gt;</source>
        <translation>&lt;opt3_a&gt;</translation>
    </message>
    <message>
        <source>&lt;special_colors&gt;</source>
        <translation>&lt;special_colors&gt;</translation>
    </message>
    <message>
        <source>&lt;col0&gt;</source>
        <translation>&lt;col0&gt;</translation>
    </message>
    <message>
        <source>&lt;col1&gt;</source>
        <translation>&lt;col1&gt;</translation>
    </message>
    <message>
        <source>&lt;col2&gt;</source>
        <translation>&lt;col2&gt;</translation>
    </message>
    <message>
        <source>&lt;col3&gt;</source>
        <translation>&lt;col3&gt;</translation>
    </message>
    <message>
        <source>&lt;act0&gt;</source>
        <translation>&lt;act0&gt;</translation>
    </message>
    <message>
        <source>Double click to change a color, or press Return. Of a gradient, the left half (Return) is its start and the right half (Shift+Return) its end.</source>
        <translation>Ein Doppelklick oder die Eingabetaste ändert eine Farbe. Bei einem Verlauf ist die linke Hälfte (Eingabetaste) der Anfang und die rechte Hälfte (Umschalt+Eingabetaste) das Ende.</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableOptionsWidget</name>
    <message>
        <source>&amp;Quantity</source>
        <translation>&amp;Größe</translation>
    </message>
    <message>
        <source>Black &amp;below the range</source>
        <translation>Schwarz &amp;unter dem Bereich</translation>
    </message>
    <message>
        <source>Black &amp;above the range</source>
        <translation>Schwarz über dem &amp;Bereich</translation>
    </message>
    <message>
        <source>&amp;Least boundary</source>
        <translation>&amp;Kleinste Grenze</translation>
    </message>
    <message>
        <source>&amp;Greatest boundary</source>
        <translation>G&amp;rößte Grenze</translation>
    </message>
    <message>
        <source>unlimited</source>
        <translation>unbegrenzt</translation>
    </message>
    <message>
        <source>&amp;Fit to data</source>
        <translation>An &amp;Daten anpassen</translation>
    </message>
    <message>
        <source>Data from %1 to %2</source>
        <translation>Daten von %1 bis %2</translation>
    </message>
    <message>
        <source>No data range</source>
        <translation>Kein Datenbereich</translation>
    </message>
    <message>
        <source>Change quantity</source>
        <translation>Größe ändern</translation>
    </message>
    <message>
        <source>Change colors beyond the range</source>
        <translation>Farben außerhalb des Bereichs ändern</translation>
    </message>
    <message>
        <source>Change maximum range</source>
        <translation>Größten Bereich ändern</translation>
    </message>
    <message>
        <source>The data lies outside of the boundaries that are allowed. Change their limits first.</source>
        <translation>Die Daten liegen außerhalb der erlaubten Grenzen. Ändern Sie diese zuerst.</translation>
    </message>
    <message>
        <source>The table has no range that could be stretched. Create a table first.</source>
        <translation>Die Tabelle hat keinen Bereich, der gedehnt werden könnte. Erzeugen Sie zuerst eine Tabelle.</translation>
    </message>
    <message>
        <source>Fit to data</source>
        <translation>An Daten anpassen</translation>
    </message>
    <message>
        <source>The boundaries could not be changed.</source>
        <translation>Die Grenzen konnten nicht geändert werden.</translation>
    </message>
    <message>
        <source>Fitted to that part of the data in which boundaries are allowed.</source>
        <translation>An den Teil der Daten angepasst, in dem Grenzen erlaubt sind.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no number with a unit of the quantity. Empty: no limit.</source>
        <translation>„%1“ ist keine Zahl mit einer Einheit der Größe. Leer: keine Grenze.</translation>
    </message>
    <message>
        <source>%1 is beyond what a boundary can be. Empty: no limit.</source>
        <translation>%1 liegt jenseits dessen, was eine Grenze sein kann. Leer: keine Grenze.</translation>
    </message>
    <message>
        <source>%1 is not below the greatest boundary.</source>
        <translation>%1 liegt nicht unter der größten Grenze.</translation>
    </message>
    <message>
        <source>%1 is not above the least boundary.</source>
        <translation>%1 liegt nicht über der kleinsten Grenze.</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableRenderSettingsEditorWidget</name>
    <message>
        <source>Change colorbar settings</source>
        <translation>Farbskala ändern</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Unten</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Mitte</translation>
    </message>
    <message>
        <source>%1, %2 pt</source>
        <translation>%1, %2 pt</translation>
    </message>
    <message>
        <source>, bold</source>
        <translation>, fett</translation>
    </message>
    <message>
        <source>, italic</source>
        <translation>, kursiv</translation>
    </message>
    <message>
        <source>, underline</source>
        <translation>, unterstrichen</translation>
    </message>
    <message>
        <source>, overline</source>
        <translation>, überstrichen</translation>
    </message>
    <message>
        <source>, strike out</source>
        <translation>, durchgestrichen</translation>
    </message>
</context>
<context>
    <name>LyqColorLookupTableRenderSettingsEditorWidgetUI</name>
    <message>
        <source>On</source>
        <translation>Ein</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Mitte</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Unten</translation>
    </message>
    <message>
        <source>Restore Defaults</source>
        <translation>Vorgaben &amp;wiederherstellen</translation>
    </message>
    <message>
        <source>Font</source>
        <comment>button</comment>
        <translation>Schrift</translation>
    </message>
    <message>
        <source>Colorbar visibility</source>
        <translation>&amp;Sichtbarkeit</translation>
    </message>
    <message>
        <source>Colorbar thickness [pixel]</source>
        <translation>&amp;Dicke [Pixel]</translation>
    </message>
    <message>
        <source>Colorbar stretch [%]</source>
        <translation>&amp;Länge [%]</translation>
    </message>
    <message>
        <source>Colorbar position</source>
        <translation>&amp;Position</translation>
    </message>
    <message>
        <source>Text position</source>
        <translation>&amp;Textposition</translation>
    </message>
    <message>
        <source>Colorbar alignment</source>
        <translation>&amp;Ausrichtung</translation>
    </message>
    <message>
        <source>Font outline</source>
        <translation>Schrift&amp;umriss</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Schr&amp;ift</translation>
    </message>
    <message>
        <source>Font outline color</source>
        <translation>Umriss&amp;farbe</translation>
    </message>
    <message>
        <source>Text alignment</source>
        <translation>Textausrichtu&amp;ng</translation>
    </message>
    <message>
        <source>Caption</source>
        <translation>&amp;Beschriftung</translation>
    </message>
    <message>
        <source>Font color</source>
        <translation>Schriftfarb&amp;e</translation>
    </message>
    <message>
        <source>Caption preview</source>
        <translation>Vorschau</translation>
    </message>
</context>
<context>
    <name>LyqPresetColortableSaveDialogExtensionWidget</name>
    <message>
        <source>Absolute preset</source>
        <translation>Absolute Vorlage</translation>
    </message>
</context>
<context>
    <name>LyqPresetComboBox</name>
    <message>
        <source>No preset</source>
        <translation>Keine Vorlage</translation>
    </message>
    <message>
        <source>Save preset...</source>
        <translation>Vorlage speichern...</translation>
    </message>
    <message>
        <source>Manage presets...</source>
        <translation>Vorlagen verwalten...</translation>
    </message>
    <message>
        <source>Presets</source>
        <translation>Vorlagen</translation>
    </message>
</context>
<context>
    <name>LyqPresetHandler</name>
    <message>
        <source>Only presets of one&apos;s own can be changed; save under another name.</source>
        <translation>Nur eigene Vorlagen lassen sich ändern; speichern Sie unter einem anderen Namen.</translation>
    </message>
    <message>
        <source>There is no preset &quot;%1&quot;.</source>
        <translation>Es gibt keine Vorlage „%1“.</translation>
    </message>
    <message>
        <source>A built-in preset has no file; save it under a name first.</source>
        <translation>Eine eingebaute Vorlage hat keine Datei; speichern Sie sie zuerst unter einem Namen.</translation>
    </message>
    <message>
        <source>Nothing is being edited that a preset could be applied to.</source>
        <translation>Es wird nichts bearbeitet, worauf eine Vorlage angewendet werden könnte.</translation>
    </message>
    <message>
        <source>The preset &quot;%1&quot; cannot be applied.</source>
        <translation>Die Vorlage „%1“ lässt sich nicht anwenden.</translation>
    </message>
    <message>
        <source>Apply preset &quot;%1&quot;</source>
        <translation>Vorlage „%1“ anwenden</translation>
    </message>
    <message>
        <source>Nothing is being edited that could be saved.</source>
        <translation>Es wird nichts bearbeitet, das gespeichert werden könnte.</translation>
    </message>
    <message>
        <source>The preset &quot;%1&quot; cannot be saved.</source>
        <translation>Die Vorlage „%1“ lässt sich nicht speichern.</translation>
    </message>
</context>
<context>
    <name>LyqPresetManageDialog</name>
    <message>
        <source>Presets (*.json);;All files (*)</source>
        <translation>Vorlagen (*.json);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Manage presets</source>
        <translation>Vorlagen verwalten</translation>
    </message>
    <message>
        <source>Manage presets - %1</source>
        <translation>Vorlagen verwalten – %1</translation>
    </message>
    <message>
        <source>Presets</source>
        <translation>Vorlagen</translation>
    </message>
    <message>
        <source>&amp;Apply</source>
        <translation>An&amp;wenden</translation>
    </message>
    <message>
        <source>&amp;Rename...</source>
        <translation>&amp;Umbenennen...</translation>
    </message>
    <message>
        <source>&amp;Delete...</source>
        <translation>&amp;Löschen...</translation>
    </message>
    <message>
        <source>&amp;Import...</source>
        <translation>&amp;Importieren...</translation>
    </message>
    <message>
        <source>&amp;Export...</source>
        <translation>&amp;Exportieren...</translation>
    </message>
    <message>
        <source>My presets</source>
        <translation>Eigene Vorlagen</translation>
    </message>
    <message>
        <source>Installed presets</source>
        <translation>Mitgelieferte Vorlagen</translation>
    </message>
    <message>
        <source>Built-in presets</source>
        <translation>Eingebaute Vorlagen</translation>
    </message>
    <message>
        <source>Replace the preset &quot;%1&quot;?</source>
        <translation>Die Vorlage „%1“ ersetzen?</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>New name:</source>
        <translation>Neuer Name:</translation>
    </message>
    <message>
        <source>Delete the preset &quot;%1&quot;? This cannot be undone.</source>
        <translation>Die Vorlage „%1“ löschen? Das lässt sich nicht rückgängig machen.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Import presets</source>
        <translation>Vorlagen importieren</translation>
    </message>
    <message>
        <source>Export preset</source>
        <translation>Vorlage exportieren</translation>
    </message>
</context>
<context>
    <name>LyqPresetSaveDialog</name>
    <message>
        <source>Save preset</source>
        <translation>Vorlage speichern</translation>
    </message>
    <message>
        <source>Save preset - %1</source>
        <translation>Vorlage speichern – %1</translation>
    </message>
    <message>
        <source>Name of the preset</source>
        <translation>Name der Vorlage</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>Replace the preset &quot;%1&quot;?</source>
        <translation>Die Vorlage „%1“ ersetzen?</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
</context>
<context>
    <name>LyqPresetStore</name>
    <message>
        <source>%1: the folder cannot be opened: %2</source>
        <translation>%1: Der Ordner lässt sich nicht öffnen: %2</translation>
    </message>
    <message>
        <source>%1: the folder cannot be locked: %2</source>
        <translation>%1: Der Ordner lässt sich nicht sperren: %2</translation>
    </message>
    <message>
        <source>%1: the folder cannot be flushed to the disk: %2</source>
        <translation>%1: Der Ordner lässt sich nicht auf den Datenträger schreiben: %2</translation>
    </message>
    <message>
        <source>%1: another program is busy with the presets; try again later</source>
        <translation>%1: Ein anderes Programm arbeitet gerade mit den Vorlagen; versuchen Sie es später noch einmal</translation>
    </message>
    <message>
        <source>%1: the folder cannot be read: %2</source>
        <translation>%1: Der Ordner lässt sich nicht lesen: %2</translation>
    </message>
    <message>
        <source>There is no preset &quot;%1&quot; in %2.</source>
        <translation>In %2 gibt es keine Vorlage „%1“.</translation>
    </message>
    <message>
        <source>The presets that come with the program cannot be changed.</source>
        <translation>Die mitgelieferten Vorlagen lassen sich nicht ändern.</translation>
    </message>
    <message>
        <source>%1: the folder cannot be made: %2</source>
        <translation>%1: Der Ordner lässt sich nicht anlegen: %2</translation>
    </message>
    <message>
        <source>%1: this is a link, which presets are not written through; delete it first</source>
        <translation>%1: Dies ist eine Verknüpfung, durch die keine Vorlage geschrieben wird; löschen Sie sie zuerst</translation>
    </message>
    <message>
        <source>%1: something else lies in the place of this preset; move it away</source>
        <translation>%1: An der Stelle dieser Vorlage liegt etwas anderes; räumen Sie es beiseite</translation>
    </message>
    <message>
        <source>%1: cannot be examined: %2</source>
        <translation>%1: lässt sich nicht untersuchen: %2</translation>
    </message>
    <message>
        <source>There is a preset &quot;%1&quot; already.</source>
        <translation>Es gibt schon eine Vorlage „%1“.</translation>
    </message>
    <message>
        <source>%1: cannot be removed: %2</source>
        <translation>%1: lässt sich nicht entfernen: %2</translation>
    </message>
    <message>
        <source>A preset needs a name.</source>
        <translation>Eine Vorlage braucht einen Namen.</translation>
    </message>
    <message>
        <source>The name of a preset cannot hold the character 0.</source>
        <translation>Der Name einer Vorlage darf das Zeichen 0 nicht enthalten.</translation>
    </message>
    <message>
        <source>The name of a preset cannot be longer than %1 bytes.</source>
        <translation>Der Name einer Vorlage darf nicht länger als %1 Bytes sein.</translation>
    </message>
    <message>
        <source>The name of a preset cannot begin with an invisible byte order mark (U+FEFF).</source>
        <translation>Der Name einer Vorlage darf nicht mit einer unsichtbaren Bytereihenfolge-Marke (U+FEFF) beginnen.</translation>
    </message>
    <message>
        <source>The name of a preset must be text in UTF-8.</source>
        <translation>Der Name einer Vorlage muss Text in UTF-8 sein.</translation>
    </message>
    <message>
        <source>%1: this is a link, which presets do not follow</source>
        <translation>%1: Dies ist eine Verknüpfung, der Vorlagen nicht folgen</translation>
    </message>
    <message>
        <source>%1: this is no ordinary file</source>
        <translation>%1: Dies ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>%1: cannot be read: %2</source>
        <translation>%1: lässt sich nicht lesen: %2</translation>
    </message>
    <message>
        <source>%1: this is no whole preset; the file may be cut off or damaged</source>
        <translation>%1: Dies ist keine vollständige Vorlage; die Datei ist vielleicht abgeschnitten oder beschädigt</translation>
    </message>
</context>
<context>
    <name>LyqSpinBox</name>
    <message>
        <source>&quot;%1&quot; is no number.</source>
        <translation>„%1“ ist keine Zahl.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no number in %2 or in a unit like it.</source>
        <translation>„%1“ ist keine Zahl in %2 oder einer verwandten Einheit.</translation>
    </message>
    <message>
        <source>%1 is not between %2 and %3.</source>
        <translation>%1 liegt nicht zwischen %2 und %3.</translation>
    </message>
</context>
<context>
    <name>LyrAnalysis</name>
    <message>
        <source>needs %1 GiB of memory, and %2 GiB are free; close other programs or analyse a smaller part of the volume</source>
        <translation>braucht %1 GiB Speicher, und %2 GiB sind frei; schließen Sie andere Programme oder untersuchen Sie einen kleineren Teil des Volumens</translation>
    </message>
    <message>
        <source>not enough memory; close other programs or analyse a smaller part of the volume</source>
        <translation>zu wenig Speicher; schließen Sie andere Programme oder untersuchen Sie einen kleineren Teil des Volumens</translation>
    </message>
    <message>
        <source>ended by an error (%1); nothing was changed</source>
        <translation>durch einen Fehler beendet (%1); nichts wurde verändert</translation>
    </message>
    <message>
        <source>ended by an unknown error; nothing was changed</source>
        <translation>durch einen unbekannten Fehler beendet; nichts wurde verändert</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>abgebrochen</translation>
    </message>
    <message>
        <source>the volume falls into too many pieces at this threshold; choose another threshold or analyse a smaller part of the volume</source>
        <translation>das Volumen zerfällt bei diesem Schwellwert in zu viele Stücke; wählen Sie einen anderen Schwellwert oder untersuchen Sie einen kleineren Teil des Volumens</translation>
    </message>
    <message>
        <source>the volume has too many rows; analyse a smaller part of it</source>
        <translation>das Volumen hat zu viele Zeilen; untersuchen Sie einen kleineren Teil davon</translation>
    </message>
    <message>
        <source>there is no material, because no sample reaches the threshold; choose a lower threshold</source>
        <translation>es gibt kein Material, denn kein Wert erreicht den Schwellwert; wählen Sie einen niedrigeren Schwellwert</translation>
    </message>
    <message>
        <source>there is no volume; open one first</source>
        <translation>es gibt kein Volumen; öffnen Sie zuerst eines</translation>
    </message>
    <message>
        <source>the volume has no finite samples, so there is nothing to tell material from air by</source>
        <translation>das Volumen hat keine endlichen Werte, an denen sich Material und Luft unterscheiden ließen</translation>
    </message>
    <message>
        <source>all finite samples of the volume have the same value, so no threshold divides them into air and material; open another volume or give a threshold</source>
        <translation>alle endlichen Werte des Volumens sind gleich, sodass kein Schwellwert sie in Luft und Material trennt; öffnen Sie ein anderes Volumen oder geben Sie einen Schwellwert an</translation>
    </message>
    <message>
        <source>the threshold is not a finite number; give one between the grey values of air and material</source>
        <translation>der Schwellwert ist keine endliche Zahl; geben Sie eine zwischen den Grauwerten von Luft und Material an</translation>
    </message>
    <message>
        <source>there is no air, because all samples reach the threshold, and so no surface to measure from; choose a higher threshold</source>
        <translation>es gibt keine Luft, denn alle Werte erreichen den Schwellwert, und damit keine Oberfläche, von der aus gemessen würde; wählen Sie einen höheren Schwellwert</translation>
    </message>
</context>
<context>
    <name>LyrColoredLayer</name>
    <message>
        <source>Color Table</source>
        <translation>Farbtabelle</translation>
    </message>
    <message>
        <source>Legend Settings</source>
        <translation>Legendeneinstellungen</translation>
    </message>
</context>
<context>
    <name>LyrDefectLayer</name>
    <message>
        <source>Defect volume</source>
        <translation>Defektvolumen</translation>
    </message>
</context>
<context>
    <name>LyrGreyLayer</name>
    <message>
        <source>Gray values</source>
        <translation>Grauwerte</translation>
    </message>
</context>
<context>
    <name>LyrThicknessLayer</name>
    <message>
        <source>Wall thickness</source>
        <translation>Wandstärke</translation>
    </message>
</context>
<context>
    <name>LyrValueLayer</name>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Werte</translation>
    </message>
</context>
<context>
    <name>Placeholder</name>
    <message>
        <source>Wall thickness</source>
        <translation>Wandstärke</translation>
    </message>
    <message>
        <source>Variance</source>
        <translation>Abweichung</translation>
    </message>
    <message>
        <source>Fitpoint deviation</source>
        <translation>Abweichung der Fitpunkte</translation>
    </message>
    <message>
        <source>Defect volume</source>
        <translation>Defektvolumen</translation>
    </message>
    <message>
        <source>Value type</source>
        <translation>Art des Werts</translation>
    </message>
    <message>
        <source>Value unit</source>
        <translation>Einheit des Werts</translation>
    </message>
</context>
<context>
    <name>PluginHost</name>
    <message>
        <source>%1 is not a folder. Name the folder that holds the plug-ins after --plug-ins.</source>
        <translation>%1 ist kein Ordner. Nennen Sie nach --plug-ins den Ordner, der die Plug-ins enthält.</translation>
    </message>
    <message>
        <source>There is no folder %1. Name one that holds plug-ins after --plug-ins.</source>
        <translation>Es gibt keinen Ordner %1. Nennen Sie nach --plug-ins einen, der Plug-ins enthält.</translation>
    </message>
    <message>
        <source>There are no plug-ins (*.so) in the folder %1, or it may not be read. Build them, or name another folder after --plug-ins.</source>
        <translation>Im Ordner %1 sind keine Plug-ins (*.so), oder er darf nicht gelesen werden. Erstellen Sie sie, oder nennen Sie nach --plug-ins einen anderen Ordner.</translation>
    </message>
    <message>
        <source>%1 Build the plug-in anew for this workbench, or take the file away.</source>
        <translation>%1 Erstellen Sie das Plug-in für dieses Programm neu, oder nehmen Sie die Datei weg.</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Rainbow</source>
        <translation>Regenbogen</translation>
    </message>
    <message>
        <source>Reverse Rainbow</source>
        <translation>Umgekehrter Regenbogen</translation>
    </message>
    <message>
        <source>Colortable</source>
        <translation>Farbtabelle</translation>
    </message>
</context>
<context>
    <name>Quantity</name>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>Fläche</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>Winkel</translation>
    </message>
    <message>
        <source>Percent</source>
        <translation>Prozent</translation>
    </message>
    <message>
        <source>Number</source>
        <translation>Zahl</translation>
    </message>
    <message>
        <source>Millimeter</source>
        <translation>Millimeter</translation>
    </message>
    <message>
        <source>Centimeter</source>
        <translation>Zentimeter</translation>
    </message>
    <message>
        <source>Meter</source>
        <translation>Meter</translation>
    </message>
    <message>
        <source>Micrometer</source>
        <translation>Mikrometer</translation>
    </message>
    <message>
        <source>Nanometer</source>
        <translation>Nanometer</translation>
    </message>
    <message>
        <source>Inch</source>
        <translation>Zoll</translation>
    </message>
    <message>
        <source>Foot</source>
        <translation>Fuß</translation>
    </message>
    <message>
        <source>Mil</source>
        <translation>Mil</translation>
    </message>
    <message>
        <source>SquareMillimeter</source>
        <translation>Quadratmillimeter</translation>
    </message>
    <message>
        <source>SquareCentimeter</source>
        <translation>Quadratzentimeter</translation>
    </message>
    <message>
        <source>SquareMeter</source>
        <translation>Quadratmeter</translation>
    </message>
    <message>
        <source>SquareMicrometer</source>
        <translation>Quadratmikrometer</translation>
    </message>
    <message>
        <source>SquareInch</source>
        <translation>Quadratzoll</translation>
    </message>
    <message>
        <source>SquareFoot</source>
        <translation>Quadratfuß</translation>
    </message>
    <message>
        <source>CubicMillimeter</source>
        <translation>Kubikmillimeter</translation>
    </message>
    <message>
        <source>CubicCentimeter</source>
        <translation>Kubikzentimeter</translation>
    </message>
    <message>
        <source>CubicMeter</source>
        <translation>Kubikmeter</translation>
    </message>
    <message>
        <source>CubicMicrometer</source>
        <translation>Kubikmikrometer</translation>
    </message>
    <message>
        <source>CubicInch</source>
        <translation>Kubikzoll</translation>
    </message>
    <message>
        <source>CubicFoot</source>
        <translation>Kubikfuß</translation>
    </message>
    <message>
        <source>Liter</source>
        <translation>Liter</translation>
    </message>
    <message>
        <source>Radian</source>
        <translation>Radiant</translation>
    </message>
    <message>
        <source>Degree</source>
        <translation>Grad</translation>
    </message>
</context>
<context>
    <name>Report</name>
    <message>
        <source>The kind of a report follows from its name: let &quot;%1&quot; end in .csv or .json.</source>
        <translation>Die Art eines Berichts folgt aus seinem Namen: Lassen Sie „%1“ auf .csv oder .json enden.</translation>
    </message>
    <message>
        <source>The report cannot be written. Choose another folder or name, or make room. %1</source>
        <translation>Der Bericht kann nicht geschrieben werden. Wählen Sie einen anderen Ordner oder Namen, oder schaffen Sie Platz. %1</translation>
    </message>
</context>
<context>
    <name>SectionInspector</name>
    <message>
        <source>Values are being counted…</source>
        <translation>Werte werden gezählt …</translation>
    </message>
    <message>
        <source>There are no values.</source>
        <translation>Es gibt keine Werte.</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Werte</translation>
    </message>
    <message>
        <source>Histogram of the values</source>
        <translation>Histogramm der Werte</translation>
    </message>
    <message>
        <source>Shares of the sections</source>
        <translation>Anteile der Abschnitte</translation>
    </message>
</context>
<context>
    <name>SectionShareModel</name>
    <message>
        <source>&lt; %1 %</source>
        <translation>&lt; %1 %</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1: %2 of the volume</source>
        <translation>%1: %2 des Volumens</translation>
    </message>
    <message>
        <source>Share of Volume</source>
        <translation>Volumenanteil</translation>
    </message>
    <message>
        <source>Section</source>
        <translation>Abschnitt</translation>
    </message>
    <message>
        <source>Section [%1]</source>
        <translation>Abschnitt [%1]</translation>
    </message>
</context>
<context>
    <name>ToleranceChooser</name>
    <message>
        <source>The layer&apos;s own table</source>
        <translation>Tabelle der Ebene selbst</translation>
    </message>
    <message>
        <source>Which tolerance table judges the defects: pass, warn or fail by volume</source>
        <translation>Welche Toleranztabelle die Defekte beurteilt: gut, grenzwertig oder Ausschuss nach Volumen</translation>
    </message>
    <message>
        <source>Boundaries are volumes, in mm³.</source>
        <translation>Die Grenzen sind Volumen in mm³.</translation>
    </message>
    <message>
        <source>Made for another quantity; its boundaries are read as mm³.</source>
        <translation>Für eine andere Größe gemacht; ihre Grenzen werden als mm³ gelesen.</translation>
    </message>
</context>
<context>
    <name>ValueLayerExtension</name>
    <message>
        <source>Values in color</source>
        <translation>Werte in Farbe</translation>
    </message>
    <message>
        <source>The values cannot be shown in color: memory ran out.</source>
        <translation>Die Werte können nicht in Farbe gezeigt werden: Der Speicher ist erschöpft.</translation>
    </message>
</context>
<context>
    <name>VolumeAnalysis</name>
    <message>
        <source>The analysis needs an opened volume.</source>
        <translation>Die Analyse braucht ein geöffnetes Volumen.</translation>
    </message>
</context>
<context>
    <name>WallThicknessAnalysis</name>
    <message>
        <source>Wall thickness</source>
        <translation>Wandstärke</translation>
    </message>
    <message>
        <source>Least (mm)</source>
        <translation>Kleinste (mm)</translation>
    </message>
    <message>
        <source>Greatest (mm)</source>
        <translation>Größte (mm)</translation>
    </message>
    <message>
        <source>Mean (mm)</source>
        <translation>Mittel (mm)</translation>
    </message>
    <message>
        <source>Standard deviation (mm)</source>
        <translation>Standardabweichung (mm)</translation>
    </message>
    <message>
        <source>Median (mm)</source>
        <translation>Median (mm)</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>Schwellwert</translation>
    </message>
</context>
<context>
    <name>workbench::AnalysisRunner</name>
    <message>
        <source>&quot;%1&quot; is under way. Wait for it, or cancel it.</source>
        <translation>„%1“ läuft noch. Warten Sie, oder brechen Sie ab.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; needs an opened volume.</source>
        <translation>„%1“ braucht ein geöffnetes Volumen.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; goes by no threshold. Start it without one.</source>
        <translation>„%1“ richtet sich nach keinem Schwellwert. Starten Sie ohne einen.</translation>
    </message>
</context>
<context>
    <name>workbench::BatchRun</name>
    <message>
        <source>There is no analysis &quot;%1&quot;: no plug-in offers any.</source>
        <translation>Es gibt keine Analyse „%1“: Kein Plug-in bietet eine an.</translation>
    </message>
    <message>
        <source>There is no analysis &quot;%1&quot;. There are: %2</source>
        <translation>Es gibt keine Analyse „%1“. Es gibt: %2</translation>
    </message>
    <message>
        <source>The analysis was canceled.</source>
        <translation>Die Analyse wurde abgebrochen.</translation>
    </message>
    <message>
        <source>There is no preset &quot;%1&quot;. There are: %2</source>
        <translation>Es gibt keine Vorlage „%1“. Es gibt: %2</translation>
    </message>
    <message>
        <source>The preset &quot;%1&quot; is not applied: no layer has a table.</source>
        <translation>Die Vorlage „%1“ wird nicht angewendet: Keine Ebene hat eine Tabelle.</translation>
    </message>
    <message>
        <source>The preset &quot;%1&quot; cannot be applied. %2</source>
        <translation>Die Vorlage „%1“ kann nicht angewendet werden. %2</translation>
    </message>
</context>
<context>
    <name>workbench::ContentFiles</name>
    <message>
        <source>&amp;Save Changes</source>
        <translation>Än&amp;derungen speichern</translation>
    </message>
    <message>
        <source>Open %1…</source>
        <translation>%1 öffnen …</translation>
    </message>
    <message>
        <source>Save %1…</source>
        <translation>%1 speichern …</translation>
    </message>
    <message>
        <source>Open %1</source>
        <translation>%1 öffnen</translation>
    </message>
    <message>
        <source>Object files</source>
        <translation>Objektdateien</translation>
    </message>
    <message>
        <source>Save %1 of &quot;%2&quot;</source>
        <translation>%1 von „%2“ speichern</translation>
    </message>
    <message>
        <source>%1 of &quot;%2&quot;</source>
        <translation>%1 von „%2“</translation>
    </message>
    <message>
        <source>Unsaved Changes</source>
        <translation>Ungespeicherte Änderungen</translation>
    </message>
    <message>
        <source>There are changes that have not been saved:

%1</source>
        <translation>Es gibt Änderungen, die nicht gespeichert sind:

%1</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Verwerfen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>There is not enough memory to undo this later: nothing was changed. Close other programs and try again.</source>
        <translation>Der Speicher reicht nicht, um dies später rückgängig zu machen: Nichts wurde geändert. Schließen Sie andere Programme und versuchen Sie es noch einmal.</translation>
    </message>
</context>
<context>
    <name>workbench::HistoryModel</name>
    <message>
        <source>Beginning</source>
        <translation>Anfang</translation>
    </message>
</context>
<context>
    <name>workbench::HistoryPanel</name>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
</context>
<context>
    <name>workbench::LayersPanel</name>
    <message>
        <source>&amp;Opacity</source>
        <translation>&amp;Deckkraft</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>Ebenen</translation>
    </message>
    <message>
        <source>Gray window</source>
        <translation>Graufenster</translation>
    </message>
    <message>
        <source>&amp;Full range</source>
        <translation>&amp;Ganzer Bereich</translation>
    </message>
    <message>
        <source>&amp;Black</source>
        <translation>&amp;Schwarz</translation>
    </message>
    <message>
        <source>&amp;White</source>
        <translation>&amp;Weiß</translation>
    </message>
</context>
<context>
    <name>workbench::MainWindow</name>
    <message>
        <source>%1 cannot be opened</source>
        <translation>%1 kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>Ebenen</translation>
    </message>
    <message>
        <source>Reading %1</source>
        <translation>%1 wird gelesen</translation>
    </message>
    <message>
        <source>This cannot be done</source>
        <translation>Das ist nicht möglich</translation>
    </message>
    <message>
        <source>Workbench</source>
        <translation>Werkbank</translation>
    </message>
    <message>
        <source>There is nothing to make a picture of.</source>
        <translation>Es gibt nichts abzubilden.</translation>
    </message>
    <message>
        <source>The picture cannot be written to %1: %2</source>
        <translation>Das Bild kann nicht nach %1 geschrieben werden: %2</translation>
    </message>
    <message>
        <source>unknown picture format &quot;%1&quot;</source>
        <translation>unbekanntes Bildformat „%1“</translation>
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
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Analysis</source>
        <translation>A&amp;nalyse</translation>
    </message>
    <message>
        <source>&amp;Tools</source>
        <translation>&amp;Werkzeuge</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Open Volume…</source>
        <translation>Volumen ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>Open &amp;Folder of Slices…</source>
        <translation>&amp;Ordner mit Schichten öffnen …</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Open &amp;Built-in Casting</source>
        <translation>&amp;Eingebautes Gussteil öffnen</translation>
    </message>
    <message>
        <source>&amp;Close Volume</source>
        <translation>Volumen &amp;schließen</translation>
    </message>
    <message>
        <source>Save Picture of &amp;Window…</source>
        <translation>Bild des F&amp;ensters speichern …</translation>
    </message>
    <message>
        <source>Save Picture of &amp;View</source>
        <translation>Bild einer &amp;Ansicht speichern</translation>
    </message>
    <message>
        <source>Slice across &amp;z…</source>
        <translation>Schnitt quer zu &amp;z …</translation>
    </message>
    <message>
        <source>Slice across &amp;y…</source>
        <translation>Schnitt quer zu &amp;y …</translation>
    </message>
    <message>
        <source>Slice across &amp;x…</source>
        <translation>Schnitt quer zu &amp;x …</translation>
    </message>
    <message>
        <source>&amp;3D…</source>
        <translation>&amp;3D …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederholen: %1</translation>
    </message>
    <message>
        <source>&amp;Reset All Views</source>
        <translation>Alle Ansichten &amp;zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Maximize</source>
        <translation>&amp;Maximieren</translation>
    </message>
    <message>
        <source>Slice across &amp;z</source>
        <translation>Schnitt quer zu &amp;z</translation>
    </message>
    <message>
        <source>Slice across &amp;y</source>
        <translation>Schnitt quer zu &amp;y</translation>
    </message>
    <message>
        <source>Slice across &amp;x</source>
        <translation>Schnitt quer zu &amp;x</translation>
    </message>
    <message>
        <source>&amp;3D</source>
        <translation>&amp;3D</translation>
    </message>
    <message>
        <source>&amp;All Views</source>
        <translation>&amp;Alle Ansichten</translation>
    </message>
    <message>
        <source>&amp;Panels</source>
        <translation>&amp;Bedienfelder</translation>
    </message>
    <message>
        <source>&amp;Dark Theme</source>
        <translation>&amp;Dunkles Design</translation>
    </message>
    <message>
        <source>&amp;Mouse and Keys</source>
        <translation>&amp;Maus und Tasten</translation>
    </message>
    <message>
        <source>&amp;About Workbench</source>
        <translation>Ü&amp;ber die Werkbank</translation>
    </message>
    <message>
        <source>Volumes</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Alle Dateien</translation>
    </message>
    <message>
        <source>Open Volume</source>
        <translation>Volumen öffnen</translation>
    </message>
    <message>
        <source>Open Folder of Slices</source>
        <translation>Ordner mit Schichten öffnen</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Wheel, arrow keys</source>
        <translation>Rad, Pfeiltasten</translation>
    </message>
    <message>
        <source>other slices</source>
        <translation>andere Schnitte</translation>
    </message>
    <message>
        <source>Left button</source>
        <translation>Linke Taste</translation>
    </message>
    <message>
        <source>set the cross</source>
        <translation>Kreuz setzen</translation>
    </message>
    <message>
        <source>Middle button</source>
        <translation>Mittlere Taste</translation>
    </message>
    <message>
        <source>pan</source>
        <translation>verschieben</translation>
    </message>
    <message>
        <source>Ctrl+wheel, right button</source>
        <translation>Strg+Rad, rechte Taste</translation>
    </message>
    <message>
        <source>zoom</source>
        <translation>vergrößern</translation>
    </message>
    <message>
        <source>rotate</source>
        <translation>drehen</translation>
    </message>
    <message>
        <source>Wheel, right button</source>
        <translation>Rad, rechte Taste</translation>
    </message>
    <message>
        <source>Double click</source>
        <translation>Doppelklick</translation>
    </message>
    <message>
        <source>one view alone, and back</source>
        <translation>eine Ansicht allein und zurück</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>show everything</source>
        <translation>alles zeigen</translation>
    </message>
    <message>
        <source>Mouse and Keys</source>
        <translation>Maus und Tasten</translation>
    </message>
    <message>
        <source>Slices</source>
        <translation>Schnitte</translation>
    </message>
    <message>
        <source>3D</source>
        <translation>3D</translation>
    </message>
    <message>
        <source>All views</source>
        <translation>Alle Ansichten</translation>
    </message>
    <message>
        <source>About Workbench</source>
        <translation>Über die Werkbank</translation>
    </message>
    <message>
        <source>Shows volumes in slices and in 3D, colored through tables whose every color is exact.</source>
        <translation>Zeigt Volumen in Schnitten und in 3D, gefärbt über Tabellen, in denen jede Farbe genau ist.</translation>
    </message>
    <message>
        <source>Plug-ins could not be loaded</source>
        <translation>Erweiterungen konnten nicht geladen werden</translation>
    </message>
    <message>
        <source>%1[*] — %2</source>
        <translation>%1[*] — %2</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Set &amp;Threshold…</source>
        <translation>&amp;Schwellwert setzen…</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>Schwellwert</translation>
    </message>
    <message>
        <source>Analyses take samples from this grey value on for material.
Empty: chosen from the values (Otsu).</source>
        <translation>Analysen zählen Werte ab diesem Grauwert als Material.
Leer: aus den Werten bestimmt (Otsu).</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a number. The threshold stays as it was.</source>
        <translation>„%1“ ist keine Zahl. Der Schwellwert bleibt, wie er war.</translation>
    </message>
</context>
<context>
    <name>workbench::ReadoutBar</name>
    <message>
        <source>x %1  y %2  z %3 %4</source>
        <translation>x %1  y %2  z %3 %4</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>workbench::UnitsMenu</name>
    <message>
        <source>&amp;Units</source>
        <translation>&amp;Einheiten</translation>
    </message>
    <message>
        <source>&amp;Metric</source>
        <translation>&amp;Metrisch</translation>
    </message>
    <message>
        <source>&amp;Inches</source>
        <translation>&amp;Zoll</translation>
    </message>
</context>
<context>
    <name>workbench::ViewGrid</name>
    <message>
        <source>Slice across z</source>
        <translation>Schnitt quer zu z</translation>
    </message>
    <message>
        <source>Slice across y</source>
        <translation>Schnitt quer zu y</translation>
    </message>
    <message>
        <source>Slice across x</source>
        <translation>Schnitt quer zu x</translation>
    </message>
    <message>
        <source>3D</source>
        <translation>3D</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
</context>
</TS>
