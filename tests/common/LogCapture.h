#pragma once

#include <QString>
#include <QStringList>
#include <QtTest>
#include <memory>
#include <mutex>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>
#include <utility>
#include <vector>

// While it lives, the default logger records every message from `level` up (any thread) instead
// of printing it, so a test can check or wait for the reason a job logged. The previous default
// logger comes back afterwards.
class LogCapture
{
public:
    explicit LogCapture(spdlog::level::level_enum level = spdlog::level::info)
        : m_previous(spdlog::default_logger()), m_sink(std::make_shared<Sink>())
    {
        auto logger = std::make_shared<spdlog::logger>("capture", m_sink);
        logger->set_level(level);
        spdlog::set_default_logger(logger);
    }
    ~LogCapture() { spdlog::set_default_logger(m_previous); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Messages of one level, or of every level with spdlog::level::off.
    QStringList lines(spdlog::level::level_enum level = spdlog::level::off) const
    {
        std::lock_guard<std::mutex> lock(m_sink->entriesMutex);
        QStringList out;
        for (const auto& entry : m_sink->entries)
            if (level == spdlog::level::off || entry.first == level)
                out << entry.second;
        return out;
    }
    // Number of messages so far that contain `text`.
    int count(const QString& text) const { return lines().filter(text).size(); }
    bool contains(const QString& text) const { return count(text) > 0; }
    // Processes events until `count(text) >= n` or the timeout passes.
    bool waitFor(const QString& text, int n = 1, int timeoutMs = 20000) const
    {
        return QTest::qWaitFor([&]() { return count(text) >= n; }, timeoutMs);
    }
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
