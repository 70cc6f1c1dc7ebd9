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
