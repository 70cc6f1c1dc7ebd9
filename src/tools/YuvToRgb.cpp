#include "YuvToRgb.h"

#include <algorithm>

namespace {

// (298 C + chroma term) >> 8 stays within -277..534 for all 8-bit inputs; a table indexed by
// it replaces two comparisons per channel.
constexpr int kClampOffset = 384;
struct ClampTable
{
    uint8_t values[1024];
    constexpr ClampTable() : values()
    {
        for (int i = 0; i < 1024; ++i)
            values[i] = static_cast<uint8_t>(i - kClampOffset < 0     ? 0
                                             : i - kClampOffset > 255 ? 255
                                                                      : i - kClampOffset);
    }
};
constexpr ClampTable kClamp;

inline uint8_t clamp255(int v)
{
    return kClamp.values[v + kClampOffset];
}

} // namespace

void yuv420ToRgb24(const uint8_t* yuv, int width, int height, uint8_t* rgb, int rgbStride)
{
    if (!yuv || width < 1 || height < 1)
        return;
    // Chroma rows are ceil(w/2) long and ceil(h/2) high, as the grabber packs them; for even
    // sizes this is w/2 and (w*h)/4.
    const int halfW = (width + 1) / 2;
    const int halfH = (height + 1) / 2;
    const uint8_t* yPlane = yuv;
    const uint8_t* uPlane = yuv + static_cast<size_t>(width) * height;
    const uint8_t* vPlane = uPlane + static_cast<size_t>(halfW) * halfH;
    for (int y = 0; y < height; ++y) {
        const uint8_t* __restrict yRow = yPlane + static_cast<size_t>(y) * width;
        const uint8_t* __restrict uRow = uPlane + static_cast<size_t>(y / 2) * halfW;
        const uint8_t* __restrict vRow = vPlane + static_cast<size_t>(y / 2) * halfW;
        uint8_t* __restrict out = rgb + static_cast<size_t>(y) * rgbStride;
        // Two pixels share one chroma sample: its three terms are computed once per pair.
        int x = 0;
        for (; x + 1 < width; x += 2) {
            const int u = uRow[x / 2];
            const int v = vRow[x / 2];
            const int r = 409 * v - 52224;
            const int g = -100 * u - 208 * v + 39552;
            const int b = 516 * u - 65920;
            const int c0 = 298 * (yRow[x] - 16);
            const int c1 = 298 * (yRow[x + 1] - 16);
            out[3 * x + 0] = clamp255((c0 + r) >> 8);
            out[3 * x + 1] = clamp255((c0 + g) >> 8);
            out[3 * x + 2] = clamp255((c0 + b) >> 8);
            out[3 * x + 3] = clamp255((c1 + r) >> 8);
            out[3 * x + 4] = clamp255((c1 + g) >> 8);
            out[3 * x + 5] = clamp255((c1 + b) >> 8);
        }
        if (x < width) { // odd width: the last pixel has its chroma sample to itself
            const int u = uRow[x / 2];
            const int v = vRow[x / 2];
            const int c = 298 * (yRow[x] - 16);
            out[3 * x + 0] = clamp255((c + 409 * v - 52224) >> 8);
            out[3 * x + 1] = clamp255((c - 100 * u - 208 * v + 39552) >> 8);
            out[3 * x + 2] = clamp255((c + 516 * u - 65920) >> 8);
        }
    }
}

QImage yuv420ToImage(const uint8_t* yuv, int width, int height)
{
    if (!yuv || width < 1 || height < 1)
        return {};
    QImage image(width, height, QImage::Format_RGB888);
    if (image.isNull())
        return {};
    yuv420ToRgb24(yuv, width, height, image.bits(), image.bytesPerLine());
    return image;
}
