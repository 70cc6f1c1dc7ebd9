#pragma once

#include "VideoInfo.h"

#include <QString>

class JobReporter;
enum class EncodeLoopEnd;
struct AVStream;

// Writes the input into another container and, where asked, another codec, size, bit rate
// or frame rate. Runs on the calling thread, reports through its JobReporter and reads
// its cancel flag. Owns all of its contexts; they are released before the finished signal
// goes out, so receivers find the output file closed.
class ConvertJob
{
public:
    explicit ConvertJob(JobReporter& reporter);
    // Returns the value also sent with videoCompressionFinished.
    bool run(const QString& inputPath, const QString& outputPath, const VideoInfo& request);

private:
    struct Session;

    bool prepare(Session& s, const QString& inputPath, const QString& outputPath, const VideoInfo& request);
    bool setUpVideoCopy(Session& s);
    bool setUpVideoEncode(Session& s, const VideoInfo& request);
    bool setUpAudio(Session& s, const VideoInfo& request);
    EncodeLoopEnd mainLoop(Session& s);
    // False when the cancel flag was seen between two decoded frames.
    bool encodeVideoPacket(Session& s);
    void encodeFrameSlots(Session& s);
    void flush(Session& s);

    JobReporter& m_reporter;
};
