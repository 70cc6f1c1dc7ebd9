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
    void studioColoursGiveTheirRgb_data()
    {
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("u");
        QTest::addColumn<int>("v");
        QTest::addColumn<QColor>("rgb");
        QTest::newRow("black") << 16 << 128 << 128 << QColor(0, 0, 0);
        QTest::newRow("white") << 235 << 128 << 128 << QColor(255, 255, 255);
        // BT.601 studio red, green and blue.
        QTest::newRow("red") << 81 << 90 << 240 << QColor(255, 0, 0);
        QTest::newRow("green") << 145 << 54 << 34 << QColor(0, 255, 1);
        QTest::newRow("blue") << 41 << 240 << 110 << QColor(0, 0, 255);
        QTest::newRow("grey") << 126 << 128 << 128 << QColor(128, 128, 128);
    }
    void studioColoursGiveTheirRgb()
    {
        QFETCH(int, y);
        QFETCH(int, u);
        QFETCH(int, v);
        QFETCH(QColor, rgb);
        const auto data = solid(4, 2, y, u, v);
        const QImage image = yuv420ToImage(data.data(), 4, 2);
        QCOMPARE(image.format(), QImage::Format_RGB888);
        const QColor got = image.pixelColor(3, 1);
        QVERIFY2(qAbs(got.red() - rgb.red()) <= 1 && qAbs(got.green() - rgb.green()) <= 1 &&
                     qAbs(got.blue() - rgb.blue()) <= 1,
                 qPrintable(QStringLiteral("got %1,%2,%3").arg(got.red()).arg(got.green()).arg(got.blue())));
    }

    void everyTripleMatchesTheIntegerFormula()
    {
        // Every Y with every U and V, against the formula written out, including the extremes
        // that push each channel furthest past 0 and 255. One 256x2 frame per chroma pair, its
        // first row holding Y = 0..255.
        auto clamp = [](int x) { return std::min(255, std::max(0, x)); };
        std::vector<uint8_t> data(256 * 2 + 2 * 128);
        for (int x = 0; x < 256; ++x)
            data[x] = data[256 + x] = uint8_t(x);
        std::vector<uint8_t> rgb(256 * 2 * 3);
        for (int u = 0; u < 256; ++u) {
            for (int v = 0; v < 256; ++v) {
                std::fill(data.begin() + 512, data.begin() + 640, uint8_t(u));
                std::fill(data.begin() + 640, data.end(), uint8_t(v));
                yuv420ToRgb24(data.data(), 256, 2, rgb.data(), 256 * 3);
                for (int y = 0; y < 256; ++y) {
                    const int c = y - 16;
                    const uint8_t* px = rgb.data() + 3 * y;
                    if (int(px[0]) != clamp((298 * c + 409 * v - 52224) >> 8) ||
                        int(px[1]) != clamp((298 * c - 100 * u - 208 * v + 39552) >> 8) ||
                        int(px[2]) != clamp((298 * c + 516 * u - 65920) >> 8))
                        QFAIL(qPrintable(QStringLiteral("wrong at Y=%1 U=%2 V=%3").arg(y).arg(u).arg(v)));
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
