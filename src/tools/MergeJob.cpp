#include "MergeJob.h"

#include "CommonTool.h"

MergeJob::MergeJob(CommonTool& tool) : m_tool(tool) {}

bool MergeJob::run(const QVariantList&, const QString&)
{
    emit m_tool.videoCompressionFinished(false);
    return false;
}
