#pragma once

#include "FfmpegPtr.h"

#include <cstdint>

// Stream-level side data (display matrix, stereo and spherical layout, HDR metadata...). The
// library keeps it on the stream up to FFmpeg 6.0 and in the codec parameters from 6.1 on,
// where copying the parameters already takes it along; these calls hide the difference.
namespace StreamSideData {

// The stream's display matrix (nine 16.16 / 2.30 fixed-point values), or null.
const int32_t* displayMatrix(const AVStream* stream);

// Gives `to` every side data entry of `from` that it does not already have, as a copied stream
// needs for the muxer to store what the source said (the rotation of a portrait phone video
// above all). False when memory ran out.
bool copy(const AVStream* from, AVStream* to);

} // namespace StreamSideData
