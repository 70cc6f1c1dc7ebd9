#include "YuvToRgb.h"

#include <QtTest>
#include <algorithm>
#include <vector>

// The thumbnail conversion is written for the vectoriser; these checks hold it to the plain
// limited-range formula, byte for byte.
namespace {

uint8_t clamp255(int v) { return static_cast<uint8_t>(std::min(255, std::max(0, v))); }

void formula(int y, int u, int v, uint8_t* rgb)
{
    const int c = y - 16;
    rgb[0] = clamp255((298 * c + 409 * v - 52224) >> 8);
    rgb[1] = clamp255((298 * c - 100 * u - 208 * v + 39552) >> 8);
    rgb[2] = clamp255((298 * c + 516 * u - 65920) >> 8);
}

} // namespace

class YuvToRgbTest : public QObject
{
    Q_OBJECT

private slots:
    void everyYuvTripleMatchesTheFormula();
    void oddSizesReadTheGrabbersChromaRows_data();
    void oddSizesReadTheGrabbersChromaRows();
};

void YuvToRgbTest::everyYuvTripleMatchesTheFormula()
{
    // 4096 x 4096: each 2x2 block shares one (U, V); 64 blocks per (U, V) pair carry the 256
    // luma values, so every triple appears exactly once.
    const int w = 4096, h = 4096;
    std::vector<uint8_t> yuv(w * h + 2 * (w / 2) * (h / 2));
    uint8_t* yPlane = yuv.data();
    uint8_t* uPlane = yPlane + w * h;
    uint8_t* vPlane = uPlane + (w / 2) * (h / 2);
    for (int by = 0; by < h / 2; ++by) {
        for (int bx = 0; bx < w / 2; ++bx) {
            const int block = by * (w / 2) + bx;
            const int pair = block / 64;
            const int lumaBase = (block % 64) * 4;
            uPlane[by * (w / 2) + bx] = static_cast<uint8_t>(pair >> 8);
            vPlane[by * (w / 2) + bx] = static_cast<uint8_t>(pair & 255);
            yPlane[(2 * by) * w + 2 * bx] = static_cast<uint8_t>(lumaBase);
            yPlane[(2 * by) * w + 2 * bx + 1] = static_cast<uint8_t>(lumaBase + 1);
            yPlane[(2 * by + 1) * w + 2 * bx] = static_cast<uint8_t>(lumaBase + 2);
            yPlane[(2 * by + 1) * w + 2 * bx + 1] = static_cast<uint8_t>(lumaBase + 3);
        }
    }
    std::vector<uint8_t> rgb(static_cast<size_t>(w) * h * 3);
    yuv420ToRgb24(yuv.data(), w, h, rgb.data(), w * 3);

    int mismatches = 0;
    for (int y = 0; y < h && mismatches < 5; ++y) {
        for (int x = 0; x < w; ++x) {
            const int ci = (y / 2) * (w / 2) + x / 2;
            uint8_t expected[3];
            formula(yPlane[y * w + x], uPlane[ci], vPlane[ci], expected);
            const uint8_t* actual = rgb.data() + (static_cast<size_t>(y) * w + x) * 3;
            if (!std::equal(expected, expected + 3, actual)) {
                qWarning("Y %d U %d V %d: got %d,%d,%d want %d,%d,%d", yPlane[y * w + x], uPlane[ci], vPlane[ci],
                         actual[0], actual[1], actual[2], expected[0], expected[1], expected[2]);
                if (++mismatches >= 5)
                    break;
            }
        }
    }
    QCOMPARE(mismatches, 0);
}

void YuvToRgbTest::oddSizesReadTheGrabbersChromaRows_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("853x481") << 853 << 481;
    QTest::newRow("3x3") << 3 << 3;
}

void YuvToRgbTest::oddSizesReadTheGrabbersChromaRows()
{
    QFETCH(int, width);
    QFETCH(int, height);
    // The grabber's buffer for odd sizes: chroma planes rounded up.
    const int chromaWidth = (width + 1) / 2;
    const int chroma = chromaWidth * ((height + 1) / 2);
    std::vector<uint8_t> yuv(width * height + 2 * chroma);
    uint32_t seed = 7;
    for (uint8_t& b : yuv) {
        seed = seed * 1664525u + 1013904223u;
        b = static_cast<uint8_t>(seed >> 24);
    }
    const QImage image = yuv420ToImage(yuv.data(), width, height);
    QCOMPARE(image.size(), QSize(width, height));
    QCOMPARE(image.format(), QImage::Format_RGB888);
    const uint8_t* u = yuv.data() + width * height;
    const uint8_t* v = u + chroma;
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = image.constScanLine(y);
        for (int x = 0; x < width; ++x) {
            const int ci = (y / 2) * chromaWidth + x / 2;
            uint8_t expected[3];
            formula(yuv[y * width + x], u[ci], v[ci], expected);
            if (!std::equal(expected, expected + 3, row + 3 * x))
                QFAIL(qPrintable(QStringLiteral("pixel %1,%2 differs").arg(x).arg(y)));
        }
    }
}

QTEST_APPLESS_MAIN(YuvToRgbTest)
#include "tst_yuvtorgbexact.moc"
