#include "YuvToRgb.h"

#include <QtTest>
#include <algorithm>
#include <vector>

// The thumbnail conversion is written for the vectoriser, with a separate path for the last
// column of an odd width; this holds odd sizes to the plain formula byte for byte (every
// YUV triple is covered by the tools' own conversion test).
namespace {

uint8_t clamp255(int v)
{
    return static_cast<uint8_t>(std::min(255, std::max(0, v)));
}

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
    void oddSizesReadTheGrabbersChromaRows_data();
    void oddSizesReadTheGrabbersChromaRows();
};

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
