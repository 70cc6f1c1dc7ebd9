<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>MpvView</name>
    <message>
        <location filename="../src/player/MpvView.cpp" line="130"/>
        <source>❚❚ paused</source>
        <translation>❚❚ 已暂停</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="130"/>
        <source>▶ playing</source>
        <translation>▶ 播放中</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="143"/>
        <source>🔇 Muted</source>
        <translation>🔇 已静音</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="143"/>
        <source>🔊 Unmuted</source>
        <translation>🔊 已取消静音</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="154"/>
        <source>Hardware Decoding:</source>
        <translation>硬件解码：</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="257"/>
        <source>Full</source>
        <translation>铺满</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="263"/>
        <source>default</source>
        <translation>默认</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="273"/>
        <source>Aspect Ratio:</source>
        <translation>画面比例：</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="296"/>
        <source>Audio Track</source>
        <translation>音轨</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="322"/>
        <source>SubTitle</source>
        <translation>字幕</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="339"/>
        <source>no subtitle</source>
        <translation>无字幕</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="405"/>
        <source> ScreenShot saved</source>
        <translation> 截图已保存</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <location filename="../qml/main.qml" line="13"/>
        <source>Player</source>
        <translation>播放器</translation>
    </message>
</context>
</TS>
