#include "GrabbedFrame.h"

#include "CommonTool.h"

#include <spdlog/spdlog.h>

GrabbedFrame grabThumbnailFrame(CommonTool* tool, const QString& filePath, double seconds)
{
    const std::string path = filePath.toStdString();
    spdlog::info("Loading thumbnail for file: {}", path);
    uint8_t* buffer = nullptr;
    GrabbedFrame frame;
    tool->getVideoThumbnail(filePath, seconds, &buffer, &frame.width, &frame.height);
    frame.buffer.reset(buffer);
    spdlog::info("Thumbnail loaded: width={}, height={}", frame.width, frame.height);
    if (!frame.isValid()) {
        spdlog::error("Failed to load thumbnail for file: {}", path);
        return {};
    }
    return frame;
}
