#pragma once

#include <QString>

class JobReporter;
enum class EncodeLoopEnd;

// Re-encodes the video with the input's own codec at one of three levels and carries the
// first audio stream over. Runs on the calling thread (a pool thread for the async form),
// reports through its JobReporter and reads its cancel flag. Owns all of its contexts;
// they are released before the finished signal goes out, so receivers find the file closed.
class CompressJob
{
public:
    explicit CompressJob(JobReporter& reporter);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QString& inputPath, const QString& outputPath, int compressionLevel);

private:
    struct Session;

    bool prepare(Session& s, const QString& inputPath, const QString& outputPath, int compressionLevel);
    bool openVideoEncoder(Session& s, double factor, int crf);
    bool openAudioCoders(Session& s, double factor);
    EncodeLoopEnd mainLoop(Session& s);
    // False when the cancel flag was seen between two decoded frames.
    bool encodeVideoPacket(Session& s);
    void emitCancelled(const char* message);

    JobReporter& m_reporter;
};
