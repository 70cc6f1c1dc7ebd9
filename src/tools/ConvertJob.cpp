#include "ConvertJob.h"

#include "CommonTool.h"

// Placeholder until the job is written: keeps the reporting protocol (finished once).
ConvertJob::ConvertJob(CommonTool& tool) : m_tool(tool) {}

bool ConvertJob::run(const QString&, const QString&, const VideoInfo&)
{
    emit m_tool.videoCompressionFinished(false);
    return false;
}
