#include "CropJob.h"

#include "CommonTool.h"

CropJob::CropJob(CommonTool& tool) : m_tool(tool) {}

bool CropJob::run(const QString&, const QString&, double, double)
{
    emit m_tool.videoCompressionFinished(false);
    return false;
}
