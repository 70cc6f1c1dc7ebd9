// Format conversion on real media made at test time; outputs are read back with ffprobe.
#include "ToolTestSupport.h"
#include "VideoInfo.h"

#include <atomic>
#include <cmath>
#include <thread>

namespace {

VideoInfo request(int codecId, int audioCodecId = 0, int64_t audioBitrate = 0)
{
    VideoInfo info;
    info.codecId = codecId;
    info.audioCodecId = audioCodecId;
    info.audioBitrate = audioBitrate;
    return info;
}

} // namespace

class ConvertTest : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_mkv;      // 160x120, 2 s at 25 fps, H.264 + AAC (44.1 kHz mono) in Matroska
    QString m_30fps;    // 160x120, 1 s at 30 fps, H.264 without audio in MP4
    QString m_surround; // 160x120, 2 s, H.264 + PCM at 88.2 kHz in 5.1 in Matroska

    CommonTool& tool = *CommonTool::instance();

    QString out(const QString& name) const { return m_dir + "/" + name; }

private slots:
    void initTestCase()
    {
        av_log_set_level(AV_LOG_ERROR);
        m_dir = TestMedia::scratchDir("convert");
        m_mkv = out("source.mkv");
        m_30fps = out("thirty.mp4");
        m_surround = out("surround.mkv");
        QVERIFY(TestMedia::makeVideo(m_mkv, 2, 160, 120, 25, true, {"-c:v", "libx264", "-c:a", "aac"}));
        QVERIFY(TestMedia::makeVideo(m_30fps, 1, 160, 120, 30, false, {"-c:v", "libx264"}));
        QVERIFY(TestMedia::makeVideo(m_surround, 2, 160, 120, 25, true,
                                     {"-c:v", "libx264", "-c:a", "pcm_s16le", "-ar", "88200", "-ac", "6"}));
    }

    void init() { tool.resetCancelState(); }

    void copyBothStreamsIsAPureRemux()
    {
        JobRecorder rec(tool);
        const QString target = out("remux.mp4");
        QVERIFY(tool.convertVideoFormat(m_mkv, target, request(0, 0)));
        rec.checkProtocol(true, true);
        QCOMPARE(rec.total(), TestMedia::packetCount(m_mkv, "v:0"));
        QCOMPARE(TestMedia::probe(target, "format=format_name"), QString("mov,mp4,m4a,3gp,3g2,mj2"));
        QCOMPARE(TestMedia::probe(target, "stream=index", "v:0"), QString("0"));
        QCOMPARE(TestMedia::packetSizes(target, "v:0"), TestMedia::packetSizes(m_mkv, "v:0"));
        QCOMPARE(TestMedia::packetSizes(target, "a:0"), TestMedia::packetSizes(m_mkv, "a:0"));
        // Progress follows the copied video packets on the total's scale.
        const QList<int> progress = rec.progress();
        QVERIFY(!progress.empty());
        QVERIFY(progress.back() <= rec.total());
        QCOMPARE(progress.front(), 10);
    }

    // A portrait phone video stays upright: a copy keeps the display matrix, a re-encode turns
    // the pictures and drops it. A requested size is the coded picture's, as the file's info
    // reports it.
    void portraitStaysUpright_data()
    {
        QTest::addColumn<int>("codecId");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("shown"); // width, height and rotation of the output
        QTest::newRow("copy") << 0 << QSize() << "160\n120\n90";
        QTest::newRow("re-encode") << int(AV_CODEC_ID_H264) << QSize() << "120\n160";
        QTest::newRow("re-encode at 80x60") << int(AV_CODEC_ID_H264) << QSize(80, 60) << "60\n80";
    }
    void portraitStaysUpright()
    {
        QFETCH(int, codecId);
        QFETCH(QSize, size);
        QFETCH(QString, shown);
        const QString portrait = out("portrait.mp4");
        QVERIFY(QFile::exists(portrait) || TestMedia::makeTurned(m_30fps, portrait, 90));
        VideoInfo info = request(codecId);
        info.width = size.width();
        info.height = size.height();
        const QString target = out(QStringLiteral("portrait %1.mp4").arg(QTest::currentDataTag()));
        QVERIFY(tool.convertVideoFormat(portrait, target, info));
        QCOMPARE(TestMedia::probe(target, "stream=width,height:stream_side_data=rotation", "v:0"), shown);
        if (!size.isValid())
            QVERIFY(showSamePicture(target, portrait));
    }

    // Input frame n fills the output slots [n * ratio, (n + 1) * ratio): doubling the rate
    // sends every frame twice, halving it drops every second one. Progress counts input
    // frames, once per slot.
    void newFrameRateRepeatsOrDropsWholeFrames_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("fps");
        QTest::addColumn<QString>("ratioLine");
        QTest::addColumn<int>("repeat"); // output slots per input frame, at least 1
        QTest::addColumn<QString>("container");
        QTest::newRow("25 to 50") << m_mkv << 50 << "input=25.00 -> output=50.00, ratio=2.000" << 2 << "mkv";
        QTest::newRow("30 to 15") << m_30fps << 15 << "input=30.00 -> output=15.00, ratio=0.500" << 1
                                  << "mp4";
    }
    void newFrameRateRepeatsOrDropsWholeFrames()
    {
        QFETCH(QString, source);
        QFETCH(int, fps);
        QFETCH(QString, ratioLine);
        QFETCH(int, repeat);
        QFETCH(QString, container);
        JobRecorder rec(tool);
        LogCapture log(spdlog::level::debug);
        VideoInfo info = request(AV_CODEC_ID_H264);
        info.fps = fps;
        const QString target = out(QStringLiteral("fps%1.%2").arg(fps).arg(container));
        QVERIFY(tool.convertVideoFormat(source, target, info));
        rec.checkProtocol(true, true);
        QVERIFY(log.contains("FPS conversion: " + ratioLine));
        const int inputFrames = log.count("Input frame ");
        QVERIFY(inputFrames > 20);
        QCOMPARE(log.count("Duplicating frame "), inputFrames * (repeat - 1));
        const int expectedPackets = repeat > 1 ? repeat * inputFrames : (inputFrames + 1) / 2;
        QCOMPARE(TestMedia::packetCount(target, "v:0"), expectedPackets);
        QCOMPARE(TestMedia::probe(target, "stream=r_frame_rate", "v:0"), QStringLiteral("%1/1").arg(fps));
        QCOMPARE(rec.progress().size(), repeat * inputFrames);
        QCOMPARE(rec.progress().back(), inputFrames);
    }

    // Every audio encoder the convert page offers, including those that only take frames of
    // one size, gives a stream that decodes without complaint for the source's whole length.
    void offeredAudioEncodersGiveCompleteStreams_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<int>("codecId");
        QTest::addColumn<QString>("container");
        QTest::addColumn<QString>("expected"); // codec, sample rate, channels
        QTest::addColumn<qint64>("bitRate");   // 0: the source's
        auto row = [](const char* tag, const QString& source, int codec, const char* container,
                      const char* expected, qint64 bitRate) {
            QTest::newRow(tag) << source << codec << QString(container) << QString(expected) << bitRate;
        };
        row("aac in mp4", m_mkv, AV_CODEC_ID_AAC, "mp4", "aac\n44100\n1", 0);
        row("aac in mkv", m_mkv, AV_CODEC_ID_AAC, "mkv", "aac\n44100\n1", 0);
        row("mp3 in mkv", m_mkv, AV_CODEC_ID_MP3, "mkv", "mp3\n44100\n1", 0);
        row("mp3 in mp4", m_mkv, AV_CODEC_ID_MP3, "mp4", "mp3\n44100\n1", 0);
        row("flac in mkv", m_mkv, AV_CODEC_ID_FLAC, "mkv", "flac\n44100\n1", 0);
        row("vorbis in mkv", m_mkv, AV_CODEC_ID_VORBIS, "mkv", "vorbis\n44100\n1", 0);
        row("pcm in mkv", m_mkv, AV_CODEC_ID_PCM_S16LE, "mkv", "pcm_s16le\n44100\n1", 0);
        row("pcm in mov", m_mkv, AV_CODEC_ID_PCM_S16LE, "mov", "pcm_s16le\n44100\n1", 0);
        // Rates and layouts the encoder does not take are converted to ones it does.
        row("88.2 kHz 5.1 to mp3", m_surround, AV_CODEC_ID_MP3, "mkv", "mp3\n48000\n2", 192000);
        row("88.2 kHz 5.1 to aac", m_surround, AV_CODEC_ID_AAC, "mp4", "aac\n88200\n6", 192000);
        row("88.2 kHz 5.1 to flac", m_surround, AV_CODEC_ID_FLAC, "mkv", "flac\n88200\n6", 0);
    }
    void offeredAudioEncodersGiveCompleteStreams()
    {
        QFETCH(QString, source);
        QFETCH(int, codecId);
        QFETCH(QString, container);
        QFETCH(QString, expected);
        QFETCH(qint64, bitRate);
        JobRecorder rec(tool);
        const QString target =
            out(QStringLiteral("audio-%1-%2.%3").arg(codecId).arg(QFileInfo(source).baseName(), container));
        QVERIFY(tool.convertVideoFormat(source, target, request(0, codecId, bitRate)));
        rec.checkProtocol(true, true);
        QCOMPARE(TestMedia::probe(target, "stream=codec_name,sample_rate,channels", "a:0"), expected);
        const QString errors = TestMedia::decodeErrors(target, "0:a");
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        const double want = TestMedia::decodedAudioSeconds(source);
        const double got = TestMedia::decodedAudioSeconds(target);
        QVERIFY2(want > 1.9 && std::fabs(got - want) < 0.1,
                 qPrintable(QStringLiteral("%1 vs %2").arg(got).arg(want)));
        // Each audio packet starts where the previous one ended (within one tick of the time
        // base): the re-encoded sound has neither gaps nor overlaps.
        const QStringList pts = TestMedia::packetField(target, "a:0", "pts");
        const QStringList durations = TestMedia::packetField(target, "a:0", "duration");
        QVERIFY(pts.size() > 1 && pts.size() == durations.size());
        for (int i = 1; i < pts.size(); ++i)
            QVERIFY2(qAbs(pts[i].toLongLong() - pts[i - 1].toLongLong() - durations[i - 1].toLongLong()) <= 1,
                     qPrintable(QStringLiteral("audio packet %1 at %2").arg(i).arg(pts[i])));
        // The video went through untouched.
        QCOMPARE(TestMedia::packetSizes(target, "v:0"), TestMedia::packetSizes(source, "v:0"));
    }

    // The convert page's map goes through the asynchronous entry on the pool, which clears
    // the cancel flag left by an earlier job first. A requested size is rounded down to even;
    // audioCodecId 0 copies the audio.
    void pageMapRunsOnThePool()
    {
        tool.cancelVideoOperation();
        JobRecorder rec(tool);
        const QVariantMap map{{"codecId", int(AV_CODEC_ID_H264)},
                              {"width", 641},
                              {"height", 361},
                              {"fps", 24},
                              {"bitrate", 256},
                              {"audioCodecId", 0}};
        const QString target = out("page.mp4");
        tool.convertVideoFormatAsync(m_mkv, target, map);
        QVERIFY(rec.waitFinished());
        rec.checkProtocol(true, true);
        QCOMPARE(TestMedia::probe(target, "stream=codec_name,width,height,r_frame_rate", "v:0"),
                 QString("h264\n640\n360\n24/1"));
        QCOMPARE(TestMedia::packetSizes(target, "a:0"), TestMedia::packetSizes(m_mkv, "a:0"));
        QVERIFY(TestMedia::decodeErrors(target).isEmpty());
    }

    // A cancel seen between packets still finishes the file; the job reports failure.
    void cancelBetweenPacketsClosesTheFile()
    {
        JobRecorder rec(tool);
        connect(&tool, &CommonTool::videoCompressionProgress, &rec,
                [this](int) { tool.cancelVideoOperation(); });
        LogCapture log;
        const QString target = out("cancel-copy.mp4");
        QVERIFY(!tool.convertVideoFormat(m_mkv, target, request(0, 0)));
        rec.checkProtocol(false, true);
        QCOMPARE(rec.count("cancelled"), 1);
        QVERIFY(log.contains("Video format conversion cancelled by user"));
        QVERIFY(log.contains("Video format conversion completed: failed"));
        const int written = TestMedia::packetCount(target, "v:0");
        QVERIFY(written >= 10 && written < rec.total());
    }

    // A cancel from another thread lands wherever the job is: between frames the file is
    // left without its index, between packets it is finished. Either way: cancelled once,
    // then finished(false).
    void cancelFromAnotherThreadEndsCancelledThenFailed()
    {
        // Long enough that the job is still running when the other thread gets its turn.
        const QString long10s = out("long.mkv");
        QVERIFY(TestMedia::makeVideo(long10s, 10, 320, 240, 25, false,
                                     {"-c:v", "libx264", "-preset", "ultrafast"}));
        JobRecorder rec(tool);
        std::atomic<int> frames{0};
        connect(
            &tool, &CommonTool::videoCompressionProgress, &rec, [&frames](int p) { frames = p; },
            Qt::DirectConnection);
        std::thread canceller([&]() {
            while (frames.load() < 5)
                std::this_thread::yield();
            tool.cancelVideoOperation();
        });
        LogCapture log;
        const QString target = out("cancel-threaded.mp4");
        const bool ok = tool.convertVideoFormat(long10s, target, request(AV_CODEC_ID_H264));
        canceller.join();
        QVERIFY(!ok);
        rec.checkProtocol(ok, true);
        QCOMPARE(rec.count("cancelled"), 1);
        const bool inFrame = log.contains("Video format conversion cancelled during frame processing");
        QCOMPARE(log.contains("Video format conversion cancelled by user"), !inFrame);
        QCOMPARE(TestMedia::probe(target, "format=format_name").isEmpty(), inFrame);
    }

    void badRequestsFailCleanly_data()
    {
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");
        QTest::addColumn<int>("codecId");
        QTest::addColumn<int>("audioCodecId");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("total");
        const QString dir = TestMedia::scratchDir("convert-bad");
        const QMap<QString, QString> bad = TestMedia::badInputs(dir);
        auto row = [&](const char* tag, const QString& in, const QString& o, int video, int audio,
                       const QString& message, bool total) {
            QTest::newRow(tag) << in << dir + "/" + o << video << audio << message << total;
        };
        for (const char* name : {"missing", "empty", "text", "random bytes", "truncated"})
            row(name, bad[name], QStringLiteral("%1.mkv").arg(name), AV_CODEC_ID_H264, 0,
                "Could not open input file", false);
        row("audio only", bad["audio only"], "o4.mp4", 0, 0, "No video stream found", false);
        row("unknown extension", m_mkv, "o5.zzz", 0, 0, "Could not create output context", false);
        row("no such video encoder", m_mkv, "o6.mp4", 999999, 0,
            "Video encoder not found for codec ID: 999999", false);
        row("audio codec as video", m_mkv, "o7.mp4", AV_CODEC_ID_AAC, 0,
            "Video encoder not found for codec ID: 86018", false);
        row("video codec as audio", m_mkv, "o8.mp4", 0, AV_CODEC_ID_H264,
            "Audio encoder not found for codec ID: 27", false);
        row("unwritable output", m_mkv, "missing/dir/o9.mp4", 0, 0, "Could not open output file", false);
        // WAV holds no video: the muxer refuses the header after the total was announced.
        row("container refuses the streams", m_mkv, "o10.wav", 0, 0, "Error occurred when writing header",
            true);
    }
    void badRequestsFailCleanly()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(int, codecId);
        QFETCH(int, audioCodecId);
        QFETCH(QString, message);
        QFETCH(bool, total);
        JobRecorder rec(tool);
        LogCapture log;
        QVERIFY(!tool.convertVideoFormat(input, output, request(codecId, audioCodecId)));
        rec.checkProtocol(false, total);
        QVERIFY2(log.contains(message), qPrintable(log.lines().join('\n')));
        QVERIFY(log.contains("Video format conversion completed: failed"));
    }
};

QTEST_GUILESS_MAIN(ConvertTest)
#include "tst_convert.moc"
