#include "DisplayOrientation.h"

#include "StreamSideData.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

int signOf(double value)
{
    return value > 0.0 ? 1 : (value < 0.0 ? -1 : 0);
}

} // namespace

DisplayOrientation DisplayOrientation::ofStream(const AVStream* stream)
{
    const int32_t* matrix = stream ? StreamSideData::displayMatrix(stream) : nullptr;
    return matrix ? fromMatrix(matrix) : DisplayOrientation();
}

DisplayOrientation DisplayOrientation::fromMatrix(const int32_t matrix[9])
{
    // The matrix maps a source point (p, q), rows counted downwards, to (a p + c q, b p + d q);
    // the translation only moves the result back into view.
    const double a = matrix[0];
    const double b = matrix[1];
    const double c = matrix[3];
    const double d = matrix[4];
    // Only placements that keep the sides on the axes; a matrix with a visible shear or an
    // odd angle is left as it is. A tolerance absorbs the rounding of the fixed-point values.
    const double scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c), std::fabs(d)});
    if (scale <= 0.0)
        return {};
    const double tiny = scale * 1e-3;
    DisplayOrientation o;
    if (std::fabs(b) <= tiny && std::fabs(c) <= tiny && std::fabs(a) > tiny && std::fabs(d) > tiny) {
        o.m_xx = signOf(a);
        o.m_xy = 0;
        o.m_yx = 0;
        o.m_yy = signOf(d);
    } else if (std::fabs(a) <= tiny && std::fabs(d) <= tiny && std::fabs(b) > tiny && std::fabs(c) > tiny) {
        o.m_xx = 0;
        o.m_xy = signOf(c);
        o.m_yx = signOf(b);
        o.m_yy = 0;
    }
    return o;
}

std::string DisplayOrientation::describe() const
{
    // A mirrored placement is read as the turn followed by a left-right mirror.
    const bool mirrored = m_xx * m_yy - m_xy * m_yx < 0;
    const int xx = mirrored ? -m_xx : m_xx;
    const int xy = mirrored ? -m_xy : m_xy;
    int degrees = 0;
    if (xx == -1)
        degrees = 180;
    else if (xx == 0)
        degrees = xy < 0 ? 90 : 270;
    if (degrees == 0)
        return mirrored ? "mirrored" : "upright";
    return std::string(mirrored ? "mirrored, " : "") + std::to_string(degrees) + " degrees clockwise";
}

void DisplayOrientation::turnPlane(const uint8_t* src, int srcStride, int width, int height, uint8_t* dst,
                                   int dstStride) const
{
    const int outWidth = turnedWidth(width, height);
    const int outHeight = turnedHeight(width, height);
    // Where source sample (0, 0) lands, and how far one step right and one step down in the
    // source move in the destination.
    const int originX = (m_xx < 0 || m_xy < 0) ? outWidth - 1 : 0;
    const int originY = (m_yx < 0 || m_yy < 0) ? outHeight - 1 : 0;
    const std::ptrdiff_t stepX = m_xx + static_cast<std::ptrdiff_t>(m_yx) * dstStride;
    const std::ptrdiff_t stepY = m_xy + static_cast<std::ptrdiff_t>(m_yy) * dstStride;
    uint8_t* origin = dst + static_cast<std::ptrdiff_t>(originY) * dstStride + originX;
    // A quarter turn writes each source row down a destination column; square tiles keep the
    // destination rows it touches in the cache. Other placements go row by row.
    const int tile = swapsSides() ? 32 : width;
    for (int tileY = 0; tileY < height; tileY += tile) {
        const int endY = std::min(tileY + tile, height);
        for (int tileX = 0; tileX < width; tileX += tile) {
            const int endX = std::min(tileX + tile, width);
            for (int y = tileY; y < endY; ++y) {
                const uint8_t* in = src + static_cast<std::ptrdiff_t>(y) * srcStride;
                uint8_t* out = origin + y * stepY + tileX * stepX;
                for (int x = tileX; x < endX; ++x, out += stepX)
                    *out = in[x];
            }
        }
    }
}

void DisplayOrientation::turnYuv420(const uint8_t* const src[3], const int srcStride[3], int width, int height,
                                    uint8_t* const dst[3], const int dstStride[3]) const
{
    turnPlane(src[0], srcStride[0], width, height, dst[0], dstStride[0]);
    const int chromaWidth = (width + 1) / 2;
    const int chromaHeight = (height + 1) / 2;
    turnPlane(src[1], srcStride[1], chromaWidth, chromaHeight, dst[1], dstStride[1]);
    turnPlane(src[2], srcStride[2], chromaWidth, chromaHeight, dst[2], dstStride[2]);
}
