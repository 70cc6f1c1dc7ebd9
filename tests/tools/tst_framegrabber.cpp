#include "FrameGrabber.h"
#include "ToolTestSupport.h"

#include <atomic>
#include <cmath>
#include <functional>
#include <numeric>
#include <thread>
#include <vector>

// One decoded picture as packed I420 at the stream's coded size, compared with what the
// ffmpeg tool decodes for the same instant.
class TestFrameGrabber : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    // One service for every grab, as in the program: its decoders' picture memory is reused
    // across files of other sizes and formats, and across the threads of the overlap case.
    static CommonTool& tool()
    {
        static CommonTool shared;
        return shared;
    }
    QString path(const QString& name) const { return m_dir + "/" + name; }

    struct Grab
    {
        ff::AvBufferPtr buffer;
        int width = -1;
        int height = -1;
    };
    static Grab grab(const QString& file, double seconds, CommonTool& with = tool())
    {
        uint8_t* raw = reinterpret_cast<uint8_t*>(1); // must be overwritten either way
        Grab g;
        with.getVideoThumbnail(file, seconds, &raw, &g.width, &g.height);
        g.buffer.reset(raw);
        return g;
    }

    // The ffmpeg tool's exact frame at `seconds`, as packed yuv420p (turned as the tool shows
    // it, then put through `filter` when given).
    QByteArray reference(const QString& file, double seconds, const QString& filter = "null")
    {
        const QString out = path("reference.yuv");
        if (!TestMedia::ffmpeg({"-ss", QString::number(seconds), "-i", file, "-frames:v", "1", "-vf", filter,
                                "-pix_fmt", "yuv420p", "-f", "rawvideo", out}))
            return {};
        return TestMedia::fileBytes(out);
    }

    static double meanDifference(const uint8_t* a, const uint8_t* b, int n)
    {
        return std::inner_product(a, a + n, b, 0.0, std::plus<>(),
                                  [](int x, int y) { return std::abs(x - y); }) /
               n;
    }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("grab");
        av_log_set_level(AV_LOG_QUIET);
        QVERIFY(TestMedia::makeVideo(path("4s.mp4"), 4.0, 320, 240, 25, true, {"-g", "25"}));
    }

    void oddSizesGiveUnpaddedPlanes()
    {
        // 4:4:4 lets the encoder take an odd size; the grabber scales chroma down to 4:2:0.
        const QString odd = path("odd.mp4");
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "testsrc=size=853x481:rate=25:duration=2", "-pix_fmt",
                                   "yuv444p", "-g", "25", odd}));
        Grab g = grab(odd, 1.0);
        QVERIFY(g.buffer);
        QCOMPARE(g.width, 853);
        QCOMPARE(g.height, 481);
        const QByteArray ref = reference(odd, 1.0);
        const int luma = 853 * 481;
        const int chroma = 427 * 241;
        QCOMPARE(ref.size(), luma + 2 * chroma);
        const auto* expected = reinterpret_cast<const uint8_t*>(ref.constData());
        QVERIFY(memcmp(g.buffer.get(), expected, luma) == 0);
        // Chroma is downsampled by two different scalers: close, not identical. A wrong row
        // length would shear the pattern and give differences of tens.
        QVERIFY(meanDifference(g.buffer.get() + luma, expected + luma, chroma) < 2.0);
        QVERIFY(meanDifference(g.buffer.get() + luma + chroma, expected + luma + chroma, chroma) < 2.0);
    }

    void pictureComesFromTheKeyFrameAtOrBeforeTheTime()
    {
        Grab g = grab(path("4s.mp4"), 2.5);
        QVERIFY(g.buffer);
        QCOMPARE(g.width, 320);
        const int size = 320 * 240 * 3 / 2;
        const QByteArray atKey = reference(path("4s.mp4"), 2.0);
        QCOMPARE(atKey.size(), size);
        QVERIFY(memcmp(g.buffer.get(), atKey.constData(), size) == 0);
        const QByteArray atStart = reference(path("4s.mp4"), 0.0);
        QVERIFY(memcmp(g.buffer.get(), atStart.constData(), size) != 0);
    }

    // Matroska declares codec and size in its header, so the grab reads no stream analysis;
    // an MPEG transport stream declares neither and must still be analysed first.
    void containersWithAndWithoutDescribingHeaders()
    {
        const Grab fromMp4 = grab(path("4s.mp4"), 2.5);
        QVERIFY(fromMp4.buffer);
        const int size = 320 * 240 * 3 / 2;
        for (const QString& name : {QStringLiteral("4s.mkv"), QStringLiteral("4s.ts")}) {
            QVERIFY2(TestMedia::ffmpeg({"-i", path("4s.mp4"), "-c", "copy", path(name)}), qPrintable(name));
            const bool stream = name.endsWith(".ts");
            Grab g = grab(path(name), stream ? 0.0 : 2.5);
            QVERIFY2(g.buffer, qPrintable(name));
            QCOMPARE(QSize(g.width, g.height), QSize(320, 240));
            const QByteArray expected = stream ? reference(path(name), 0.0)
                                               : QByteArray(reinterpret_cast<const char*>(fromMp4.buffer.get()), size);
            QCOMPARE(expected.size(), size);
            QVERIFY2(memcmp(g.buffer.get(), expected.constData(), size) == 0, qPrintable(name));
        }
    }

    // A portrait phone video is a landscape-coded stream with a display matrix: the picture must
    // stand as players show it. The ffmpeg tool turns pictures by the matrix itself but knows no
    // mirror on this version, so a mirrored stream is compared with its unmirrored twin, mirrored.
    void picturesStandAsTheStreamIsShown()
    {
        for (const int rotation : {90, 180, 270}) {
            for (const bool mirrored : {false, true}) {
                const QString name = QStringLiteral("%1%2").arg(rotation).arg(mirrored ? " mirrored" : "");
                const QString turned = path(name + ".mp4");
                QVERIFY2(TestMedia::makeTurned(path("4s.mp4"), turned, rotation, mirrored), qPrintable(name));
                const QByteArray expected =
                    mirrored ? reference(path(QString::number(rotation) + ".mp4"), 0.0, "hflip") : reference(turned, 0.0);
                Grab g = grab(turned, 0.0);
                QVERIFY2(g.buffer, qPrintable(name));
                QCOMPARE(QSize(g.width, g.height), rotation == 180 ? QSize(320, 240) : QSize(240, 320));
                QCOMPARE(expected.size(), 320 * 240 * 3 / 2);
                QVERIFY2(memcmp(g.buffer.get(), expected.constData(), expected.size()) == 0, qPrintable(name));
            }
        }
    }

    void timesOutsideTheFileNeverCrash()
    {
        for (const double seconds : {1000.0, 4.5, -3.0, qQNaN(), qInf()}) {
            Grab g = grab(path("4s.mp4"), seconds);
            QVERIFY2(g.buffer ? g.width == 320 && g.height == 240 : g.width == 0 && g.height == 0,
                     qPrintable(QString::number(seconds)));
        }
    }

    // Grabs running at once on files of two sizes and formats: each picture stays exactly the
    // one a lone grab gives, while the shared picture memory changes size under them. A service
    // of its own, so its picture memory is first made for the smaller file.
    void overlappingGrabsKeepTheirPictures()
    {
        CommonTool service;
        const QString odd = path("odd.mp4"); // made by oddSizesGiveUnpaddedPlanes
        const QString files[2] = {path("4s.mp4"), odd};
        QByteArray expected[2];
        for (int f = 0; f < 2; ++f) {
            Grab g = grab(files[f], 1.0, service);
            QVERIFY(g.buffer);
            expected[f] = QByteArray(reinterpret_cast<const char*>(g.buffer.get()), g.width * g.height +
                                     2 * ((g.width + 1) / 2) * ((g.height + 1) / 2));
        }
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 3; ++t) {
            threads.emplace_back([&, t] {
                for (int i = 0; i < 6; ++i) {
                    const int f = (t + i) % 2;
                    Grab g = grab(files[f], 1.0, service);
                    if (!g.buffer || memcmp(g.buffer.get(), expected[f].constData(), expected[f].size()) != 0)
                        ++wrong;
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        QCOMPARE(wrong.load(), 0);
    }

    // Null and 0 x 0 without a picture; a cover picture is a thumbnail too.
    void sourcesWithoutVideo()
    {
        const QMap<QString, QString> bad = TestMedia::badInputs(m_dir);
        for (const char* name : {"missing", "empty", "text", "audio only"}) {
            Grab g = grab(bad[name], 0.5);
            QVERIFY2(!g.buffer && g.width == 0 && g.height == 0, name);
        }
        QVERIFY(TestMedia::ffmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=64x48", "-frames:v", "1", path("cover.png")}));
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=duration=1", "-i", path("cover.png"), "-map",
                                   "0", "-map", "1", "-c:v", "png", "-disposition:v", "attached_pic",
                                   path("song.mp3")}));
        Grab g = grab(path("song.mp3"), 0.0);
        QVERIFY(g.buffer);
        QCOMPARE(g.width, 64);
        QCOMPARE(g.height, 48);
    }
};

QTEST_GUILESS_MAIN(TestFrameGrabber)
#include "tst_framegrabber.moc"
