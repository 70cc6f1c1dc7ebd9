#include "YuvToRgb.h"

#include <QtTest>
#include <vector>

// The integer limited-range conversion shared by the image provider and the command line.
class TestYuvToRgb : public QObject
{
    Q_OBJECT

private:
    // A w x h I420 block filled with one colour.
    static std::vector<uint8_t> solid(int w, int h, uint8_t y, uint8_t u, uint8_t v)
    {
        const int luma = w * h;
        const int chroma = ((w + 1) / 2) * ((h + 1) / 2);
        std::vector<uint8_t> data(luma + 2 * chroma);
        std::fill(data.begin(), data.begin() + luma, y);
        std::fill(data.begin() + luma, data.begin() + luma + chroma, u);
        std::fill(data.begin() + luma + chroma, data.end(), v);
        return data;
    }

private slots:
    void everyTripleMatchesTheIntegerFormula()
    {
        // Every Y with every U and V, against BT.601's limited-range formula written out (black
        // 16, white 235), including the extremes that push each channel furthest past 0 and 255. One 257x2 frame per chroma pair, its
        // rows holding Y = 0..255 and an odd last column (a chroma sample of its own) whose Y
        // moves with the pair.
        auto clamp = [](int x) { return std::min(255, std::max(0, x)); };
        const int w = 257;
        std::vector<uint8_t> data(w * 2 + 2 * 129);
        for (int x = 0; x < 256; ++x)
            data[x] = data[w + x] = uint8_t(x);
        std::vector<uint8_t> rgb(w * 2 * 3);
        for (int u = 0; u < 256; ++u) {
            for (int v = 0; v < 256; ++v) {
                data[w - 1] = data[2 * w - 1] = uint8_t(u ^ v);
                std::fill(data.begin() + 2 * w, data.begin() + 2 * w + 129, uint8_t(u));
                std::fill(data.begin() + 2 * w + 129, data.end(), uint8_t(v));
                yuv420ToRgb24(data.data(), w, 2, rgb.data(), w * 3);
                for (int x = 0; x < 2 * w; ++x) {
                    const int c = data[x] - 16;
                    const uint8_t* px = rgb.data() + 3 * x;
                    if (int(px[0]) != clamp((298 * c + 409 * v - 52224) >> 8) ||
                        int(px[1]) != clamp((298 * c - 100 * u - 208 * v + 39552) >> 8) ||
                        int(px[2]) != clamp((298 * c + 516 * u - 65920) >> 8))
                        QFAIL(qPrintable(QStringLiteral("wrong at x=%1 U=%2 V=%3").arg(x).arg(u).arg(v)));
                }
            }
        }
    }

    void oddSizesUseTheirRealChromaRows()
    {
        QVERIFY(yuv420ToImage(nullptr, 10, 10).isNull());
        QVERIFY(yuv420ToImage(solid(2, 2, 16, 128, 128).data(), 0, 2).isNull());
        // 3x3: chroma planes are 2x2. Only the bottom-right chroma sample is blue-ish, so
        // exactly pixel (2, 2) turns blue; a row length of 1 would colour other pixels too.
        auto data = solid(3, 3, 120, 128, 128);
        data[9 + 3] = 240;  // U at chroma (1, 1)
        data[13 + 3] = 110; // V at chroma (1, 1)
        const QImage image = yuv420ToImage(data.data(), 3, 3);
        QCOMPARE(image.format(), QImage::Format_RGB888);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 3; ++x) {
                const QColor c = image.pixelColor(x, y);
                const bool blue = c.blue() > c.red() + 50;
                QCOMPARE(blue, x == 2 && y == 2);
            }
    }
};

QTEST_GUILESS_MAIN(TestYuvToRgb)
#include "tst_yuvtorgb.moc"
