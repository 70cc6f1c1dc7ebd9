<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>main</name>
    <message>
        <location filename="../qml/main.qml" line="11"/>
        <location filename="../qml/main.qml" line="17"/>
        <source>Player</source>
        <translation>播放器</translation>
    </message>
</context>
</TS>
