// Times the limited-range YUV 4:2:0 -> RGB24 conversion of a 1920x1080 frame and checks it
// byte for byte against the plain formula. Run by hand: build/bin/yuv_to_rgb_bench [runs]
#include "YuvToRgb.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace {

// The formula as written, one pixel at a time.
void reference(const uint8_t* yuv, int w, int h, uint8_t* rgb)
{
    const uint8_t* yp = yuv;
    const uint8_t* up = yuv + w * h;
    const uint8_t* vp = up + (w * h) / 4;
    auto clamp = [](int v) { return static_cast<uint8_t>(std::min(255, std::max(0, v))); };
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int c = yp[y * w + x] - 16;
            const int u = up[(y / 2) * (w / 2) + x / 2];
            const int v = vp[(y / 2) * (w / 2) + x / 2];
            uint8_t* o = rgb + (y * w + x) * 3;
            o[0] = clamp((298 * c + 409 * v - 52224) >> 8);
            o[1] = clamp((298 * c - 100 * u - 208 * v + 39552) >> 8);
            o[2] = clamp((298 * c + 516 * u - 65920) >> 8);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200;
    const int w = 1920, h = 1080;
    std::vector<uint8_t> yuv(w * h * 3 / 2);
    std::mt19937 random(1234);
    for (uint8_t& b : yuv)
        b = static_cast<uint8_t>(random());

    std::vector<uint8_t> expected(w * h * 3), actual(w * h * 3);
    reference(yuv.data(), w, h, expected.data());
    yuv420ToRgb24(yuv.data(), w, h, actual.data(), w * 3);
    const bool identical = expected == actual;

    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        yuv420ToRgb24(yuv.data(), w, h, actual.data(), w * 3);
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());

    // The same formula written per pixel, for comparison.
    std::vector<double> plain;
    for (int i = 0; i < std::min(runs, 20); ++i) {
        const auto start = std::chrono::steady_clock::now();
        reference(yuv.data(), w, h, expected.data());
        plain.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(plain.begin(), plain.end());
    std::printf("per-pixel formula 1920x1080: median %.3f ms, min %.3f ms\n", plain[plain.size() / 2],
                plain.front());
    std::printf("yuv420ToRgb24 1920x1080: median %.3f ms, min %.3f ms, max %.3f ms over %d runs; %s\n",
                times[times.size() / 2], times.front(), times.back(), runs,
                identical ? "identical to the formula" : "DIFFERS from the formula");
    return identical ? 0 : 1;
}
