#include "FrameScaler.h"

bool FrameScaler::open(int sourceWidth, int sourceHeight, AVPixelFormat sourceFormat, int targetWidth,
                       int targetHeight, const DisplayOrientation& turn)
{
    m_scaler.reset(sws_getContext(sourceWidth, sourceHeight, sourceFormat, targetWidth, targetHeight,
                                  AV_PIX_FMT_YUV420P, SWS_BILINEAR, nullptr, nullptr, nullptr));
    m_width = sourceWidth;
    m_height = sourceHeight;
    m_format = sourceFormat;
    m_turn = turn;
    if (turn.isUpright()) {
        m_unturned.reset();
    } else if (!m_unturned || m_unturned->width != targetWidth || m_unturned->height != targetHeight) {
        m_unturned = ff::makeFrame();
        if (m_unturned) {
            m_unturned->format = AV_PIX_FMT_YUV420P;
            m_unturned->width = targetWidth;
            m_unturned->height = targetHeight;
            if (av_frame_get_buffer(m_unturned.get(), 0) < 0)
                m_unturned.reset();
        }
        if (!m_unturned)
            m_scaler.reset();
    }
    m_targetWidth = targetWidth;
    m_targetHeight = targetHeight;
    return m_scaler != nullptr;
}

bool FrameScaler::scale(const AVFrame* frame, AVFrame* target)
{
    if (frame->width != m_width || frame->height != m_height || frame->format != m_format)
        open(frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), m_targetWidth,
             m_targetHeight, m_turn);
    // The encoder may still hold the previous picture; never write into a shared buffer.
    if (!m_scaler || av_frame_make_writable(target) < 0)
        return false;
    if (m_turn.isUpright()) {
        sws_scale(m_scaler.get(), frame->data, frame->linesize, 0, frame->height, target->data,
                  target->linesize);
        return true;
    }
    sws_scale(m_scaler.get(), frame->data, frame->linesize, 0, frame->height, m_unturned->data,
              m_unturned->linesize);
    m_turn.turnYuv420(m_unturned->data, m_unturned->linesize, m_targetWidth, m_targetHeight, target->data,
                      target->linesize);
    return true;
}
