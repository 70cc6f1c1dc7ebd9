#pragma once

#include "DisplayOrientation.h"
#include "FfmpegPtr.h"

// Converts decoded pictures to the encoder's yuv420p picture, turned the way the source is
// shown when asked to. Remembers the source form the scaler was made for: a stream whose size
// or format changes on the way gets a scaler for its new form rather than one that would read
// past the picture. Owned by one job, used on its thread only.
class FrameScaler
{
public:
    // The target size is the picture's before turning; the pictures handed to scale() have the
    // turned size. False when the library cannot scale between these forms.
    bool open(int sourceWidth, int sourceHeight, AVPixelFormat sourceFormat, int targetWidth,
              int targetHeight, const DisplayOrientation& turn = DisplayOrientation());
    // Scales `frame` into `target` (which keeps its size). False when the frame must be skipped:
    // no scaler for its form, or the target cannot be made writable.
    bool scale(const AVFrame* frame, AVFrame* target);

private:
    ff::SwsPtr m_scaler;
    DisplayOrientation m_turn;
    ff::FramePtr m_unturned; // the scaled picture before turning; only when turning
    int m_width = 0;
    int m_height = 0;
    int m_format = AV_PIX_FMT_NONE;
    int m_targetWidth = 0;
    int m_targetHeight = 0;
};
