<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>AboutUsCard</name>
    <message>
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="39"/>
        <source>Version</source>
        <translation>版本</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="40"/>
        <source>Developers</source>
        <translation>开发者</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="41"/>
        <source>Customer Service Hotline</source>
        <translation>客服热线</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="73"/>
        <source>Privacy Policy</source>
        <translation>隐私政策</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="74"/>
        <source>User Agreement</source>
        <translation>用户协议</translation>
    </message>
</context>
<context>
    <name>AboutUsDialog</name>
    <message>
        <location filename="../qml/CustomUtils/AboutUsDialog.qml" line="11"/>
        <location filename="../qml/CustomUtils/AboutUsDialog.qml" line="12"/>
        <source>About us</source>
        <translation>关于我们</translation>
    </message>
</context>
<context>
    <name>CCancelButton</name>
    <message>
        <location filename="../qml/CustomUtils/CCancelButton.qml" line="7"/>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <location filename="../qml/CustomUtils/CMessageBox.qml" line="45"/>
        <source>Message</source>
        <translation>提示</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/CMessageBox.qml" line="120"/>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>CNotification</name>
    <message>
        <location filename="../qml/CustomUtils/CNotification.qml" line="24"/>
        <source>Screenshot saved</source>
        <translation>截图已保存</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/CNotification.qml" line="24"/>
        <source>There is currently no file playing</source>
        <translation>当前没有正在播放的文件</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/CNotification.qml" line="77"/>
        <source>Open file</source>
        <translation>打开文件</translation>
    </message>
</context>
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
    <name>RelevanceCard</name>
    <message>
        <location filename="../qml/CustomUtils/RelevanceCard.qml" line="21"/>
        <source>Video Media Formats</source>
        <translation>视频格式</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/RelevanceCard.qml" line="43"/>
        <source>Audio Media Formats</source>
        <translation>音频格式</translation>
    </message>
</context>
<context>
    <name>RelevanceDialog</name>
    <message>
        <location filename="../qml/CustomUtils/RelevanceDialog.qml" line="13"/>
        <source>Filerelevance</source>
        <translation>文件关联</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/RelevanceDialog.qml" line="14"/>
        <source>Relevance</source>
        <translation>文件关联</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/RelevanceDialog.qml" line="46"/>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>WaveProgress</name>
    <message>
        <location filename="../qml/CustomUtils/WaveProgress.qml" line="34"/>
        <source>loading</source>
        <translation>加载中</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/WaveProgress.qml" line="101"/>
        <source>stop</source>
        <translation>停止</translation>
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
