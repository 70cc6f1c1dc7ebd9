#pragma once

#include <QSize>

// The size at which a frame of frameWidth x frameHeight is shown inside a box of
// maxWidth x maxHeight: the frame's aspect is kept and one side fills the box. The
// quotient gets an extra 0.5 before rounding to nearest, so an exact quotient comes out one
// pixel larger and is then capped by the box.
// A box with a side <= 0 gives (0, 0), which callers read as "keep the current size".
QSize fitThumbnail(int frameWidth, int frameHeight, int maxWidth, int maxHeight);
