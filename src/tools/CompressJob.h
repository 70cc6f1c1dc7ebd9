#pragma once

#include <QString>

class CommonTool;

// Re-encodes the video with the input's own codec at one of three levels and carries the
// first audio stream over. Runs on the calling thread (a pool thread for the async form),
// reports through the tool's signals and reads its cancel flag. Owns all of its contexts.
class CompressJob
{
public:
    explicit CompressJob(CommonTool& tool);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QString& inputPath, const QString& outputPath, int compressionLevel);

private:
    CommonTool& m_tool;
};
