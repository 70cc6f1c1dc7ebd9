#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QtTest>
#include <memory>
#include <mutex>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>

// Makes the default logger record every message (any thread), so a test can wait for the
// log line that is the only outward trace of a failed background load.
class LogCapture
{
public:
    explicit LogCapture(spdlog::level::level_enum level = spdlog::level::info)
        : m_sink(std::make_shared<Sink>())
    {
        auto logger = std::make_shared<spdlog::logger>("capture", m_sink);
        logger->set_level(level);
        spdlog::set_default_logger(logger);
    }

    // Number of messages so far that contain `text`.
    int count(const QString& text) const
    {
        std::lock_guard<std::mutex> lock(m_sink->linesMutex);
        int n = 0;
        for (const QString& line : m_sink->lines)
            n += line.contains(text) ? 1 : 0;
        return n;
    }

    // Processes events until `count(text) >= n` or the timeout passes.
    bool waitFor(const QString& text, int n = 1, int timeoutMs = 20000) const
    {
        QElapsedTimer timer;
        timer.start();
        while (count(text) < n) {
            if (timer.elapsed() > timeoutMs)
                return false;
            QTest::qWait(10);
        }
        return true;
    }

private:
    struct Sink : spdlog::sinks::base_sink<std::mutex>
    {
        mutable std::mutex linesMutex;
        QStringList lines;

    protected:
        void sink_it_(const spdlog::details::log_msg& msg) override
        {
            std::lock_guard<std::mutex> lock(linesMutex);
            lines << QString::fromUtf8(msg.payload.data(), static_cast<int>(msg.payload.size()));
        }
        void flush_() override {}
    };

    std::shared_ptr<Sink> m_sink;
};
