<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- English as Linux desktops speak it: only the texts that name keys or programs of another system. -->
<TS version="2.1" language="en">
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
    <name>EmptyState</name>
    <message>
        <source>Press Return or S on a photo to mark it.</source>
        <translation>Press Enter or S on a photo to mark it.</translation>
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
    <name>kelvara::GridStatusBar</name>
    <message>
        <source>⇧-click a photo to mark every photo up to it</source>
        <translation>Shift+click a photo to mark every photo up to it</translation>
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
    <name>kelvara::SourceSidebar</name>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
</context>
<context>
    <name>core</name>
    <message>
        <source>Choose where marked photos are copied. Use New Folder to make one.</source>
        <translation>Choose where marked photos are copied. Use Create Folder to make one.</translation>
    </message>
</context>
</TS>
