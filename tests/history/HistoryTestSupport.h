#pragma once

#include "TestMedia.h"

#include <QColor>
#include <QFile>
#include <QStringList>
#include <QtTest>
#include <algorithm>
#include <memory>
#include <spdlog/sinks/ringbuffer_sink.h>
#include <spdlog/spdlog.h>

// Makes the default logger (level info) keep the last messages from any thread, so a test can
// wait (QTRY_VERIFY) for the log line that is the only outward trace of a failed background load.
class LogCapture
{
public:
    LogCapture()
    {
        m_sink->set_pattern("%v");
        spdlog::set_default_logger(std::make_shared<spdlog::logger>("capture", m_sink));
    }
    int count(const QString& text) const
    {
        const std::vector<std::string> lines = m_sink->last_formatted();
        return int(std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
            return QString::fromStdString(line).contains(text);
        }));
    }

private:
    std::shared_ptr<spdlog::sinks::ringbuffer_sink_mt> m_sink =
        std::make_shared<spdlog::sinks::ringbuffer_sink_mt>(10000);
};

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
