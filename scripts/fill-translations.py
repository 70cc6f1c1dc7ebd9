#!/usr/bin/env python3
"""Fills translations/vidora_zh_CN.ts from the table below after `lupdate` added new source
texts. Keeps existing translations; reports source texts that still have none."""
import re
import sys
from pathlib import Path

ZH = {
    "Player": "播放器",
    "❚❚ paused": "❚❚ 已暂停",
    "▶ playing": "▶ 播放中",
    "🔇 Muted": "🔇 已静音",
    "🔊 Unmuted": "🔊 已取消静音",
    "Hardware Decoding:": "硬件解码：",
    "Aspect Ratio:": "画面比例：",
    "default": "默认",
    "Full": "铺满",
    " ScreenShot saved": " 截图已保存",
    "Audio Track": "音轨",
    "SubTitle": "字幕",
    "no subtitle": "无字幕",
    # Control library and dialogs
    "Version": "版本",
    "Developers": "开发者",
    "Customer Service Hotline": "客服热线",
    "Privacy Policy": "隐私政策",
    "User Agreement": "用户协议",
    "About us": "关于我们",
    "Cancel": "取消",
    "Message": "提示",
    "OK": "确定",
    "Screenshot saved": "截图已保存",
    "There is currently no file playing": "当前没有正在播放的文件",
    "Open file": "打开文件",
    "Video Media Formats": "视频格式",
    "Audio Media Formats": "音频格式",
    "Filerelevance": "文件关联",
    "Relevance": "文件关联",
    "loading": "加载中",
    "stop": "停止",
    # Tool window and its pages
    "Video tools": "视频工具",
    "Export": "导出",
    "Export success": "导出成功",
    "Export failed": "导出失败",
    "No files selected": "未选择文件",
    "Drag your video here to open or click to add files": "拖动视频到此处打开，或点击添加文件",
    "Please select a file to export": "请选择要导出的文件",
    "The file format is not supported!": "不支持该文件格式！",
    "Video files": "视频文件",
    "Save File to ...": "保存文件到...",
    "start": "开始",
    "duration": "时长",
    "end": "结束",
    "Low": "低",
    "Medium": "中",
    "High": "高",
    "Large file size, high quality": "文件较大，画质高",
    "Medium file size, medium quality": "文件中等，画质中等",
    "Small file size, lower quality": "文件较小，画质较低",
    "Please select a file to compress": "请选择要压缩的文件",
    "Please enter an output file name": "请输入输出文件名",
    "Please select a directory to save the compressed file": "请选择保存压缩文件的目录",
    "Select a directory to save the compressed file": "选择保存压缩文件的目录",
    "Select a path to save the compressed file": "选择压缩文件的保存路径",
    "Select": "选择",
    "Compression Settings": "压缩设置",
    "Output File Name": "输出文件名",
    "Enter the name of the output file": "输入输出文件的名称",
    "Save Directory": "保存目录",
    "Change": "更改",
    "original size": "原始尺寸",
    "Custom": "自定义",
    "Output": "输出",
    "Video": "视频",
    "Video encode": "视频编码",
    "Video bitrate": "视频码率",
    "Video framerate": "视频帧率",
    "Resolution": "分辨率",
    "Audio encode": "音频编码",
    "Audio bitrate": "音频码率",
    "Select Video Files": "选择视频文件",
    "Select a video": "选择视频",
    # Main window
    "Select Files": "选择文件",
    "Continue Playing": "继续播放",
    "File does not exist": "文件不存在",
    "Play List": "播放列表",
    "Add files": "添加文件",
    "Clear the list": "清空列表",
    "Are you sure you want to delete this video?": "确定要删除此视频吗？",
    "Unpin": "取消置顶",
    "Pin to the top of the list": "置顶",
    "Settings": "设置",
    "Stop": "停止",
    "Previous": "上一个",
    "Next": "下一个",
    "Screenshot": "截图",
    "Tools": "工具",
    "Mini player": "迷你播放器",
    "Full screen": "全屏",
    "Video compression": "视频压缩",
    "Video capture": "视频截取",
    "Video Merger": "视频合并",
    "Format Conversion": "格式转换",
    "video": "画面",
    "subTitle": "字幕",
    "audio": "音频",

}

path = Path(__file__).resolve().parent.parent / "translations" / "vidora_zh_CN.ts"
text = path.read_text(encoding="utf-8")
missing = []


def fill(match):
    source, translation = match.group(1), match.group(2)
    plain = source.replace("&amp;", "&").replace("&lt;", "<").replace("&gt;", ">").replace("&apos;", "'").replace("&quot;", '"')
    if plain in ZH:
        zh = ZH[plain].replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
        return f"<source>{source}</source>\n        <translation>{zh}</translation>"
    if 'type="unfinished"' in translation:
        missing.append(plain)
    return match.group(0)


text = re.sub(r"<source>(.*?)</source>\n\s*(<translation[^>]*>.*?</translation>|<translation[^>]*/>)",
              fill, text, flags=re.S)
path.write_text(text, encoding="utf-8")
if missing:
    print("no translation yet for:", *missing, sep="\n  ", file=sys.stderr)
    sys.exit(1)
