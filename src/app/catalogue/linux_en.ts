<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- English as Linux desktops speak it: only the texts that name keys or programs of another system. -->
<TS version="2.1" language="en">
<context>
    <name>CommandStates</name>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
</context>
<context>
    <name>CopyTexts</name>
    <message>
        <source>Copy %1 marked…  ⌘⏎</source>
        <translation>Copy %1 marked…  Ctrl+Enter</translation>
    </message>
    <message>
        <source>Choose a folder and copy marked files (⌘Return)</source>
        <translation>Choose a folder and copy marked files (Ctrl+Enter)</translation>
    </message>
</context>
<context>
    <name>DeleteTexts</name>
    <message>
        <source>The files are moved to the Trash, where they can be put back from Finder.</source>
        <translation>The files are moved to the Trash, where they can be put back from the file manager.</translation>
    </message>
    <message numerus="yes">
        <source>Also delete the matching %1 with the same name (%Ln files)</source>
        <translation>
            <numerusform>Also delete the matching %1 with the same name (%Ln file)</numerusform>
            <numerusform>Also delete the matching %1 with the same name (%Ln files)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>EmptyState</name>
    <message>
        <source>Press Return or S on a photo to mark it.</source>
        <translation>Press Enter or S on a photo to mark it.</translation>
    </message>
</context>
<context>
    <name>ShareMenuItems</name>
    <message>
        <source>AirDrop as JPEGs</source>
        <translation>Share Nearby as JPEGs</translation>
    </message>
    <message>
        <source>Makes %1 px JPEG copies (GPS removed) and sends them with AirDrop</source>
        <translation>Makes %1 px JPEG copies (GPS removed) and sends them to a device nearby</translation>
    </message>
    <message>
        <source>Makes %1 px JPEG copies with the preset and each photo&apos;s edits applied (GPS removed) and sends them with AirDrop</source>
        <translation>Makes %1 px JPEG copies with the preset and each photo&apos;s edits applied (GPS removed) and sends them to a device nearby</translation>
    </message>
</context>
<context>
    <name>kelvara::CopyReportView</name>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
</context>
<context>
    <name>kelvara::EditInspector</name>
    <message>
        <source>Copy this photo's edits (⌘⇧C)</source>
        <translation>Copy this photo's edits (Ctrl+Shift+C)</translation>
    </message>
    <message>
        <source>%1 (⌘⇧V)</source>
        <translation>%1 (Ctrl+Shift+V)</translation>
    </message>
</context>
<context>
    <name>kelvara::ExportOptionsView</name>
    <message>
        <source>Export with these options into a temporary folder, then share or AirDrop the files without keeping them</source>
        <translation>Export with these options into a temporary folder, then share the files or send them nearby without keeping them</translation>
    </message>
</context>
<context>
    <name>kelvara::GridStatusBar</name>
    <message>
        <source>⇧-click a photo to mark every photo up to it</source>
        <translation>Shift+click a photo to mark every photo up to it</translation>
    </message>
</context>
<context>
    <name>kelvara::KeyboardShortcutsView</name>
    <message>
        <source>⌘F</source>
        <translation>Ctrl+F</translation>
    </message>
    <message>
        <source>S  ↩</source>
        <translation>S  Enter</translation>
    </message>
    <message>
        <source>⇧-click</source>
        <translation>Shift+click</translation>
    </message>
    <message>
        <source>⌘↩</source>
        <translation>Ctrl+Enter</translation>
    </message>
    <message>
        <source>⌘⌫</source>
        <translation>Ctrl+Backspace  Delete</translation>
    </message>
    <message>
        <source>⌘+  ⌘−  ⌘0</source>
        <translation>Ctrl++  Ctrl+−  Ctrl+0</translation>
    </message>
    <message>
        <source>⌘- or ⌥-scroll</source>
        <translation>Ctrl- or Alt-scroll</translation>
    </message>
    <message>
        <source>⌘⇧C  ⌘⇧V</source>
        <translation>Ctrl+Shift+C  Ctrl+Shift+V</translation>
    </message>
</context>
<context>
    <name>kelvara::LightRow</name>
    <message>
        <source>Double-click resets; ⌥-drag for fine changes</source>
        <translation>Double-click resets; Ctrl+drag for fine changes</translation>
    </message>
</context>
<context>
    <name>kelvara::LoupeInfoBar</name>
    <message>
        <source>Z or double-click: Fit / 100% · ⌘+ ⌘− ⌘0 · ⌘-scroll, ⌥-scroll or pinch to zoom</source>
        <translation>Z or double-click: Fit / 100% · Ctrl++ Ctrl+− Ctrl+0 · Ctrl+scroll, Alt+scroll or pinch to zoom</translation>
    </message>
</context>
<context>
    <name>kelvara::SearchField</name>
    <message>
        <source>Search file names (⌘F)</source>
        <translation>Search file names (Ctrl+F)</translation>
    </message>
</context>
<context>
    <name>kelvara::SettingsView</name>
    <message>
        <source>Erasing frees the card&apos;s space straight away. Files moved to a card&apos;s Trash only go once you empty the Trash in Finder. On other drives, deleted files always go to the Trash.</source>
        <translation>Erasing frees the card&apos;s space straight away. Files moved to a card&apos;s Trash only go once you empty the Trash in the file manager. On other drives, deleted files always go to the Trash.</translation>
    </message>
    <message>
        <source>Quick share is Share as JPEGs and AirDrop as JPEGs. Export lets you choose the size each time.</source>
        <translation>Quick share is Share as JPEGs and Share Nearby as JPEGs. Export lets you choose the size each time.</translation>
    </message>
    <message>
        <source>Counts app launches and how many photos are copied or shared, with the app and macOS version. Never file names, folders or photos.</source>
        <translation>Counts app launches and how many photos are copied or shared, with the app and system version. Never file names, folders or photos.</translation>
    </message>
</context>
<context>
    <name>kelvara::SourceSidebar</name>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
</context>
<context>
    <name>QShortcut</name>
    <message>
        <source>Return</source>
        <translation>Enter</translation>
    </message>
</context>
<context>
    <name>SharePickerMenu</name>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message numerus="yes">
        <source>Copy %Ln Files</source>
        <translation>
            <numerusform>Copy %Ln File</numerusform>
            <numerusform>Copy %Ln Files</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>core</name>
    <message>
        <source>AirDrop isn't available. Check that Wi-Fi and Bluetooth are on.</source>
        <translation>No device nearby takes files. Check that Wi-Fi and Bluetooth are on.</translation>
    </message>
    <message>
        <source>Choose where marked photos are copied. Use New Folder to make one.</source>
        <translation>Choose where marked photos are copied. Use Create Folder to make one.</translation>
    </message>
</context>
</TS>
