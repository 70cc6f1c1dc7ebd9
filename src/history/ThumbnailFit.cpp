#include "ThumbnailFit.h"

#include <algorithm>
#include <cmath>

QSize fitThumbnail(int frameWidth, int frameHeight, int maxWidth, int maxHeight)
{
    if (maxWidth <= 0 || maxHeight <= 0 || frameWidth <= 0 || frameHeight <= 0)
        return QSize(0, 0);
    const double frameAspect = static_cast<double>(frameWidth) / frameHeight;
    const double boxAspect = static_cast<double>(maxWidth) / maxHeight;
    if (frameAspect > boxAspect) {
        const long h = std::lround(static_cast<double>(maxWidth) * frameHeight / frameWidth + 0.5);
        return QSize(maxWidth, static_cast<int>(std::min<long>(maxHeight, h)));
    }
    const long w = std::lround(static_cast<double>(maxHeight) * frameWidth / frameHeight + 0.5);
    return QSize(static_cast<int>(std::min<long>(maxWidth, w)), maxHeight);
}
