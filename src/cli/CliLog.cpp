#include "CliLog.h"

#include "Logging.h"
#include "Terminal.h"

extern "C" {
#include <libavutil/log.h>
}

#include <cstdarg>
#include <memory>
#include <mutex>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>

namespace {

class TerminalSink : public spdlog::sinks::base_sink<std::mutex>
{
public:
    explicit TerminalSink(bool allErrors) : m_allErrors(allErrors) {}

protected:
    void sink_it_(const spdlog::details::log_msg& msg) override
    {
        if (msg.level >= spdlog::level::err) {
            if (m_errorShown && !m_allErrors)
                return;
            m_errorShown = true;
        }
        spdlog::memory_buf_t formatted;
        formatter_->format(msg, formatted);
        Terminal::instance().printLine(fmt::to_string(formatted));
    }
    void flush_() override {}

private:
    bool m_allErrors;
    bool m_errorShown = false;
};

std::mutex g_avLogMutex;
int g_avPrintPrefix = 1;

void avLogToTerminal(void* avcl, int level, const char* format, va_list args)
{
    if (level > av_log_get_level())
        return;
    char line[2048];
    {
        std::lock_guard<std::mutex> lock(g_avLogMutex);
        av_log_format_line2(avcl, level, format, args, line, sizeof(line), &g_avPrintPrefix);
    }
    Terminal::instance().printFragment(line);
}

} // namespace

namespace CliLog {

void install(bool verbose)
{
    auto sink = std::make_shared<TerminalSink>(verbose);
    auto logger = std::make_shared<spdlog::logger>("vidora-cli", sink);
    logger->set_pattern("vidora-cli: %l: %v");
    spdlog::set_default_logger(logger);
    // Error by default; VIDORA_LOG_LEVEL may change it, and --verbose asks for info at least.
    applyLogLevel();
    if (verbose && spdlog::get_level() > spdlog::level::info)
        spdlog::set_level(spdlog::level::info);

    av_log_set_callback(avLogToTerminal);
    av_log_set_level(verbose ? AV_LOG_INFO : AV_LOG_QUIET);
}

} // namespace CliLog
