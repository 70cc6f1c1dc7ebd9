// Compression on real media made at test time; outputs are read back with ffprobe.
#include "MediaProbe.h"
#include "ToolTestSupport.h"

#include <cmath>

class CompressTest : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_h264;   // 160x120, 2 s at 25 fps, H.264 + AAC in MP4 (bit rates known)
    QString m_silent; // 160x120, 1 s, H.264 without audio in Matroska (bit rate unknown)

    CommonTool& tool = *CommonTool::instance();

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

    void init() { tool.resetCancelState(); }

    // The level picks the encoder's quality factor and the share of the source's bit rates
    // (FLV records both bit rates); numbers outside the table act as level 1. The source shapes
    // what comes out: an odd size is encoded one smaller, HEVC stays HEVC, and a source of
    // unknown bit rate (0) without audio leaves the quality factor alone and gives one stream.
    void eachLevelGivesItsCodecQualityAndBitRate_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("entries"); // of the output's streams
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QByteArray>("settings"); // the encoder records them in the stream
        QTest::addColumn<double>("factor");       // of the source's bit rates; 0: not checked
        QVERIFY(TestMedia::makeVideo(out("odd.mkv"), 1, 1279, 719, 5, false,
                                     {"-c:v", "libx264", "-pix_fmt", "yuv444p"}));
        QVERIFY(TestMedia::makeVideo(out("hevc.mkv"), 1, 160, 120, 25, false,
                                     {"-c:v", "libx265", "-x265-params", "log-level=error"}));
        bool ok = false;
        QCOMPARE(MediaProbe::videoInfo(m_silent, &ok).bitrate, int64_t(0));
        QVERIFY(ok);
        auto row = [](const char* tag, const QString& source, int level, const char* entries,
                      const char* expected, const char* settings, double factor) {
            QTest::newRow(tag) << source << level << QString(entries) << QString(expected)
                               << QByteArray(settings) << factor;
        };
        const char* h264 = "stream=codec_name";
        row("level 0", m_h264, 0, h264, "h264\naac", "crf=18.0", 0.9);
        row("level 1", m_h264, 1, h264, "h264\naac", "crf=23.0", 0.7);
        row("level 2", m_h264, 2, h264, "h264\naac", "crf=28.0", 0.3);
        row("5 acts as 1", m_h264, 5, h264, "h264\naac", "crf=23.0", 0.7);
        row("-1 acts as 1", m_h264, -1, h264, "h264\naac", "crf=23.0", 0.7);
        row("odd size", out("odd.mkv"), 2, "stream=width,height,pix_fmt", "1278\n718\nyuv420p", "crf=28.0",
            0);
        row("hevc", out("hevc.mkv"), 0, h264, "hevc", "", 0);
        row("bit rate 0, no audio", m_silent, 0, "stream=codec_type", "video", "rc=crf", 0);
    }
    void eachLevelGivesItsCodecQualityAndBitRate()
    {
        QFETCH(QString, source);
        QFETCH(int, level);
        QFETCH(QString, entries);
        QFETCH(QString, expected);
        QFETCH(QByteArray, settings);
        QFETCH(double, factor);
        JobRecorder rec(tool);
        const QString target =
            out(QString(QTest::currentDataTag()).replace(' ', '-') + (factor ? ".flv" : ".mkv"));
        QVERIFY(tool.compressVideo(source, target, level));
        rec.checkProtocol(true, true);
        QCOMPARE(TestMedia::probe(target, entries), expected);
        QVERIFY(TestMedia::fileBytes(target).contains(settings));
        QVERIFY(TestMedia::decodeErrors(target).isEmpty());
        if (factor > 0) {
            const double videoRate = TestMedia::probe(m_h264, "stream=bit_rate", "v:0").toDouble();
            const double audioRate = TestMedia::probe(m_h264, "stream=bit_rate", "a:0").toDouble();
            QVERIFY(videoRate > 0 && audioRate > 0);
            // libx264 keeps whole kbit/s.
            const double videoExpected = std::floor(std::trunc(videoRate * factor) / 1000) * 1000;
            QVERIFY(qAbs(TestMedia::probe(target, "stream=bit_rate", "v:0").toDouble() - videoExpected) <= 2);
            QVERIFY(qAbs(TestMedia::probe(target, "stream=bit_rate", "a:0").toDouble() -
                         audioRate * factor) <= 2);
        }
    }

    // A portrait phone video comes out upright: its pictures are turned as its display matrix
    // said, into a portrait stream without a matrix (which would turn them a second time).
    void portraitIsTurnedUpright()
    {
        const QString portrait = out("portrait.mp4");
        QVERIFY(TestMedia::makeTurned(m_h264, portrait, 90));
        const QString target = out("portrait compressed.mp4");
        QVERIFY(tool.compressVideo(portrait, target, 0));
        QCOMPARE(TestMedia::probe(target, "stream=width,height:stream_side_data=rotation", "v:0"),
                 QStringLiteral("120\n160"));
        QVERIFY(showSamePicture(target, portrait));
    }

    // Progress is the number of frames handed to the encoder, once per packet it returns:
    // strictly rising, never above the packet total, and the output holds at least as many
    // frames. Frames the decoder still holds at the end are not encoded. The audio packets
    // are carried over unchanged.
    void progressCountsEncodedFrames()
    {
        JobRecorder rec(tool);
        const QString target = out("progress.mp4");
        QVERIFY(tool.compressVideo(m_h264, target, 1));
        rec.checkProtocol(true, true);
        QCOMPARE(rec.total(), TestMedia::packetCount(m_h264, "v:0"));
        const QList<int> progress = rec.progress();
        QVERIFY(!progress.empty());
        for (int i = 1; i < progress.size(); ++i)
            QVERIFY(progress[i] > progress[i - 1]);
        const int written = TestMedia::packetCount(target, "v:0");
        QVERIFY(progress.back() <= rec.total());
        QVERIFY(written >= progress.back());
        // Reordering delay plus at most three frames in the decoder's threads.
        QVERIFY2(written >= rec.total() - 8, qPrintable(QString::number(written)));
        QCOMPARE(TestMedia::packetSizes(target, "a:0"), TestMedia::packetSizes(m_h264, "a:0"));
        QCOMPARE(TestMedia::probe(target, "stream=index", "v:0"), QString("0"));
        QVERIFY(TestMedia::decodeErrors(target).isEmpty());
    }

    // Asked before the start, a cancel stops the synchronous routine at its first check (it does
    // not clear the flag); the asynchronous one clears it first and runs to the end on the pool.
    // Asked midway, the job stops without flushing and writes no trailer.
    void cancelEndsWithoutFlushOrTrailer()
    {
        JobRecorder rec(tool);
        LogCapture log;
        tool.cancelVideoOperation();
        QVERIFY(!tool.compressVideo(m_silent, out("pre-cancelled.mkv"), 0));
        QCOMPARE(rec.events,
                 (QStringList{QStringLiteral("total:%1").arg(rec.total()), "cancelled", "finished:false"}));
        QVERIFY(log.contains("Video compression cancelled by user"));

        rec.events.clear();
        tool.cancelVideoOperation();
        tool.compressVideoAsync(m_silent, out("async.mkv"), 0);
        QVERIFY(rec.waitFinished());
        rec.checkProtocol(true, true);
        QVERIFY(TestMedia::packetCount(out("async.mkv"), "v:0") > 0);

        rec.events.clear();
        log.clear();
        connect(&tool, &CommonTool::videoCompressionProgress, &rec, [this](int p) {
            if (p >= 3)
                tool.cancelVideoOperation();
        });
        const QString target = out("cancelled.mp4");
        QVERIFY(!tool.compressVideo(m_h264, target, 1));
        rec.checkProtocol(false, true);
        QCOMPARE(rec.count("cancelled"), 1);
        // Seen after the packet whose frame reported progress, or between frames when the
        // packet held more than one: either way nothing is flushed.
        QCOMPARE(log.count("Video compression cancelled"), 1);
        QVERIFY(log.contains("Video compression completed: failed"));
        // No trailer: an MP4 without its index is not readable.
        QVERIFY(QFile::exists(target));
        QVERIFY(TestMedia::probe(target, "format=format_name").isEmpty());
    }

    // Failures end with false and the reason; a Matroska file cut short still opens and what
    // is there gets compressed.
    void badInputsFailWithTheirReasonOrCompressWhatIsThere_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("message"); // empty: the job succeeds
        QTest::addColumn<bool>("total");
        const QString dir = TestMedia::scratchDir("compress-bad");
        const QMap<QString, QString> bad = TestMedia::badInputs(dir);
        QVERIFY(TestMedia::makeVideo(dir + "/whole.mkv", 2, 160, 120, 25, true,
                                     {"-c:v", "libx264", "-c:a", "aac"}));
        QVERIFY(TestMedia::writeTruncated(dir + "/whole.mkv", dir + "/cut.mkv", 2.0 / 3));
        // AMR-NB can be decoded here but not encoded.
        QByteArray amr("#!AMR\n");
        for (int i = 0; i < 100; ++i)
            amr += QByteArray(1, '\x3c') + QByteArray(31, '\0');
        QVERIFY(TestMedia::writeFile(dir + "/speech.amr", amr));
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "testsrc=size=160x120:rate=25:duration=1", "-i",
                                   dir + "/speech.amr", "-c:v", "libx264", "-pix_fmt", "yuv420p", "-c:a",
                                   "copy", "-shortest", dir + "/amr.3gp"}));
        auto row = [](const char* tag, const QString& in, const QString& o, const char* message, bool total) {
            QTest::newRow(tag) << in << o << QString(message) << total;
        };
        for (const char* name : {"missing", "empty", "text", "random bytes", "truncated"})
            row(name, bad[name], dir + "/" + name + ".mp4", "Could not open input file", false);
        row("audio only", bad["audio only"], dir + "/o5.mp4", "No video stream found", false);
        row("unknown extension", m_h264, dir + "/o6.notacontainer", "Could not create output context", false);
        row("no encoder for the audio", dir + "/amr.3gp", dir + "/o7.3gp", "AAC encoder not found", true);
        row("unwritable output", m_h264, dir + "/no/such/dir/o8.mp4", "Could not open output file", true);
        row("truncated mkv", dir + "/cut.mkv", dir + "/o9.mkv", "", true);
    }
    void badInputsFailWithTheirReasonOrCompressWhatIsThere()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(QString, message);
        QFETCH(bool, total);
        JobRecorder rec(tool);
        LogCapture log;
        const bool ok = tool.compressVideo(input, output, 1);
        QCOMPARE(ok, message.isEmpty());
        rec.checkProtocol(ok, total);
        QVERIFY2(log.contains(message), qPrintable(log.lines().join('\n')));
        QVERIFY(
            log.contains(QStringLiteral("Video compression completed: %1").arg(ok ? "success" : "failed")));
        if (ok)
            QVERIFY(TestMedia::packetCount(output, "v:0") > 0);
    }
};

QTEST_GUILESS_MAIN(CompressTest)
#include "tst_compress.moc"
