// Compression on real media made at test time; outputs are read back with ffprobe.
#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "MediaProbe.h"
#include "TestMedia.h"
#include "TranscodeSupport.h"

#include <QFile>
#include <QtTest>
#include <cmath>

using Transcode::JobRecorder;
using Transcode::LogCapture;

class CompressTest : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_h264;   // 160x120, 2 s at 25 fps, H.264 + AAC in MP4 (bit rates known)
    QString m_silent; // 160x120, 1 s, H.264 without audio in Matroska (bit rate unknown)

    QString out(const QString& name) const { return m_dir + "/" + name; }

private slots:
    void initTestCase()
    {
        av_log_set_level(AV_LOG_ERROR);
        m_dir = TestMedia::scratchDir("compress");
        m_h264 = out("h264.mp4");
        m_silent = out("silent.mkv");
        QVERIFY(TestMedia::makeVideo(m_h264, 2, 160, 120, 25, true, {"-c:v", "libx264", "-c:a", "aac"}));
        QVERIFY(TestMedia::makeVideo(m_silent, 1, 160, 120, 25, false, {"-c:v", "libx264"}));
    }

    void init() { CommonTool::instance()->resetCancelState(); }

    // The level picks the encoder's quality factor and the share of the source's bit rates
    // (FLV records both bit rates); numbers outside the table act as level 1.
    void levelPicksQualityAndBitRate_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("crf");
        QTest::addColumn<double>("factor");
        QTest::newRow("0") << 0 << "crf=18.0" << 0.9;
        QTest::newRow("1") << 1 << "crf=23.0" << 0.7;
        QTest::newRow("2") << 2 << "crf=28.0" << 0.3;
        QTest::newRow("5 acts as 1") << 5 << "crf=23.0" << 0.7;
        QTest::newRow("-1 acts as 1") << -1 << "crf=23.0" << 0.7;
    }
    void levelPicksQualityAndBitRate()
    {
        QFETCH(int, level);
        QFETCH(QString, crf);
        QFETCH(double, factor);
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        const QString target = out(QStringLiteral("level%1.flv").arg(level));
        const bool ok = tool.compressVideo(m_h264, target, level);
        QVERIFY(ok);
        rec.checkProtocol(ok, true);
        // x264 records its settings in the stream.
        QVERIFY(Transcode::fileBytes(target).contains(crf.toLatin1()));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", "v:0"), QString("h264"));
        const double videoRate = TestMedia::probe(m_h264, "stream=bit_rate", "v:0").toDouble();
        const double audioRate = TestMedia::probe(m_h264, "stream=bit_rate", "a:0").toDouble();
        QVERIFY(videoRate > 0 && audioRate > 0);
        // libx264 keeps whole kbit/s.
        const double videoExpected = std::floor(std::trunc(videoRate * factor) / 1000) * 1000;
        QVERIFY(qAbs(TestMedia::probe(target, "stream=bit_rate", "v:0").toDouble() - videoExpected) <= 2);
        QVERIFY(qAbs(TestMedia::probe(target, "stream=bit_rate", "a:0").toDouble() - audioRate * factor) <=
                2);
    }

    void oddSizeIsEncodedEven()
    {
        const QString source = out("odd.mkv");
        QVERIFY(
            TestMedia::makeVideo(source, 1, 1279, 719, 5, false, {"-c:v", "libx264", "-pix_fmt", "yuv444p"}));
        const QString target = out("odd-out.mkv");
        QVERIFY(CommonTool::instance()->compressVideo(source, target, 2));
        QCOMPARE(TestMedia::probe(target, "stream=width,height,pix_fmt", "v:0"),
                 QString("1278\n718\nyuv420p"));
        QVERIFY(Transcode::decodeErrors(target, "0:v").isEmpty());
    }

    void audioIsCarriedUnchanged()
    {
        const QString target = out("audio-carried.mp4");
        QVERIFY(CommonTool::instance()->compressVideo(m_h264, target, 1));
        QCOMPARE(Transcode::packetSizes(target, "a:0"), Transcode::packetSizes(m_h264, "a:0"));
        QCOMPARE(TestMedia::probe(target, "stream=index", "v:0"), QString("0"));
        QVERIFY(Transcode::decodeErrors(target, "0").isEmpty());
    }

    void hevcSourceStaysHevc()
    {
        const QString source = out("hevc.mkv");
        QVERIFY(TestMedia::makeVideo(source, 1, 160, 120, 25, false,
                                     {"-c:v", "libx265", "-x265-params", "log-level=error"}));
        const QString target = out("hevc-out.mkv");
        QVERIFY(CommonTool::instance()->compressVideo(source, target, 0));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", "v:0"), QString("hevc"));
        QVERIFY(Transcode::decodeErrors(target, "0:v").isEmpty());
    }

    // A Matroska source without audio: its bit rate is unknown, so the encoder gets 0 and the
    // quality factor alone decides; the output has the one video stream.
    void silentSourceOfUnknownBitRate()
    {
        bool ok = false;
        QCOMPARE(MediaProbe::videoInfo(m_silent, &ok).bitrate, int64_t(0));
        QVERIFY(ok);
        const QString target = out("crf-only.mkv");
        QVERIFY(CommonTool::instance()->compressVideo(m_silent, target, 0));
        QCOMPARE(TestMedia::probe(target, "stream=codec_type"), QString("video"));
        const QByteArray bytes = Transcode::fileBytes(target);
        QVERIFY(bytes.contains("rc=crf"));
        QVERIFY(bytes.contains("crf=18.0"));
    }

    // Progress is the number of frames handed to the encoder, once per packet it returns:
    // strictly rising, never above the packet total, and the output holds at least as many
    // frames. Frames the decoder still holds at the end are not encoded.
    void progressCountsEncodedFrames()
    {
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        const QString target = out("progress.mp4");
        QVERIFY(tool.compressVideo(m_h264, target, 1));
        rec.checkProtocol(true, true);
        QCOMPARE(rec.total(), Transcode::packetCount(m_h264, "v:0"));
        const std::vector<int> progress = rec.progress();
        QVERIFY(!progress.empty());
        for (size_t i = 1; i < progress.size(); ++i)
            QVERIFY(progress[i] > progress[i - 1]);
        const int written = Transcode::packetCount(target, "v:0");
        QVERIFY(progress.back() <= rec.total());
        QVERIFY(written >= progress.back());
        // Reordering delay plus at most three frames in the decoder's threads.
        QVERIFY2(written >= rec.total() - 8, qPrintable(QString::number(written)));
    }

    void cancelMidwayLeavesNoTrailer()
    {
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        QObject context;
        connect(&tool, &CommonTool::videoCompressionProgress, &context, [&tool](int p) {
            if (p >= 3)
                tool.cancelVideoOperation();
        });
        LogCapture log;
        const QString target = out("cancelled.mp4");
        const bool ok = tool.compressVideo(m_h264, target, 1);
        QVERIFY(!ok);
        rec.checkProtocol(ok, true);
        QCOMPARE(rec.count(JobRecorder::Event::Cancelled), 1);
        // Seen after the packet whose frame reported progress, or between frames when the
        // packet held more than one: either way nothing is flushed.
        QCOMPARE(log.count("Video compression cancelled"), 1);
        QVERIFY(log.contains("Video compression completed: failed"));
        // No trailer: an MP4 without its index is not readable.
        QVERIFY(QFile::exists(target));
        QVERIFY(TestMedia::probe(target, "format=format_name").isEmpty());
    }

    // The synchronous routine does not clear an earlier cancel: the job stops at its first
    // check. The asynchronous one clears it first and runs to the end on the pool.
    void cancelFlagBeforeStart()
    {
        CommonTool& tool = *CommonTool::instance();
        {
            JobRecorder rec(tool);
            LogCapture log;
            tool.cancelVideoOperation();
            const bool ok = tool.compressVideo(m_silent, out("pre-cancelled.mkv"), 0);
            QVERIFY(!ok);
            rec.checkProtocol(ok, true);
            QCOMPARE(rec.count(JobRecorder::Event::Cancelled), 1);
            QVERIFY(rec.progress().empty());
            QVERIFY(log.contains("Video compression cancelled by user"));
        }
        {
            JobRecorder rec(tool);
            tool.cancelVideoOperation();
            tool.compressVideoAsync(m_silent, out("async.mkv"), 0);
            QVERIFY(rec.waitFinished());
            rec.checkProtocol(true, true);
            QVERIFY(Transcode::packetCount(out("async.mkv"), "v:0") > 0);
        }
    }

    void badInputFailsCleanly_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("total");
        const QString dir = TestMedia::scratchDir("compress-bad");
        const QString empty = dir + "/empty.mp4";
        QFile(empty).open(QIODevice::WriteOnly);
        const QString text = dir + "/notes.mp4";
        {
            QFile f(text);
            f.open(QIODevice::WriteOnly);
            f.write("this is not a video\n");
        }
        const QString audioOnly = dir + "/tone.m4a";
        TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=duration=1", "-c:a", "aac", audioOnly});
        // An MP4 cut in half has lost its index, which the muxer writes last.
        const QString truncated = dir + "/truncated.mp4";
        {
            const QByteArray whole = Transcode::fileBytes(m_h264);
            QFile f(truncated);
            f.open(QIODevice::WriteOnly);
            f.write(whole.left(whole.size() / 2));
        }
        // AMR-NB can be decoded here but not encoded.
        const QString amrRaw = dir + "/speech.amr";
        {
            QFile f(amrRaw);
            f.open(QIODevice::WriteOnly);
            f.write("#!AMR\n");
            for (int i = 0; i < 100; ++i)
                f.write(QByteArray(1, '\x3c') + QByteArray(31, '\0'));
        }
        const QString amr = dir + "/amr.3gp";
        TestMedia::ffmpeg({"-f", "lavfi", "-i", "testsrc=size=160x120:rate=25:duration=1", "-i", amrRaw,
                           "-c:v", "libx264", "-pix_fmt", "yuv420p", "-c:a", "copy", "-shortest", amr});

        QTest::newRow("missing") << dir + "/nothing.mp4" << dir + "/o1.mp4"
                                 << "Could not open input file" << false;
        QTest::newRow("empty") << empty << dir + "/o2.mp4"
                               << "Could not open input file" << false;
        QTest::newRow("not media") << text << dir + "/o3.mp4"
                                   << "Could not open input file" << false;
        QTest::newRow("truncated mp4") << truncated << dir + "/o4.mp4"
                                       << "Could not open input file" << false;
        QTest::newRow("audio only") << audioOnly << dir + "/o5.mp4"
                                    << "No video stream found" << false;
        QTest::newRow("unknown extension") << m_h264 << dir + "/o6.notacontainer"
                                           << "Could not create output context" << false;
        QTest::newRow("no encoder for the audio") << amr << dir + "/o7.3gp"
                                                  << "AAC encoder not found" << true;
        QTest::newRow("unwritable output") << m_h264 << dir + "/no/such/dir/o8.mp4"
                                           << "Could not open output file" << true;
    }
    void badInputFailsCleanly()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(QString, message);
        QFETCH(bool, total);
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        LogCapture log;
        const bool ok = tool.compressVideo(input, output, 0);
        QVERIFY(!ok);
        rec.checkProtocol(ok, total);
        QVERIFY2(log.contains(message), qPrintable(log.lines().join('\n')));
        QVERIFY(log.contains("Video compression completed: failed"));
    }

    // A Matroska file cut short still opens: what is there gets compressed.
    void truncatedMatroskaCompressesWhatIsThere()
    {
        const QString source = out("whole.mkv");
        QVERIFY(TestMedia::makeVideo(source, 2, 160, 120, 25, true, {"-c:v", "libx264", "-c:a", "aac"}));
        const QByteArray whole = Transcode::fileBytes(source);
        const QString cut = out("cut.mkv");
        {
            QFile f(cut);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(whole.left(whole.size() * 2 / 3));
        }
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        const QString target = out("cut-out.mkv");
        const bool ok = tool.compressVideo(cut, target, 1);
        rec.checkProtocol(ok, true);
        QVERIFY(ok);
        QVERIFY(Transcode::packetCount(target, "v:0") > 0);
    }
};

QTEST_GUILESS_MAIN(CompressTest)
#include "tst_compress.moc"
