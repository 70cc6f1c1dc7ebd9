#include "FrameScaler.h"

bool FrameScaler::open(int sourceWidth, int sourceHeight, AVPixelFormat sourceFormat, int targetWidth,
                       int targetHeight)
{
    m_scaler.reset(sws_getContext(sourceWidth, sourceHeight, sourceFormat, targetWidth, targetHeight,
                                  AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr, nullptr));
    m_width = sourceWidth;
    m_height = sourceHeight;
    m_format = sourceFormat;
    return m_scaler != nullptr;
}

bool FrameScaler::scale(const AVFrame* frame, AVFrame* target)
{
    if (frame->width != m_width || frame->height != m_height || frame->format != m_format)
        open(frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), target->width,
             target->height);
    // The encoder may still hold the previous picture; never write into a shared buffer.
    if (!m_scaler || av_frame_make_writable(target) < 0)
        return false;
    sws_scale(m_scaler.get(), frame->data, frame->linesize, 0, frame->height, target->data, target->linesize);
    return true;
}
