#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "TestMedia.h"
#include "ToolTestSupport.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

using ToolTest::LogCapture;
using ToolTest::SignalRecorder;
namespace lvl = spdlog::level;

// Cutting a time range by packet copy: totals, progress, cancel, clamping and failures.
class TestCropJob : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }

    static int videoPackets(const QString& file) { return ToolTest::countPackets(file, "v:0"); }
    static double seconds(const QString& file)
    {
        return TestMedia::probe(file, "format=duration").toDouble();
    }
    // The whole file decodes without an error.
    static bool decodes(const QString& file)
    {
        return TestMedia::ffmpeg({"-xerror", "-i", file, "-f", "null", "-"});
    }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("crop");
        av_log_set_level(AV_LOG_QUIET);
        // Key frames every second so cuts land where the tests expect them.
        QVERIFY(TestMedia::makeVideo(path("12s.mp4"), 12.0, 320, 240, 25, true, {"-g", "25"}));
        QVERIFY(TestMedia::makeVideo(path("30fps.mp4"), 12.0, 160, 120, 30, true, {"-g", "30"}));
    }

    void wholeRangeCopiesTheWholeFile()
    {
        CommonTool tool;
        SignalRecorder rec(tool);
        QSignalSpy finished(&tool, &CommonTool::videoCompressionFinished);
        const QString out = path("whole.mp4");
        QVERIFY(tool.cropVideo(path("12s.mp4"), out, 0.0, 12.0));
        QCOMPARE(finished.count(), 1);
        QCOMPARE(finished.at(0).at(0).toBool(), true);
        QCOMPARE(rec.events.first(), QStringLiteral("total:300"));
        QCOMPARE(rec.events.last(), QStringLiteral("finished:true"));
        QCOMPARE(videoPackets(out), 300);
        QCOMPARE(rec.progressValues().size(), 30);
        QVERIFY(qAbs(seconds(out) - 12.0) < 0.1);
        QVERIFY(decodes(out));
        QCOMPARE(TestMedia::probe(out, "stream=codec_type"), QStringLiteral("video\naudio"));
    }

    void endBeyondTheDurationIsClamped()
    {
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("clamped.mp4");
        QVERIFY(tool.cropVideo(path("12s.mp4"), out, 2.0, 1000.0));
        QCOMPARE(log.lines(lvl::warn),
                 QStringList{"End time 1000 exceeds video duration 12, adjusting to video duration"});
        QCOMPARE(rec.events.first(), QStringLiteral("total:250"));
        QVERIFY(qAbs(seconds(out) - 10.0) < 0.15);
    }

    void tenSecondsGive250UnitsAndProgressCountsVideoPacketsOnly()
    {
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("ten.mp4");
        QVERIFY(tool.cropVideo(path("30fps.mp4"), out, 1.0, 11.0));
        QCOMPARE(rec.events.first(), QStringLiteral("total:250"));
        const QList<int> progress = rec.progressValues();
        const int packets = videoPackets(out);
        QVERIFY(packets >= 299 && packets <= 302);
        QCOMPARE(progress.size(), packets / 10);
        for (int i = 0; i < progress.size(); ++i)
            QCOMPARE(progress.at(i), 10 * (i + 1));
        // The cut starts at the key frame on the start time, shifted to zero.
        QVERIFY(TestMedia::probe(out, "format=start_time").toDouble() < 0.05);
        QVERIFY(qAbs(seconds(out) - 10.0) < 0.15);
    }

    void cancelStopsWithCancelledThenSuccessAndAPlayableFile()
    {
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        // Asked from inside the job, so the very next packet sees it.
        connect(&tool, &CommonTool::videoCompressionProgress, &tool, &CommonTool::cancelVideoOperation,
                Qt::DirectConnection);
        const QString out = path("cancelled.mp4");
        QVERIFY(tool.cropVideo(path("12s.mp4"), out, 0.0, 12.0));
        QCOMPARE(rec.events, (QStringList{"total:300", "progress:10", "cancelled", "finished:true"}));
        QVERIFY(log.contains(lvl::info, "Video crop operation cancelled by user"));
        QVERIFY(log.contains(lvl::info, "Video cropping completed: success"));
        QCOMPARE(videoPackets(out), 10);
        QVERIFY(decodes(out));
    }

    void invalidRangeFinishesOnceAndCreatesNothing_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<double>("end");
        QTest::addColumn<QString>("logged");
        QTest::newRow("negative start") << -1.0 << 5.0 << "Invalid time range: start=-1, end=5";
        QTest::newRow("empty range") << 5.0 << 5.0 << "Invalid time range: start=5, end=5";
        QTest::newRow("reversed") << 6.0 << 5.5 << "Invalid time range: start=6, end=5.5";
        QTest::newRow("not a number") << qQNaN() << 5.0 << "Invalid time range: start=nan, end=5";
    }
    void invalidRangeFinishesOnceAndCreatesNothing()
    {
        QFETCH(double, start);
        QFETCH(double, end);
        QFETCH(QString, logged);
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        QSignalSpy finished(&tool, &CommonTool::videoCompressionFinished);
        const QString out = path("never.mp4");
        QVERIFY(!tool.cropVideo(path("12s.mp4"), out, start, end));
        QCOMPARE(rec.events, QStringList{"finished:false"});
        QCOMPARE(finished.count(), 1);
        QCOMPARE(log.lines(lvl::err), QStringList{logged});
        QVERIFY(!QFile::exists(out));
    }

    void badInputEndsCleanlyWithOneReason_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << "missing.mp4" << QByteArray() << "Could not open input file: ";
        QTest::newRow("empty") << "empty.mp4" << QByteArray("") << "Could not open input file: ";
        QTest::newRow("text") << "notes.mp4" << QByteArray("plain words, no video\n")
                              << "Could not open input file: ";
        QByteArray noise(65536, '\0');
        quint32 x = 12345;
        for (char& c : noise)
            c = char((x = x * 1103515245u + 12345u) >> 24);
        QTest::newRow("random bytes") << "noise.mkv" << noise << "Could not open input file: ";
    }
    void badInputEndsCleanlyWithOneReason()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        const QString in = path(name);
        if (QTest::currentDataTag() != QLatin1String("missing")) {
            QFile f(in);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(content);
        }
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("from-" + name + ".mp4");
        QVERIFY(!tool.cropVideo(in, out, 0.0, 5.0));
        QCOMPARE(rec.events, QStringList{"finished:false"});
        QCOMPARE(log.count(lvl::err), 1);
        QVERIFY(log.lines(lvl::err).first().startsWith(reason));
        QVERIFY(!QFile::exists(out));
    }

    void truncatedInputStillEndsCleanly()
    {
        // Cut off half-way: the index sits at the end of an MP4, so it cannot be opened at all;
        // a Matroska file loses its tail but its head still plays.
        for (const QString& ext : {QStringLiteral("mp4"), QStringLiteral("mkv")}) {
            const QString full = path("full." + ext);
            QVERIFY(TestMedia::makeVideo(full, 4.0, 160, 120));
            QFile source(full);
            QVERIFY(source.open(QIODevice::ReadOnly));
            const QByteArray head = source.read(source.size() / 2);
            const QString cut = path("truncated." + ext);
            QFile target(cut);
            QVERIFY(target.open(QIODevice::WriteOnly));
            target.write(head);
            target.close();
            CommonTool tool;
            SignalRecorder rec(tool);
            const bool ok = tool.cropVideo(cut, path("from-truncated." + ext), 0.0, 4.0);
            QCOMPARE(rec.finishedCount(), 1);
            QCOMPARE(rec.events.last(), QStringLiteral("finished:%1").arg(ok ? "true" : "false"));
        }
    }

    void unwritableOutputFailsWithTheReason_data()
    {
        QTest::addColumn<QString>("out");
        QTest::newRow("missing folder") << "no/such/folder/out.mp4";
        QTest::newRow("file as folder") << "12s.mp4/out.mp4";
    }
    void unwritableOutputFailsWithTheReason()
    {
        QFETCH(QString, out);
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        QVERIFY(!tool.cropVideo(path("12s.mp4"), path(out), 0.0, 2.0));
        QCOMPARE(rec.events, QStringList{"finished:false"});
        QCOMPARE(log.lines(lvl::err), QStringList{"Could not open output file: " + path(out)});
        QVERIFY(log.contains(lvl::info, "Video cropping completed: failed"));
    }

    void unusualPathsWork()
    {
        const QString in = path("it's a 测试 clip.mp4");
        QVERIFY(QFile::copy(path("12s.mp4"), in));
        const QString out = path("结果 \"quoted\" 'clip'.mkv");
        CommonTool tool;
        QVERIFY(tool.cropVideo(in, out, 3.0, 5.0));
        QVERIFY(qAbs(seconds(out) - 2.0) < 0.15);
    }

    void unknownDurationCopiesNothingButSucceeds()
    {
        const QString raw = path("raw.h264");
        QVERIFY(TestMedia::ffmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=160x120:duration=2", "-pix_fmt", "yuv420p", raw}));
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        QVERIFY(tool.cropVideo(raw, path("from-raw.mp4"), 0.0, 1.0));
        QVERIFY(log.contains(lvl::warn, "End time 1 exceeds video duration 0, adjusting to video duration"));
        QCOMPARE(rec.events, (QStringList{"total:0", "finished:true"}));
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
        QFile srt(path("s.srt"));
        QVERIFY(srt.open(QIODevice::WriteOnly));
        srt.write("1\n00:00:00,000 --> 00:00:05,000\nhello\n");
        srt.close();
        const QString in = path("v-sub-a.mkv");
        QVERIFY(TestMedia::ffmpeg({"-i", path("12s.mp4"), "-i", path("s.srt"), "-map", "0:v", "-map", "1",
                                   "-map", "0:a", "-c:v", "copy", "-c:a", "copy", "-c:s", "srt", in}));
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("shifted.mp4");
        QVERIFY(tool.cropVideo(in, out, 0.0, 12.0));
        QVERIFY(log.contains(lvl::warn, "Subtitle codec subrip not supported in mp4 container"));
        QVERIFY(log.contains(lvl::err, "Error writing packet"));
        QCOMPARE(rec.events.last(), QStringLiteral("finished:true"));
        QVERIFY(videoPackets(out) < 300);
    }
};

QTEST_GUILESS_MAIN(TestCropJob)
#include "tst_cropjob.moc"
