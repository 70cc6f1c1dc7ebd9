#include "YuvFrame.h"

#include "GrabbedFrame.h"

#include <cstring>

namespace {

void copyPlane(QByteArray& target, const uint8_t* source, int size)
{
    // resize keeps the allocation between frames of the same size.
    target.resize(size);
    std::memcpy(target.data(), source, static_cast<size_t>(size));
}

} // namespace

void YuvFrame::store(const GrabbedFrame& frame)
{
    width = frame.width;
    height = frame.height;
    const int chromaSize = frame.chromaWidth() * frame.chromaHeight();
    copyPlane(y, frame.yPlane(), frame.width * frame.height);
    copyPlane(u, frame.uPlane(), chromaSize);
    copyPlane(v, frame.vPlane(), chromaSize);
    newFrame = true;
}

void YuvFrame::discard()
{
    width = 0;
    height = 0;
    newFrame = false;
}
