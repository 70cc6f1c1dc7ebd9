#include <cstdint>

extern "C" {
#include <libavutil/log.h>
}
#include <spdlog/spdlog.h>

// Every target starts with quiet libraries: the log lines of millions of rejected inputs would
// cost more than the parsing they report on.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    av_log_set_level(AV_LOG_QUIET);
    spdlog::set_level(spdlog::level::off);
    return 0;
}
