#pragma once

#include "FfmpegPtr.h"

#include <cstdint>
#include <string>

// How a stream's coded pictures must be turned to stand the way players show them. Phones
// record portrait video as a landscape-coded stream plus a display matrix; the matrix is
// reduced here to one of the eight quarter-turn and mirror placements. Matrices of other
// angles are left alone (treated as upright): no player turns pictures by 45 degrees either.
// A small value type; any thread.
class DisplayOrientation
{
public:
    DisplayOrientation() = default;

    // The orientation of the stream's display matrix; upright when it has none.
    static DisplayOrientation ofStream(const AVStream* stream);
    static DisplayOrientation fromMatrix(const int32_t matrix[9]);

    bool isUpright() const { return m_xx == 1 && m_xy == 0 && m_yx == 0 && m_yy == 1; }
    // Quarter and three-quarter turns show a w x h picture as h x w.
    bool swapsSides() const { return m_xx == 0; }
    int turnedWidth(int width, int height) const { return swapsSides() ? height : width; }
    int turnedHeight(int width, int height) const { return swapsSides() ? width : height; }
    // For log lines: "upright", "90 degrees clockwise", "mirrored, 180 degrees clockwise"...
    std::string describe() const;

    bool operator==(const DisplayOrientation& other) const
    {
        return m_xx == other.m_xx && m_xy == other.m_xy && m_yx == other.m_yx && m_yy == other.m_yy;
    }
    bool operator!=(const DisplayOrientation& other) const { return !(*this == other); }

    // Writes the width x height plane `src` turned into `dst`, which is
    // turnedWidth x turnedHeight. Strides are in bytes; one byte per sample.
    void turnPlane(const uint8_t* src, int srcStride, int width, int height, uint8_t* dst, int dstStride) const;
    // The same for the three planes of a yuv420p picture (chroma planes rounded up).
    void turnYuv420(const uint8_t* const src[3], const int srcStride[3], int width, int height,
                    uint8_t* const dst[3], const int dstStride[3]) const;

private:
    // Source sample (x, y), y pointing down, lands at
    // (m_xx * x + m_xy * y, m_yx * x + m_yy * y) shifted into the destination.
    int m_xx = 1;
    int m_xy = 0;
    int m_yx = 0;
    int m_yy = 1;
};
