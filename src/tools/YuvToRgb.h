#pragma once

#include <QImage>
#include <cstdint>

// Limited-range (BT.601, 16..235) YUV 4:2:0 to RGB with the integer formula
//   C = Y - 16
//   R = (298 C + 409 V - 52224) >> 8
//   G = (298 C - 100 U - 208 V + 39552) >> 8
//   B = (298 C + 516 U - 65920) >> 8
// each clamped to 0..255. Pixel (x, y) takes its chroma from (x/2, y/2). Pure function; safe
// on any thread.
//
// yuv: packed I420 exactly as the frame grabber hands it out: Y of w*h bytes, then U and V of
// ceil(w/2)*ceil(h/2) bytes each with rows of ceil(w/2) bytes. For even sizes that is U at w*h
// and V at w*h + (w*h)/4; odd sizes (853 wide: chroma rows of 427) are read with their real
// row length, so the picture is not sheared.
// rgb: h rows of w*3 bytes, rgbStride bytes apart.
void yuv420ToRgb24(const uint8_t* yuv, int width, int height, uint8_t* rgb, int rgbStride);

// The same into a new QImage::Format_RGB888 image; a null image for empty input.
QImage yuv420ToImage(const uint8_t* yuv, int width, int height);
