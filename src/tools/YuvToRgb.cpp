#include "YuvToRgb.h"

#include <cstddef>
#include <vector>

// The conversion runs over whole rows in separate passes on contiguous arrays, so the compiler
// vectorises each of them (the per-pixel form with x/2 chroma lookups and three-byte stores
// did not vectorise and took ~25-40 ms for a 1080p frame; this takes ~1-3 ms). On x86-64
// with GCC an AVX2 copy is built next to the baseline one and picked at load time (not under
// ThreadSanitizer, whose instrumented resolver would run before its runtime is up).
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && !defined(__SANITIZE_THREAD__)
#define VIDORA_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VIDORA_VECTOR_CLONES
#endif

namespace {

inline uint8_t clamp255(int v)
{
    return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v));
}

// The formula with the -16 of C folded into the constants: 298 (Y - 16) = 298 Y - 4768.
constexpr int kRedOffset = -52224 - 4768;
constexpr int kGreenOffset = 39552 - 4768;
constexpr int kBlueOffset = -65920 - 4768;

} // namespace

VIDORA_VECTOR_CLONES
void yuv420ToRgb24(const uint8_t* yuv, int width, int height, uint8_t* rgb, int rgbStride)
{
    if (!yuv || width < 1 || height < 1)
        return;
    // Chroma rows are ceil(w/2) long and ceil(h/2) high, as the grabber packs them; for even
    // sizes this is w/2 and (w*h)/4.
    const int halfW = (width + 1) / 2;
    const int halfH = (height + 1) / 2;
    const int pairs = width / 2;
    const uint8_t* yPlane = yuv;
    const uint8_t* uPlane = yuv + static_cast<size_t>(width) * height;
    const uint8_t* vPlane = uPlane + static_cast<size_t>(halfW) * halfH;

    // Chroma terms spread to full width (shared by the two rows of a chroma row), then the
    // three channels of one row, each as its own array.
    std::vector<int32_t> chroma(3 * static_cast<size_t>(width));
    std::vector<uint8_t> channels(3 * static_cast<size_t>(width));
    int32_t* __restrict redTerm = chroma.data();
    int32_t* __restrict greenTerm = redTerm + width;
    int32_t* __restrict blueTerm = greenTerm + width;
    uint8_t* __restrict red = channels.data();
    uint8_t* __restrict green = red + width;
    uint8_t* __restrict blue = green + width;

    for (int y = 0; y < height; ++y) {
        if ((y & 1) == 0) {
            const uint8_t* __restrict uRow = uPlane + static_cast<size_t>(y / 2) * halfW;
            const uint8_t* __restrict vRow = vPlane + static_cast<size_t>(y / 2) * halfW;
            for (int i = 0; i < pairs; ++i) {
                const int u = uRow[i];
                const int v = vRow[i];
                const int32_t r = 409 * v + kRedOffset;
                const int32_t g = kGreenOffset - 100 * u - 208 * v;
                const int32_t b = 516 * u + kBlueOffset;
                redTerm[2 * i] = r;
                redTerm[2 * i + 1] = r;
                greenTerm[2 * i] = g;
                greenTerm[2 * i + 1] = g;
                blueTerm[2 * i] = b;
                blueTerm[2 * i + 1] = b;
            }
            if (width & 1) {
                // An odd width's last column has a chroma sample of its own.
                const int u = uRow[pairs];
                const int v = vRow[pairs];
                redTerm[width - 1] = 409 * v + kRedOffset;
                greenTerm[width - 1] = kGreenOffset - 100 * u - 208 * v;
                blueTerm[width - 1] = 516 * u + kBlueOffset;
            }
        }

        const uint8_t* __restrict yRow = yPlane + static_cast<size_t>(y) * width;
        for (int x = 0; x < width; ++x) {
            const int32_t luma = 298 * yRow[x];
            red[x] = clamp255((luma + redTerm[x]) >> 8);
            green[x] = clamp255((luma + greenTerm[x]) >> 8);
            blue[x] = clamp255((luma + blueTerm[x]) >> 8);
        }

        uint8_t* __restrict out = rgb + static_cast<size_t>(y) * rgbStride;
        for (int x = 0; x < width; ++x) {
            out[3 * x] = red[x];
            out[3 * x + 1] = green[x];
            out[3 * x + 2] = blue[x];
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
