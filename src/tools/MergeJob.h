#pragma once

#include <QString>
#include <QVariantList>

class CommonTool;

// Joins files end to end through the concat demuxer without re-encoding. Runs on the calling
// thread (a pool thread for the async form), reports through the tool's signals and reads its
// cancel flag. Owns all of its contexts and the temporary list file.
class MergeJob
{
public:
    explicit MergeJob(CommonTool& tool);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QVariantList& inputPaths, const QString& outputPath);

private:
    CommonTool& m_tool;
};
