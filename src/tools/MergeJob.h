#pragma once

#include <QString>
#include <QVariantList>

struct AVDictionary;
struct AVFormatContext;
class JobReporter;

// Joins files end to end through the concat demuxer without re-encoding. Runs on the calling
// thread (a pool thread for the async form), reports through its JobReporter and reads its
// cancel flag. Owns all of its contexts and the temporary list file, which it removes on every
// path out.
class MergeJob
{
public:
    explicit MergeJob(JobReporter& reporter);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QVariantList& inputPaths, const QString& outputPath);

    // Where the concatenation list lives while a merge runs: one fixed name in the system's
    // temporary folder, so two merges at once would overwrite each other's list.
    static QString listFilePath();

private:
    // Writes the ffconcat list and sums the known durations into total (25 units a second).
    // On a missing input, or inputs shown at different orientations, the list file is removed
    // again and false returned.
    bool writeList(const QVariantList& inputPaths, const QString& listPath, qint64& total);
    // Opens the list through the concat demuxer and copies everything into the output.
    // outputCreated tells the caller that the output file was opened (and so exists).
    bool concatenate(const QString& listPath, AVDictionary** options, AVFormatContext* output,
                     const QString& outputPath, bool& outputCreated);
    bool copyPackets(AVFormatContext* input, AVFormatContext* output);

    JobReporter& m_reporter;
};
