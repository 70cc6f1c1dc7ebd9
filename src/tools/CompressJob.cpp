#include "CompressJob.h"

#include "CommonTool.h"

// Placeholder until the job is written: keeps the reporting protocol (finished once).
CompressJob::CompressJob(CommonTool& tool) : m_tool(tool) {}

bool CompressJob::run(const QString&, const QString&, int)
{
    emit m_tool.videoCompressionFinished(false);
    return false;
}
