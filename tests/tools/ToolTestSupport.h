#pragma once

#include "CommonTool.h"

#include <QObject>
#include <QProcess>
#include <QStringList>
#include <mutex>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>
#include <utility>
#include <vector>

// Test helpers shared by the tools tests: a log recorder and a recorder of the job signals.
namespace ToolTest {

// Packets of the selected stream(s) as ffprobe counts them.
inline int countPackets(const QString& file, const QString& streams)
{
    QProcess p;
    p.start(QStringLiteral("ffprobe"), {"-v", "error", "-count_packets", "-select_streams", streams,
                                        "-show_entries", "stream=nb_read_packets", "-of", "csv=p=0", file});
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed().toInt();
}

// Presentation times (in the stream's time base) of every packet of the selected stream, in
// file order.
inline QList<qint64> packetPts(const QString& file, const QString& streams)
{
    QProcess p;
    p.start(QStringLiteral("ffprobe"), {"-v", "error", "-select_streams", streams, "-show_entries",
                                        "packet=pts", "-of", "csv=p=0", file});
    p.waitForFinished(60000);
    QList<qint64> values;
    // Packets with side data get extra (empty) columns; the pts is the first.
    for (const QByteArray& line : p.readAllStandardOutput().split('\n')) {
        const QByteArray pts = line.split(',').first().trimmed();
        if (!pts.isEmpty())
            values << pts.toLongLong();
    }
    return values;
}

// Replaces the default logger for its lifetime with one that records every message (debug and
// up), so a test can check the reason a job logged.
class LogCapture
{
public:
    LogCapture() : m_previous(spdlog::default_logger()), m_sink(std::make_shared<Sink>())
    {
        auto logger = std::make_shared<spdlog::logger>("capture", m_sink);
        logger->set_level(spdlog::level::debug);
        spdlog::set_default_logger(logger);
    }
    ~LogCapture() { spdlog::set_default_logger(m_previous); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    QStringList lines(spdlog::level::level_enum level) const
    {
        std::lock_guard<std::mutex> lock(m_sink->entriesMutex);
        QStringList out;
        for (const auto& entry : m_sink->entries)
            if (entry.first == level)
                out << entry.second;
        return out;
    }
    bool contains(spdlog::level::level_enum level, const QString& text) const
    {
        for (const QString& line : lines(level))
            if (line.contains(text))
                return true;
        return false;
    }
    int count(spdlog::level::level_enum level) const { return lines(level).size(); }
    void clear()
    {
        std::lock_guard<std::mutex> lock(m_sink->entriesMutex);
        m_sink->entries.clear();
    }

private:
    struct Sink : spdlog::sinks::base_sink<std::mutex>
    {
        mutable std::mutex entriesMutex;
        std::vector<std::pair<spdlog::level::level_enum, QString>> entries;

    protected:
        void sink_it_(const spdlog::details::log_msg& msg) override
        {
            std::lock_guard<std::mutex> lock(entriesMutex);
            entries.emplace_back(msg.level,
                                 QString::fromUtf8(msg.payload.data(), static_cast<int>(msg.payload.size())));
        }
        void flush_() override {}
    };

    std::shared_ptr<spdlog::logger> m_previous;
    std::shared_ptr<Sink> m_sink;
};

// Records the four job signals in arrival order as "total:N", "progress:N", "cancelled" and
// "finished:true|false". Lives on the test thread: signals from a pool thread arrive queued.
class SignalRecorder : public QObject
{
public:
    explicit SignalRecorder(CommonTool& tool)
    {
        connect(&tool, &CommonTool::videoCompressionFrameTotal, this,
                [this](int total) { events << QStringLiteral("total:%1").arg(total); });
        connect(&tool, &CommonTool::videoCompressionProgress, this,
                [this](int value) { events << QStringLiteral("progress:%1").arg(value); });
        connect(&tool, &CommonTool::videoCompressionCancelled, this,
                [this]() { events << QStringLiteral("cancelled"); });
        connect(&tool, &CommonTool::videoCompressionFinished, this,
                [this](bool ok) { events << QStringLiteral("finished:%1").arg(ok ? "true" : "false"); });
    }
    QStringList events;

    int finishedCount() const { return events.filter(QStringLiteral("finished:")).size(); }
    QList<int> progressValues() const
    {
        QList<int> values;
        for (const QString& e : events)
            if (e.startsWith(QLatin1String("progress:")))
                values << e.mid(9).toInt();
        return values;
    }
};

} // namespace ToolTest
