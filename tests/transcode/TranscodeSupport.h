#pragma once

#include "CommonTool.h"
#include "TestMedia.h"

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QtTest>
#include <memory>
#include <mutex>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>
#include <string>
#include <vector>

// Helpers shared by the compress and convert tests: a log recorder, a recorder of the job
// signals with the protocol check, and ffprobe/ffmpeg read-backs of the outputs.
namespace Transcode {

// Collects every message of the default logger while it lives (level debug), instead of
// printing them; the previous default logger comes back afterwards.
class LogCapture
{
public:
    LogCapture()
    {
        m_sink = std::make_shared<Sink>();
        m_previous = spdlog::default_logger();
        auto logger = std::make_shared<spdlog::logger>("capture", m_sink);
        logger->set_level(spdlog::level::debug);
        spdlog::set_default_logger(logger);
    }
    ~LogCapture() { spdlog::set_default_logger(m_previous); }

    int count(const QString& text) const
    {
        std::lock_guard<std::mutex> lock(m_sink->linesMutex);
        int n = 0;
        for (const QString& line : m_sink->lines)
            n += line.contains(text) ? 1 : 0;
        return n;
    }
    bool contains(const QString& text) const { return count(text) > 0; }
    QStringList lines() const
    {
        std::lock_guard<std::mutex> lock(m_sink->linesMutex);
        return m_sink->lines;
    }

private:
    struct Sink : spdlog::sinks::base_sink<std::mutex>
    {
        mutable std::mutex linesMutex;
        QStringList lines;
        void sink_it_(const spdlog::details::log_msg& msg) override
        {
            std::lock_guard<std::mutex> lock(linesMutex);
            lines << QString::fromUtf8(msg.payload.data(), static_cast<int>(msg.payload.size()));
        }
        void flush_() override {}
    };
    std::shared_ptr<Sink> m_sink;
    std::shared_ptr<spdlog::logger> m_previous;
};

// Records the four job signals in the order they arrive (directly when the job runs on the
// test's thread, queued when it runs on the pool).
class JobRecorder
{
public:
    struct Event
    {
        enum Kind
        {
            Total,
            Progress,
            Cancelled,
            Finished
        } kind;
        int value;
    };

    explicit JobRecorder(CommonTool& tool)
    {
        QObject::connect(&tool, &CommonTool::videoCompressionFrameTotal, &m_context, [this](int total) {
            m_events.push_back({Event::Total, total});
        });
        QObject::connect(&tool, &CommonTool::videoCompressionProgress, &m_context, [this](int progress) {
            m_events.push_back({Event::Progress, progress});
        });
        QObject::connect(&tool, &CommonTool::videoCompressionCancelled, &m_context, [this]() {
            m_events.push_back({Event::Cancelled, 0});
        });
        QObject::connect(&tool, &CommonTool::videoCompressionFinished, &m_context, [this](bool ok) {
            m_events.push_back({Event::Finished, ok ? 1 : 0});
        });
    }

    const std::vector<Event>& events() const { return m_events; }
    int count(Event::Kind kind) const
    {
        int n = 0;
        for (const Event& e : m_events)
            n += e.kind == kind ? 1 : 0;
        return n;
    }
    int total() const
    {
        for (const Event& e : m_events)
            if (e.kind == Event::Total)
                return e.value;
        return -1;
    }
    std::vector<int> progress() const
    {
        std::vector<int> values;
        for (const Event& e : m_events)
            if (e.kind == Event::Progress)
                values.push_back(e.value);
        return values;
    }
    bool finished() const { return count(Event::Finished) > 0; }
    bool waitFinished(int timeoutMs = 120000) const
    {
        return QTest::qWaitFor([this]() { return finished(); }, timeoutMs);
    }

    // The reporting protocol: at most one total and before any progress (exactly one when
    // `expectTotal`), at most one cancel, directly before the one finished signal, which comes
    // last and carries the value the job returned.
    void checkProtocol(bool returned, bool expectTotal) const
    {
        QCOMPARE(count(Event::Finished), 1);
        QCOMPARE(m_events.back().kind, Event::Finished);
        QCOMPARE(m_events.back().value == 1, returned);
        QCOMPARE(count(Event::Total), expectTotal ? 1 : 0);
        if (expectTotal) {
            QCOMPARE(m_events.front().kind, Event::Total);
        }
        QVERIFY(count(Event::Cancelled) <= 1);
        if (count(Event::Cancelled) == 1) {
            QCOMPARE(m_events[m_events.size() - 2].kind, Event::Cancelled);
        }
    }

private:
    QObject m_context;
    std::vector<Event> m_events;
};

// Output of a program, stdout and stderr merged.
inline QString run(const QString& program, const QStringList& args, int* exitCode = nullptr)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(program, args);
    p.waitForFinished(120000);
    if (exitCode)
        *exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    return QString::fromUtf8(p.readAll()).trimmed();
}

// Packets of one stream ("v:0", "a:0") as counted by ffprobe; -1 when unreadable.
inline int packetCount(const QString& path, const QString& stream)
{
    bool ok = false;
    const int n = run("ffprobe", {"-v", "error", "-count_packets", "-select_streams", stream, "-show_entries",
                                  "stream=nb_read_packets", "-of", "csv=p=0", path})
                      .toInt(&ok);
    return ok ? n : -1;
}

// Sizes of every packet of one stream, in order: equal lists mean an untouched copy.
inline QStringList packetSizes(const QString& path, const QString& stream)
{
    return run("ffprobe", {"-v", "error", "-select_streams", stream, "-show_entries", "packet=size", "-of",
                           "csv=p=0", path})
        .split('\n', Qt::SkipEmptyParts);
}

// Decodes the selected streams to nowhere; the text is whatever the decoders complained about.
inline QString decodeErrors(const QString& path, const QString& map)
{
    return run("ffmpeg", {"-hide_banner", "-v", "error", "-i", path, "-map", map, "-f", "null", "-"});
}

// Seconds of audio the whole stream decodes to.
inline double decodedAudioSeconds(const QString& path)
{
    QProcess p;
    p.start("ffmpeg", {"-hide_banner", "-v", "error", "-i", path, "-map", "0:a:0", "-ac", "1", "-ar", "8000",
                       "-f", "s16le", "-"});
    p.waitForFinished(120000);
    return static_cast<double>(p.readAllStandardOutput().size()) / 2.0 / 8000.0;
}

inline QByteArray fileBytes(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace Transcode
