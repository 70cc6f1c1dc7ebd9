#pragma once

#include <QString>

class JobReporter;

// Copies the packets of a time range into a new file without re-encoding. Runs on the
// calling thread (a pool thread for the async form), reports through its JobReporter and
// reads its cancel flag. Owns all of its contexts.
class CropJob
{
public:
    explicit CropJob(JobReporter& reporter);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QString& inputPath, const QString& outputPath, double startTime, double endTime);

private:
    // Everything between the range check and the finished report; contexts are released
    // by their holders on every return.
    bool copyRange(const QString& inputPath, const QString& outputPath, double startTime, double endTime);

    JobReporter& m_reporter;
};
