// Times the limited-range YUV 4:2:0 to RGB conversion at common thumbnail and frame sizes.
// Run by hand: build/bench/bench_yuv_to_rgb [repetitions]. Prints the median and the best time
// per frame (the best is the steadier figure on a busy machine).

#include "YuvToRgb.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct Timing
{
    double median;
    double best;
};

Timing measure(int width, int height, int repetitions)
{
    const int chroma = ((width + 1) / 2) * ((height + 1) / 2);
    std::vector<uint8_t> yuv(static_cast<size_t>(width) * height + 2 * chroma);
    uint32_t x = 1;
    for (uint8_t& b : yuv)
        b = static_cast<uint8_t>((x = x * 1664525u + 1013904223u) >> 24);
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        const auto start = std::chrono::steady_clock::now();
        yuv420ToRgb24(yuv.data(), width, height, rgb.data(), width * 3);
        const auto end = std::chrono::steady_clock::now();
        times.push_back(std::chrono::duration<double, std::milli>(end - start).count());
    }
    std::sort(times.begin(), times.end());
    volatile uint8_t sink = rgb[rgb.size() / 2]; // keep the work observable
    (void)sink;
    return {times[times.size() / 2], times.front()};
}

} // namespace

int main(int argc, char** argv)
{
    const int repetitions = argc > 1 ? std::max(1, std::atoi(argv[1])) : 50;
    const int sizes[][2] = {{210, 130}, {640, 360}, {853, 480}, {1280, 720}, {1920, 1080}, {3840, 2160}};
    std::printf("%-10s %10s %10s %16s\n", "size", "median ms", "best ms", "best Mpixel/s");
    for (const auto& size : sizes) {
        const Timing t = measure(size[0], size[1], repetitions);
        std::printf("%4dx%-5d %10.3f %10.3f %16.1f\n", size[0], size[1], t.median, t.best,
                    size[0] * size[1] / t.best / 1000.0);
    }
    return 0;
}
