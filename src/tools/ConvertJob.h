#pragma once

#include "VideoInfo.h"

#include <QString>

class CommonTool;

// Writes the input into another container and, where asked, another codec, size, bit rate
// or frame rate. Runs on the calling thread, reports through the tool's signals and reads
// its cancel flag. Owns all of its contexts.
class ConvertJob
{
public:
    explicit ConvertJob(CommonTool& tool);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QString& inputPath, const QString& outputPath, const VideoInfo& request);

private:
    CommonTool& m_tool;
};
