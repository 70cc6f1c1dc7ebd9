#pragma once

#include "LogCapture.h"
#include "TestMedia.h"

#include <QColor>
#include <QFile>
#include <QStringList>
#include <QtTest>
#include <algorithm>
#include <memory>

// A file no frame can be grabbed from: "audio" (no video stream), "empty", "corrupt" (junk
// bytes) or "deleted" (its path was valid once, a copy of `existing`).
inline QString unreadableFile(const QString& dir, const QString& kind, const QString& existing)
{
    const QString path = dir + "/bad-" + kind + (kind == "audio" ? ".m4a" : ".mp4");
    if (kind == "audio")
        TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:duration=1", path});
    QFile file(path);
    if (kind == "empty" || kind == "corrupt") {
        file.open(QIODevice::WriteOnly);
        file.write(QByteArray(kind == "corrupt" ? 64 * 1024 : 0, '\x5a'));
    } else if (kind == "deleted") {
        QFile::copy(existing, path);
        QFile::remove(path);
    }
    return path;
}

inline const QStringList kUnreadableKinds{"audio", "empty", "corrupt", "deleted"};

inline bool near(const QColor& a, const QColor& b, int tolerance)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}
