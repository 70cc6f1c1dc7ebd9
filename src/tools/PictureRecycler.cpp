#include "PictureRecycler.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <climits>
#include <cstdint>

namespace {

// Plane starts and padding as the library's own allocator lays them out: its widest SIMD
// reads this far past the end of a plane.
constexpr size_t kAlign = 64;
constexpr size_t kPlanePadding = 16 + kAlign - 1;

size_t alignUp(size_t size)
{
    return (size + kAlign - 1) & ~(kAlign - 1);
}

} // namespace

void PictureRecycler::attach(AVCodecContext* decoder)
{
    decoder->opaque = this;
    decoder->get_buffer2 = &PictureRecycler::getBuffer;
#if FF_API_THREAD_SAFE_CALLBACKS
    // Libraries before 60 warn at every open unless told the callback is thread-safe (it is:
    // the pool is taken under the lock); later ones assume it and dropped the field.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    decoder->thread_safe_callbacks = 1;
#pragma GCC diagnostic pop
#endif
}

int PictureRecycler::getBuffer(AVCodecContext* decoder, AVFrame* frame, int flags)
{
    // Palettes, hardware frames and decoders that cannot decode into memory they are given
    // keep the library's own allocator.
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame->format));
    const bool plainPicture = decoder->codec_type == AVMEDIA_TYPE_VIDEO && decoder->codec &&
                              (decoder->codec->capabilities & AV_CODEC_CAP_DR1) && format &&
                              !(format->flags & (AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_HWACCEL |
                                                 AV_PIX_FMT_FLAG_BITSTREAM));
    if (plainPicture && static_cast<PictureRecycler*>(decoder->opaque)->fill(decoder, frame) == 0)
        return 0;
    return avcodec_default_get_buffer2(decoder, frame, flags);
}

int PictureRecycler::fill(AVCodecContext* decoder, AVFrame* frame)
{
    const auto pixelFormat = static_cast<AVPixelFormat>(frame->format);
    int width = frame->width;
    int height = frame->height;
    int rowAlign[AV_NUM_DATA_POINTERS] = {};
    avcodec_align_dimensions2(decoder, &width, &height, rowAlign);

    // Widen until every row length is a multiple of what the decoder needs.
    int rows[4] = {};
    for (;;) {
        if (width > 16 * frame->width + 256 || av_image_fill_linesizes(rows, pixelFormat, width) < 0)
            return AVERROR(EINVAL);
        bool aligned = true;
        for (int i = 0; i < 4; ++i)
            aligned = aligned && (rowAlign[i] <= 0 || rows[i] % rowAlign[i] == 0);
        if (aligned)
            break;
        width += width & ~(width - 1);
    }
    const ptrdiff_t strides[4] = {rows[0], rows[1], rows[2], rows[3]};
    size_t planeSizes[4] = {};
    if (av_image_fill_plane_sizes(planeSizes, pixelFormat, height, strides) < 0)
        return AVERROR(EINVAL);
    size_t total = kAlign; // room to align the first plane
    for (const size_t size : planeSizes)
        total += size ? alignUp(size + kPlanePadding) : 0;
    if (total > INT_MAX)
        return AVERROR(EINVAL);

    AVBufferRef* buffer = take(static_cast<int>(total));
    if (!buffer)
        return AVERROR(ENOMEM);
    auto* at = reinterpret_cast<uint8_t*>(alignUp(reinterpret_cast<uintptr_t>(buffer->data)));
    for (int i = 0; i < 4; ++i) {
        frame->linesize[i] = rows[i];
        frame->data[i] = planeSizes[i] ? at : nullptr;
        at += planeSizes[i] ? alignUp(planeSizes[i] + kPlanePadding) : 0;
    }
    frame->buf[0] = buffer;
    frame->extended_data = frame->data;
    return 0;
}

AVBufferRef* PictureRecycler::take(int size)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_pool || m_size != size) {
        // Pictures of the old size still in use go back to the old pool, which frees itself
        // with the last of them.
        m_pool.reset(av_buffer_pool_init(static_cast<size_t>(size), av_buffer_allocz));
        m_size = m_pool ? size : 0;
    }
    return m_pool ? av_buffer_pool_get(m_pool.get()) : nullptr;
}
