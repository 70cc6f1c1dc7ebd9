#include "ToolTestSupport.h"

#include <QSignalSpy>

namespace lvl = spdlog::level;

// Cutting a time range by packet copy: totals, progress, cancel, clamping and failures.
class TestCropJob : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("crop");
        av_log_set_level(AV_LOG_QUIET);
        // Key frames every second so cuts land where the tests expect them.
        QVERIFY(TestMedia::makeVideo(path("12s.mp4"), 12.0, 320, 240, 25, true, {"-g", "25"}));
        QVERIFY(TestMedia::makeVideo(path("30fps.mp4"), 12.0, 160, 120, 30, true, {"-g", "30"}));
    }

    // The total is 25 units a second of the range; progress comes every ten video packets.
    void wholeRangeCopiesTheWholeFile()
    {
        CommonTool tool;
        JobRecorder rec(tool);
        const QString out = path("whole.mp4");
        QVERIFY(tool.cropVideo(path("12s.mp4"), out, 0.0, 12.0));
        rec.checkProtocol(true, true);
        QCOMPARE(rec.total(), 300);
        QCOMPARE(TestMedia::packetCount(out, "v:0"), 300);
        QCOMPARE(rec.progress().size(), 30);
        QVERIFY(qAbs(TestMedia::seconds(out) - 12.0) < 0.1);
        QVERIFY(TestMedia::plays(out));
        QCOMPARE(TestMedia::probe(out, "stream=codec_type"), QStringLiteral("video\naudio"));
    }

    void tenSecondsGive250UnitsAndProgressCountsVideoPacketsOnly()
    {
        CommonTool tool;
        JobRecorder rec(tool);
        const QString out = path("ten.mp4");
        QVERIFY(tool.cropVideo(path("30fps.mp4"), out, 1.0, 11.0));
        QCOMPARE(rec.total(), 250);
        const int packets = TestMedia::packetCount(out, "v:0");
        QVERIFY(packets >= 299 && packets <= 302);
        QCOMPARE(rec.progress().size(), packets / 10);
        for (int i = 0; i < rec.progress().size(); ++i)
            QCOMPARE(rec.progress().at(i), 10 * (i + 1));
        // The cut starts at the key frame on the start time, shifted to zero.
        QVERIFY(TestMedia::probe(out, "format=start_time").toDouble() < 0.05);
        QVERIFY(qAbs(TestMedia::seconds(out) - 10.0) < 0.15);
    }

    // The seek lands on the key frame before the start; what lies between it and the start
    // must not reach the output, in either stream.
    void startBetweenKeyFramesKeepsNothingFromBeforeIt()
    {
        const QString in = path("sparse-keys.mp4");
        QVERIFY(TestMedia::makeVideo(in, 8.0, 160, 120, 25, true, {"-g", "125", "-bf", "0"}));
        const QString out = path("mid-gop.mp4");
        QVERIFY(CommonTool().cropVideo(in, out, 2.4, 6.0));
        // 2.4 s to 6.0 s at 25 frames a second, both ends included.
        QCOMPARE(TestMedia::packetCount(out, "v:0"), 91);
        const double audio = TestMedia::packetCount(out, "a:0") * 1024 / 44100.0;
        QVERIFY2(qAbs(audio - 3.6) < 0.05, qPrintable(QString::number(audio)));
    }

    // The clip of a portrait phone video keeps its display matrix, a mirror included.
    void portraitKeepsItsDisplayMatrix()
    {
        const QString portrait = path("portrait.mp4");
        QVERIFY(TestMedia::makeTurned(path("30fps.mp4"), portrait, 90, true));
        const QString matrix = TestMedia::probe(portrait, "stream_side_data=displaymatrix", "v:0");
        QVERIFY(!matrix.isEmpty());
        CommonTool tool;
        const QString out = path("portrait clip.mp4");
        QVERIFY(tool.cropVideo(portrait, out, 1.0, 3.0));
        QCOMPARE(TestMedia::probe(out, "stream_side_data=displaymatrix", "v:0"), matrix);
    }

    void endBeyondTheDurationIsClampedAlsoOnUnusualPaths()
    {
        const QString in = path("it's a 测试 clip.mp4");
        QVERIFY(QFile::copy(path("12s.mp4"), in));
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        const QString out = path("结果 \"quoted\" 'clip'.mkv");
        QVERIFY(tool.cropVideo(in, out, 2.0, 1000.0));
        QCOMPARE(log.lines(lvl::warn),
                 QStringList{"End time 1000 exceeds video duration 12, adjusting to video duration"});
        QCOMPARE(rec.total(), 250);
        QVERIFY(qAbs(TestMedia::seconds(out) - 10.0) < 0.15);
    }

    void cancelStopsWithCancelledThenSuccessAndAPlayableFile()
    {
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        // Asked from inside the job, so the very next packet sees it.
        connect(&tool, &CommonTool::videoCompressionProgress, &tool, &CommonTool::cancelVideoOperation,
                Qt::DirectConnection);
        const QString out = path("cancelled.mp4");
        QVERIFY(tool.cropVideo(path("12s.mp4"), out, 0.0, 12.0));
        QCOMPARE(rec.events, (QStringList{"total:300", "progress:10", "cancelled", "finished:true"}));
        QVERIFY(log.contains("Video crop operation cancelled by user"));
        QVERIFY(log.contains("Video cropping completed: success"));
        QCOMPARE(TestMedia::packetCount(out, "v:0"), 10);
        QVERIFY(TestMedia::plays(out));
    }

    // Every failure: false, exactly one finished(false) and no other signal, one logged reason,
    // no output file.
    void failuresEndCleanlyWithOneReason_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("end");
        QTest::addColumn<QString>("reason");
        const QString good = path("12s.mp4");
        auto row = [](const char* tag, const QString& in, const QString& out, double s, double e,
                      const QString& reason) { QTest::newRow(tag) << in << out << s << e << reason; };
        row("negative start", good, path("never.mp4"), -1.0, 5.0, "Invalid time range: start=-1, end=5");
        row("empty range", good, path("never.mp4"), 5.0, 5.0, "Invalid time range: start=5, end=5");
        row("reversed", good, path("never.mp4"), 6.0, 5.5, "Invalid time range: start=6, end=5.5");
        row("not a number", good, path("never.mp4"), qQNaN(), 5.0, "Invalid time range: start=nan, end=5");
        row("missing folder", good, path("no/such/folder/out.mp4"), 0.0, 2.0,
            "Could not open output file: " + path("no/such/folder/out.mp4"));
        row("file as folder", good, path("12s.mp4/out.mp4"), 0.0, 2.0,
            "Could not open output file: " + path("12s.mp4/out.mp4"));
        const QMap<QString, QString> bad = TestMedia::badInputs(m_dir);
        for (const char* name : {"missing", "empty", "text", "random bytes", "truncated"})
            row(name, bad[name], path(QStringLiteral("from-%1.mp4").arg(name)), 0.0, 5.0,
                "Could not open input file: " + bad[name]);
    }
    void failuresEndCleanlyWithOneReason()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(double, start);
        QFETCH(double, end);
        QFETCH(QString, reason);
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        QSignalSpy finished(&tool, &CommonTool::videoCompressionFinished);
        QVERIFY(!tool.cropVideo(input, output, start, end));
        QCOMPARE(rec.events, QStringList{"finished:false"});
        QCOMPARE(finished.count(), 1);
        QCOMPARE(log.lines(lvl::err), QStringList{reason});
        QVERIFY(!QFile::exists(output));
    }

    void sourcesWithoutDurationOrTailEndCleanly()
    {
        const QString raw = path("raw.h264");
        QVERIFY(TestMedia::ffmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=160x120:duration=2", "-pix_fmt", "yuv420p", raw}));
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        QVERIFY(tool.cropVideo(raw, path("from-raw.mp4"), 0.0, 1.0));
        QVERIFY(log.contains("End time 1 exceeds video duration 0, adjusting to video duration"));
        QCOMPARE(rec.events, (QStringList{"total:0", "finished:true"}));

        // A Matroska file cut short loses its tail, but its head still plays.
        QVERIFY(TestMedia::makeVideo(path("full.mkv"), 4.0, 160, 120));
        QVERIFY(TestMedia::writeTruncated(path("full.mkv"), path("truncated.mkv")));
        rec.events.clear();
        const bool ok = tool.cropVideo(path("truncated.mkv"), path("from-truncated.mkv"), 0.0, 4.0);
        rec.checkProtocol(ok, rec.total() >= 0);
    }

    void coverArtSurvivesAWholeClip()
    {
        QVERIFY(TestMedia::ffmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=64x64", "-frames:v", "1", path("cover.png")}));
        const QString in = path("with-cover.mp4");
        QVERIFY(TestMedia::ffmpeg({"-i", path("12s.mp4"), "-i", path("cover.png"), "-map", "0", "-map", "1",
                                   "-c", "copy", "-c:v:1", "png", "-disposition:v:1", "attached_pic", in}));
        const QString out = path("cover-out.mp4");
        QVERIFY(CommonTool().cropVideo(in, out, 0.0, 12.0));
        QCOMPARE(TestMedia::probe(out, "stream_disposition=attached_pic", "v"), QStringLiteral("0\n1"));
    }

    void droppedSubtitleShiftsLaterStreamsWithoutTranslation()
    {
        // Video, then an SRT track, then audio: into MP4 the subtitle is dropped and the audio
        // packets, still addressed by their input index, point past the output's streams.
        QVERIFY(TestMedia::writeFile(path("s.srt"), "1\n00:00:00,000 --> 00:00:05,000\nhello\n"));
        const QString in = path("v-sub-a.mkv");
        QVERIFY(TestMedia::ffmpeg({"-i", path("12s.mp4"), "-i", path("s.srt"), "-map", "0:v", "-map", "1",
                                   "-map", "0:a", "-c:v", "copy", "-c:a", "copy", "-c:s", "srt", in}));
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        const QString out = path("shifted.mp4");
        QVERIFY(tool.cropVideo(in, out, 0.0, 12.0));
        QVERIFY(log.contains("Subtitle codec subrip not supported in mp4 container"));
        QVERIFY(!log.lines(lvl::err).filter("Error writing packet").isEmpty());
        QCOMPARE(rec.events.last(), QStringLiteral("finished:true"));
        QVERIFY(TestMedia::packetCount(out, "v:0") < 300);
    }
};

QTEST_GUILESS_MAIN(TestCropJob)
#include "tst_cropjob.moc"
