#pragma once

#include <QString>
#include <cstdint>

class PictureRecycler;

// Decodes one picture at or before a time and hands it out as packed I420 standing the way
// players show it: turned by the stream's display matrix, so its size is the coded size with
// width and height swapped for a quarter turn. Each call opens and releases its own demuxer,
// decoder and scaler, so any thread may call it at any time; the decoder's pictures may come
// from a recycler shared by all calls.
class FrameGrabber
{
public:
    // On success *buffer is a new av_malloc block the caller releases with av_free: Y plane of
    // width x height bytes, then U and V of ceil(width/2) x ceil(height/2) bytes each, rows
    // without padding. On any failure *buffer is null and width and height are 0.
    static void grab(const QString& filePath, double seconds, uint8_t** buffer, int* width, int* height,
                     PictureRecycler* pictures = nullptr);
};
