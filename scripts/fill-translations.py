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
