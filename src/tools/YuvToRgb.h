#pragma once

#include <QImage>
#include <cstdint>

// Limited-range (BT.601, 16..235) YUV 4:2:0 to RGB with the integer formula
//   C = Y - 16
//   R = (298 C + 409 V - 52224) >> 8
//   G = (298 C - 100 U - 208 V + 39552) >> 8
//   B = (298 C + 516 U - 65920) >> 8
// each clamped to 0..255. Chroma is read at (y/2)*(w/2) + x/2 (integer halves), the layout
// the thumbnail consumers assume. Pure function; safe on any thread.
//
// planes: packed I420 as the frame grabber hands it out (U at w*h, V at w*h + (w*h)/4).
// rgb: w*h*3 bytes, tightly packed rows.
void yuv420ToRgb24(const uint8_t* yuv, int width, int height, uint8_t* rgb, int rgbStride);

// The same into a new QImage::Format_RGB888 image; a null image for empty input.
QImage yuv420ToImage(const uint8_t* yuv, int width, int height);
