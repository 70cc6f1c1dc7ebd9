#include "Logging.h"

#include <cstdlib>
#include <spdlog/spdlog.h>

void applyLogLevel()
{
    spdlog::set_level(spdlog::level::err);
    if (const char* wanted = std::getenv("VIDORA_LOG_LEVEL")) {
        const auto level = spdlog::level::from_str(wanted);
        // from_str answers "off" for unknown words; only take "off" when it was asked for.
        if (level != spdlog::level::off || std::string(wanted) == "off")
            spdlog::set_level(level);
    }
}
