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
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="76"/>
        <source>Privacy Policy</source>
        <translation>隐私政策</translation>
    </message>
    <message>
        <location filename="../qml/CustomUtils/AboutUsCard.qml" line="77"/>
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
    <name>CClipWidget</name>
    <message>
        <location filename="../qml/CClipWidget.qml" line="21"/>
        <source>No files selected</source>
        <translation>未选择文件</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="48"/>
        <source>Please select a file to export</source>
        <translation>请选择要导出的文件</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="53"/>
        <source>The file format is not supported!</source>
        <translation>不支持该文件格式！</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="57"/>
        <source>Video files</source>
        <translation>视频文件</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="73"/>
        <source>Save File to ...</source>
        <translation>保存文件到...</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="165"/>
        <source>start</source>
        <translation>开始</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="166"/>
        <source>duration</source>
        <translation>时长</translation>
    </message>
    <message>
        <location filename="../qml/CClipWidget.qml" line="167"/>
        <source>end</source>
        <translation>结束</translation>
    </message>
</context>
<context>
    <name>CCompressWidget</name>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="22"/>
        <source>Low</source>
        <translation>低</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="22"/>
        <source>Large file size, high quality</source>
        <translation>文件较大，画质高</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="23"/>
        <source>Medium</source>
        <translation>中</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="23"/>
        <source>Medium file size, medium quality</source>
        <translation>文件中等，画质中等</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="24"/>
        <source>High</source>
        <translation>高</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="24"/>
        <source>Small file size, lower quality</source>
        <translation>文件较小，画质较低</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="29"/>
        <source>No files selected</source>
        <translation>未选择文件</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="43"/>
        <source>Please select a file to compress</source>
        <translation>请选择要压缩的文件</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="45"/>
        <source>Please enter an output file name</source>
        <translation>请输入输出文件名</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="46"/>
        <source>Please select a directory to save the compressed file</source>
        <translation>请选择保存压缩文件的目录</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="74"/>
        <location filename="../qml/CCompressWidget.qml" line="144"/>
        <source>Select a directory to save the compressed file</source>
        <translation>选择保存压缩文件的目录</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="96"/>
        <source>Compression Settings</source>
        <translation>压缩设置</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="116"/>
        <source>Output File Name</source>
        <translation>输出文件名</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="121"/>
        <source>Enter the name of the output file</source>
        <translation>输入输出文件的名称</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="136"/>
        <source>Save Directory</source>
        <translation>保存目录</translation>
    </message>
    <message>
        <location filename="../qml/CCompressWidget.qml" line="150"/>
        <source>Change</source>
        <translation>更改</translation>
    </message>
</context>
<context>
    <name>CConversionWidget</name>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="29"/>
        <source>original size</source>
        <translation>原始尺寸</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="29"/>
        <location filename="../qml/CConversionWidget.qml" line="179"/>
        <source>Custom</source>
        <translation>自定义</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="37"/>
        <source>No files selected</source>
        <translation>未选择文件</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="92"/>
        <source>Please select a file to compress</source>
        <translation>请选择要压缩的文件</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="94"/>
        <source>Please enter an output file name</source>
        <translation>请输入输出文件名</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="95"/>
        <source>Please select a directory to save the compressed file</source>
        <translation>请选择保存压缩文件的目录</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="123"/>
        <location filename="../qml/CConversionWidget.qml" line="258"/>
        <source>Select a directory to save the compressed file</source>
        <translation>选择保存压缩文件的目录</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="140"/>
        <source>Output</source>
        <translation>输出</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="148"/>
        <source>Video</source>
        <translation>视频</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="173"/>
        <source>Video encode</source>
        <translation>视频编码</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="174"/>
        <source>Video bitrate</source>
        <translation>视频码率</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="175"/>
        <source>Video framerate</source>
        <translation>视频帧率</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="176"/>
        <source>Resolution</source>
        <translation>分辨率</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="225"/>
        <source>Audio encode</source>
        <translation>音频编码</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="226"/>
        <source>Audio bitrate</source>
        <translation>音频码率</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="229"/>
        <source>Output File Name</source>
        <translation>输出文件名</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="234"/>
        <source>Enter the name of the output file</source>
        <translation>输入输出文件的名称</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="250"/>
        <source>Save Directory</source>
        <translation>保存目录</translation>
    </message>
    <message>
        <location filename="../qml/CConversionWidget.qml" line="264"/>
        <source>Change</source>
        <translation>更改</translation>
    </message>
</context>
<context>
    <name>CFileDialog</name>
    <message>
        <location filename="../qml/CFileDialog.qml" line="14"/>
        <source>Select Files</source>
        <translation>选择文件</translation>
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
    <name>CPuzzleWidget</name>
    <message>
        <location filename="../qml/CPuzzleWidget.qml" line="109"/>
        <source>Select Video Files</source>
        <translation>选择视频文件</translation>
    </message>
    <message>
        <location filename="../qml/CPuzzleWidget.qml" line="239"/>
        <source>Select a video</source>
        <translation>选择视频</translation>
    </message>
</context>
<context>
    <name>CToolWindow</name>
    <message>
        <location filename="../qml/CToolWindow.qml" line="32"/>
        <source>Video tools</source>
        <translation>视频工具</translation>
    </message>
    <message>
        <location filename="../qml/CToolWindow.qml" line="91"/>
        <source>Export success</source>
        <translation>导出成功</translation>
    </message>
    <message>
        <location filename="../qml/CToolWindow.qml" line="91"/>
        <source>Export failed</source>
        <translation>导出失败</translation>
    </message>
    <message>
        <location filename="../qml/CToolWindow.qml" line="216"/>
        <source>Export</source>
        <translation>导出</translation>
    </message>
</context>
<context>
    <name>ControlBar</name>
    <message>
        <location filename="../qml/ControlBar.qml" line="83"/>
        <source>default</source>
        <translation>默认</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="86"/>
        <source>Full</source>
        <translation>铺满</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="90"/>
        <source>Video compression</source>
        <translation>视频压缩</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="91"/>
        <source>Video capture</source>
        <translation>视频截取</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="92"/>
        <source>Video Merger</source>
        <translation>视频合并</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="93"/>
        <source>Format Conversion</source>
        <translation>格式转换</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="210"/>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="220"/>
        <source>Previous</source>
        <translation>上一个</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="237"/>
        <source>Next</source>
        <translation>下一个</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="310"/>
        <source>Screenshot</source>
        <translation>截图</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="318"/>
        <source>Tools</source>
        <translation>工具</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="327"/>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="353"/>
        <source>Mini player</source>
        <translation>迷你播放器</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="361"/>
        <source>Full screen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="466"/>
        <source>video</source>
        <translation>画面</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="481"/>
        <source>subTitle</source>
        <translation>字幕</translation>
    </message>
    <message>
        <location filename="../qml/ControlBar.qml" line="496"/>
        <source>audio</source>
        <translation>音频</translation>
    </message>
</context>
<context>
    <name>DefaultWidget</name>
    <message>
        <location filename="../qml/DefaultWidget.qml" line="53"/>
        <source>Open file</source>
        <translation>打开文件</translation>
    </message>
</context>
<context>
    <name>HistoryPanel</name>
    <message>
        <location filename="../qml/HistoryPanel.qml" line="46"/>
        <source>Play List</source>
        <translation>播放列表</translation>
    </message>
    <message>
        <location filename="../qml/HistoryPanel.qml" line="59"/>
        <source>Add files</source>
        <translation>添加文件</translation>
    </message>
    <message>
        <location filename="../qml/HistoryPanel.qml" line="66"/>
        <source>Clear the list</source>
        <translation>清空列表</translation>
    </message>
</context>
<context>
    <name>MpvView</name>
    <message>
        <location filename="../src/player/MpvView.cpp" line="133"/>
        <source>❚❚ paused</source>
        <translation>❚❚ 已暂停</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="133"/>
        <source>▶ playing</source>
        <translation>▶ 播放中</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="146"/>
        <source>🔇 Muted</source>
        <translation>🔇 已静音</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="146"/>
        <source>🔊 Unmuted</source>
        <translation>🔊 已取消静音</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="157"/>
        <source>Hardware Decoding:</source>
        <translation>硬件解码：</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="260"/>
        <source>Full</source>
        <translation>铺满</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="266"/>
        <source>default</source>
        <translation>默认</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="276"/>
        <source>Aspect Ratio:</source>
        <translation>画面比例：</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="299"/>
        <source>Audio Track</source>
        <translation>音轨</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="325"/>
        <source>SubTitle</source>
        <translation>字幕</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="342"/>
        <source>no subtitle</source>
        <translation>无字幕</translation>
    </message>
    <message>
        <location filename="../src/player/MpvView.cpp" line="408"/>
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
    <name>TitleBar</name>
    <message>
        <location filename="../qml/TitleBar.qml" line="113"/>
        <source>Unpin</source>
        <translation>取消置顶</translation>
    </message>
    <message>
        <location filename="../qml/TitleBar.qml" line="113"/>
        <source>Pin to the top of the list</source>
        <translation>置顶</translation>
    </message>
    <message>
        <location filename="../qml/TitleBar.qml" line="136"/>
        <source>About us</source>
        <translation>关于我们</translation>
    </message>
    <message>
        <location filename="../qml/TitleBar.qml" line="136"/>
        <source>Settings</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>ToolEmptyState</name>
    <message>
        <location filename="../qml/ToolEmptyState.qml" line="38"/>
        <source>Open file</source>
        <translation>打开文件</translation>
    </message>
    <message>
        <location filename="../qml/ToolEmptyState.qml" line="51"/>
        <source>Drag your video here to open or click to add files</source>
        <translation>拖动视频到此处打开，或点击添加文件</translation>
    </message>
</context>
<context>
    <name>ToolInputRow</name>
    <message>
        <location filename="../qml/ToolInputRow.qml" line="33"/>
        <source>Select a path to save the compressed file</source>
        <translation>选择压缩文件的保存路径</translation>
    </message>
    <message>
        <location filename="../qml/ToolInputRow.qml" line="43"/>
        <source>Select</source>
        <translation>选择</translation>
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
        <location filename="../qml/main.qml" line="34"/>
        <location filename="../qml/main.qml" line="232"/>
        <source>Player</source>
        <translation>播放器</translation>
    </message>
    <message>
        <location filename="../qml/main.qml" line="45"/>
        <source>File does not exist</source>
        <translation>文件不存在</translation>
    </message>
    <message>
        <location filename="../qml/main.qml" line="304"/>
        <source>Continue Playing</source>
        <translation>继续播放</translation>
    </message>
    <message>
        <location filename="../qml/main.qml" line="359"/>
        <source>Are you sure you want to delete this video?</source>
        <translation>确定要删除此视频吗？</translation>
    </message>
</context>
</TS>
