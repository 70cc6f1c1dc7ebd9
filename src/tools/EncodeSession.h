#pragma once

#include "DisplayOrientation.h"
#include "FfmpegPtr.h"
#include "FrameScaler.h"

#include <QString>

// Where a re-encoding job's main loop stopped.
enum class EncodeLoopEnd
{
    EndOfInput,
    CancelledBetweenPackets,
    CancelledInFrame,
};

// The contexts every re-encoding job (compress, convert) holds for one run; the job's own
// session adds the rest. Used on the job's thread only and destroyed, closing the files,
// before the finished signal goes out.
struct EncodeSession
{
    // Opens the input, finds its first video and audio streams (cover pictures count as video
    // unless `skipCoverArt`) and creates the output context. Logs and returns false on failure.
    bool open(const QString& inputPath, const QString& outputPath, bool skipCoverArt);

    ff::InputFormatPtr input;
    ff::OutputFormatPtr output;
    ff::CodecContextPtr videoDecoder; // convert: only when re-encoding the video
    ff::CodecContextPtr videoEncoder;
    FrameScaler scaler;
    ff::FramePtr decoded;
    ff::PacketPtr packet;
    ff::PacketPtr encoded;
    int videoIndex = -1;
    int audioIndex = -1;
    // How the input's video is shown. Re-encoded pictures are turned to stand that way, so the
    // output is upright in every container and player, also those that ignore display matrices.
    DisplayOrientation shown;
    AVStream* videoOut = nullptr;
    AVStream* audioOut = nullptr;
};
