// Format conversion on real media made at test time; outputs are read back with ffprobe.
#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "TestMedia.h"
#include "TranscodeSupport.h"
#include "VideoInfo.h"

#include <QFile>
#include <QtTest>
#include <atomic>
#include <cmath>
#include <thread>

using Transcode::JobRecorder;
using Transcode::LogCapture;

namespace {

VideoInfo request(int codecId, int audioCodecId = 0, int64_t audioBitrate = 0)
{
    VideoInfo info;
    info.codecId = codecId;
    info.audioCodecId = audioCodecId;
    info.audioBitrate = audioBitrate;
    return info;
}

constexpr int kH264 = 27;
constexpr int kAac = 86018;
constexpr int kMp3 = 86017;
constexpr int kFlac = 86028;
constexpr int kVorbis = 86021;
constexpr int kPcmS16le = 65536;

// Each audio packet starts where the previous one ended (within one tick of the stream's
// time base), so the re-encoded sound has neither gaps nor overlaps.
bool audioTimestampsContinuous(const QString& path, QString* why)
{
    const QStringList rows =
        Transcode::run("ffprobe", {"-v", "error", "-select_streams", "a:0", "-show_entries",
                                   "packet=pts,duration", "-of", "csv=p=0", path})
            .split('\n', Qt::SkipEmptyParts);
    qint64 expected = -1;
    for (const QString& row : rows) {
        const QStringList fields = row.split(',');
        if (fields.size() < 2)
            return false;
        const qint64 pts = fields[0].toLongLong();
        if (expected >= 0 && qAbs(pts - expected) > 1) {
            *why = QStringLiteral("packet at %1, expected %2").arg(pts).arg(expected);
            return false;
        }
        expected = pts + fields[1].toLongLong();
    }
    return rows.size() > 1;
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

    void init() { CommonTool::instance()->resetCancelState(); }

    void copyBothStreamsIsAPureRemux()
    {
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        const QString target = out("remux.mp4");
        const bool ok = tool.convertVideoFormat(m_mkv, target, request(0, 0));
        QVERIFY(ok);
        rec.checkProtocol(ok, true);
        QCOMPARE(rec.total(), Transcode::packetCount(m_mkv, "v:0"));
        QCOMPARE(TestMedia::probe(target, "format=format_name"), QString("mov,mp4,m4a,3gp,3g2,mj2"));
        QCOMPARE(TestMedia::probe(target, "stream=index", "v:0"), QString("0"));
        QCOMPARE(Transcode::packetSizes(target, "v:0"), Transcode::packetSizes(m_mkv, "v:0"));
        QCOMPARE(Transcode::packetSizes(target, "a:0"), Transcode::packetSizes(m_mkv, "a:0"));
        // Progress follows the copied video packets on the total's scale.
        const std::vector<int> progress = rec.progress();
        QVERIFY(!progress.empty());
        QVERIFY(progress.back() <= rec.total());
        QCOMPARE(progress.front(), 10);
    }

    void doublingTheFrameRateSendsEveryFrameTwice()
    {
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        LogCapture log;
        VideoInfo info = request(kH264);
        info.fps = 50;
        const QString target = out("fps50.mkv");
        const bool ok = tool.convertVideoFormat(m_mkv, target, info);
        QVERIFY(ok);
        rec.checkProtocol(ok, true);
        QVERIFY(log.contains("FPS conversion: input=25.00 -> output=50.00, ratio=2.000"));
        const int inputFrames = log.count("Input frame ");
        QVERIFY(inputFrames > 40);
        QCOMPARE(log.count("Duplicating frame "), inputFrames);
        QVERIFY(log.contains("Input frame 3: output range [6, 8), repeat 2 times"));
        QVERIFY(log.contains("Duplicating frame 3 (repeat 2/2)"));
        QCOMPARE(Transcode::packetCount(target, "v:0"), 2 * inputFrames);
        QCOMPARE(TestMedia::probe(target, "stream=r_frame_rate", "v:0"), QString("50/1"));
        // Progress counts input frames, once per output slot.
        QCOMPARE(int(rec.progress().size()), 2 * inputFrames);
        QCOMPARE(rec.progress().back(), inputFrames);
    }

    void halvingTheFrameRateDropsEverySecondFrame()
    {
        CommonTool& tool = *CommonTool::instance();
        LogCapture log;
        VideoInfo info = request(kH264);
        info.fps = 15;
        const QString target = out("fps15.mp4");
        QVERIFY(tool.convertVideoFormat(m_30fps, target, info));
        QVERIFY(log.contains("ratio=0.500"));
        const int inputFrames = log.count("Input frame ");
        QVERIFY(inputFrames > 20);
        QCOMPARE(log.count("Duplicating frame "), 0);
        QCOMPARE(Transcode::packetCount(target, "v:0"), (inputFrames + 1) / 2);
        QCOMPARE(TestMedia::probe(target, "stream=r_frame_rate", "v:0"), QString("15/1"));
    }

    void requestedSizeIsRoundedDownToEven()
    {
        VideoInfo info = request(kH264);
        info.width = 641;
        info.height = 361;
        const QString target = out("641.mp4");
        QVERIFY(CommonTool::instance()->convertVideoFormat(m_mkv, target, info));
        QCOMPARE(TestMedia::probe(target, "stream=width,height", "v:0"), QString("640\n360"));
        QVERIFY(Transcode::decodeErrors(target, "0").isEmpty());
    }

    void audioCodecZeroCopiesTheAudio()
    {
        const QString target = out("audio-copied.mp4");
        QVERIFY(CommonTool::instance()->convertVideoFormat(m_mkv, target, request(kH264, 0)));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", "v:0"), QString("h264"));
        QCOMPARE(Transcode::packetSizes(target, "a:0"), Transcode::packetSizes(m_mkv, "a:0"));
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
        QTest::newRow("aac in mp4") << m_mkv << kAac << "mp4"
                                    << "aac\n44100\n1" << qint64(0);
        QTest::newRow("aac in mkv") << m_mkv << kAac << "mkv"
                                    << "aac\n44100\n1" << qint64(0);
        QTest::newRow("mp3 in mkv") << m_mkv << kMp3 << "mkv"
                                    << "mp3\n44100\n1" << qint64(0);
        QTest::newRow("mp3 in mp4") << m_mkv << kMp3 << "mp4"
                                    << "mp3\n44100\n1" << qint64(0);
        QTest::newRow("flac in mkv") << m_mkv << kFlac << "mkv"
                                     << "flac\n44100\n1" << qint64(0);
        QTest::newRow("vorbis in mkv") << m_mkv << kVorbis << "mkv"
                                       << "vorbis\n44100\n1" << qint64(0);
        QTest::newRow("pcm in mkv") << m_mkv << kPcmS16le << "mkv"
                                    << "pcm_s16le\n44100\n1" << qint64(0);
        QTest::newRow("pcm in mov") << m_mkv << kPcmS16le << "mov"
                                    << "pcm_s16le\n44100\n1" << qint64(0);
        // Rates and layouts the encoder does not take are converted to ones it does.
        QTest::newRow("88.2 kHz 5.1 to mp3") << m_surround << kMp3 << "mkv"
                                             << "mp3\n48000\n2" << qint64(192000);
        QTest::newRow("88.2 kHz 5.1 to aac") << m_surround << kAac << "mp4"
                                             << "aac\n88200\n6" << qint64(192000);
        QTest::newRow("88.2 kHz 5.1 to flac") << m_surround << kFlac << "mkv"
                                              << "flac\n88200\n6" << qint64(0);
    }
    void offeredAudioEncodersGiveCompleteStreams()
    {
        QFETCH(QString, source);
        QFETCH(int, codecId);
        QFETCH(QString, container);
        QFETCH(QString, expected);
        QFETCH(qint64, bitRate);
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        const QString target =
            out(QStringLiteral("audio-%1-%2.%3").arg(codecId).arg(QFileInfo(source).baseName(), container));
        const bool ok = tool.convertVideoFormat(source, target, request(0, codecId, bitRate));
        QVERIFY(ok);
        rec.checkProtocol(ok, true);
        QCOMPARE(TestMedia::probe(target, "stream=codec_name,sample_rate,channels", "a:0"), expected);
        const QString errors = Transcode::decodeErrors(target, "0:a");
        QVERIFY2(errors.isEmpty(), qPrintable(errors));
        const double want = Transcode::decodedAudioSeconds(source);
        const double got = Transcode::decodedAudioSeconds(target);
        QVERIFY2(want > 1.9 && std::fabs(got - want) < 0.1,
                 qPrintable(QStringLiteral("%1 vs %2").arg(got).arg(want)));
        QString why;
        QVERIFY2(audioTimestampsContinuous(target, &why), qPrintable(why));
        // The video went through untouched.
        QCOMPARE(Transcode::packetSizes(target, "v:0"), Transcode::packetSizes(source, "v:0"));
    }

    // The convert page's map goes through the asynchronous entry on the pool: kbit/s become
    // bit/s, and the cancel flag left by an earlier job is cleared first.
    void pageMapRunsOnThePool()
    {
        CommonTool& tool = *CommonTool::instance();
        tool.cancelVideoOperation();
        JobRecorder rec(tool);
        QVariantMap map{{"codecId", kH264}, {"width", 320},         {"height", 240},     {"fps", 24},
                        {"bitrate", 256},   {"audioCodecId", kMp3}, {"audioBitrate", 64}};
        const QString target = out("page.mp4");
        tool.convertVideoFormatAsync(m_mkv, target, map);
        QVERIFY(rec.waitFinished());
        rec.checkProtocol(true, true);
        QCOMPARE(TestMedia::probe(target, "stream=width,height,r_frame_rate", "v:0"),
                 QString("320\n240\n24/1"));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", "a:0"), QString("mp3"));
        const double audioRate = TestMedia::probe(target, "stream=bit_rate", "a:0").toDouble();
        QVERIFY2(audioRate > 56000 && audioRate < 72000, qPrintable(QString::number(audioRate)));
    }

    // A cancel seen between packets still finishes the file; the job reports failure.
    void cancelBetweenPacketsClosesTheFile()
    {
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        QObject context;
        connect(&tool, &CommonTool::videoCompressionProgress, &context,
                [&tool](int) { tool.cancelVideoOperation(); });
        LogCapture log;
        const QString target = out("cancel-copy.mp4");
        const bool ok = tool.convertVideoFormat(m_mkv, target, request(0, 0));
        QVERIFY(!ok);
        rec.checkProtocol(ok, true);
        QCOMPARE(rec.count(JobRecorder::Event::Cancelled), 1);
        QVERIFY(log.contains("Video format conversion cancelled by user"));
        QVERIFY(log.contains("Video format conversion completed: failed"));
        const int written = Transcode::packetCount(target, "v:0");
        QVERIFY(written >= 10 && written < rec.total());
    }

    // A cancel from another thread lands wherever the job is: between frames the file is
    // left without its index, between packets it is finished. Either way: cancelled once,
    // then finished(false).
    void cancelFromAnotherThread()
    {
        // Long enough that the job is still running when the other thread gets its turn.
        const QString long10s = out("long.mkv");
        QVERIFY(TestMedia::makeVideo(long10s, 10, 320, 240, 25, false,
                                     {"-c:v", "libx264", "-preset", "ultrafast"}));
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        std::atomic<int> frames{0};
        QObject context;
        connect(
            &tool, &CommonTool::videoCompressionProgress, &context, [&frames](int p) { frames = p; },
            Qt::DirectConnection);
        std::thread canceller([&]() {
            while (frames.load() < 5)
                std::this_thread::yield();
            tool.cancelVideoOperation();
        });
        LogCapture log;
        const QString target = out("cancel-threaded.mp4");
        const bool ok = tool.convertVideoFormat(long10s, target, request(kH264));
        canceller.join();
        QVERIFY(!ok);
        rec.checkProtocol(ok, true);
        QCOMPARE(rec.count(JobRecorder::Event::Cancelled), 1);
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
        const QString empty = dir + "/empty.mkv";
        QFile(empty).open(QIODevice::WriteOnly);
        const QString text = dir + "/notes.mkv";
        {
            QFile f(text);
            f.open(QIODevice::WriteOnly);
            f.write("not a video at all\n");
        }
        const QString audioOnly = dir + "/tone.mka";
        TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=duration=1", "-c:a", "flac", audioOnly});

        QTest::newRow("missing") << dir + "/none.mkv" << dir + "/o1.mp4" << 0 << 0
                                 << "Could not open input file" << false;
        QTest::newRow("empty") << empty << dir + "/o2.mp4" << 0 << 0 << "Could not open input file" << false;
        QTest::newRow("not media") << text << dir + "/o3.mp4" << 0 << 0 << "Could not open input file"
                                   << false;
        QTest::newRow("audio only") << audioOnly << dir + "/o4.mp4" << 0 << 0 << "No video stream found"
                                    << false;
        QTest::newRow("unknown extension")
            << m_mkv << dir + "/o5.zzz" << 0 << 0 << "Could not create output context" << false;
        QTest::newRow("no such video encoder") << m_mkv << dir + "/o6.mp4" << 999999 << 0
                                               << "Video encoder not found for codec ID: 999999" << false;
        QTest::newRow("audio codec as video") << m_mkv << dir + "/o7.mp4" << kAac << 0
                                              << "Video encoder not found for codec ID: 86018" << false;
        QTest::newRow("video codec as audio")
            << m_mkv << dir + "/o8.mp4" << 0 << kH264 << "Audio encoder not found for codec ID: 27" << false;
        QTest::newRow("unwritable output")
            << m_mkv << dir + "/missing/dir/o9.mp4" << 0 << 0 << "Could not open output file" << false;
        // WAV holds no video: the muxer refuses the header after the total was announced.
        QTest::newRow("container refuses the streams")
            << m_mkv << dir + "/o10.wav" << 0 << 0 << "Error occurred when writing header" << true;
    }
    void badRequestsFailCleanly()
    {
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(int, codecId);
        QFETCH(int, audioCodecId);
        QFETCH(QString, message);
        QFETCH(bool, total);
        CommonTool& tool = *CommonTool::instance();
        JobRecorder rec(tool);
        LogCapture log;
        const bool ok = tool.convertVideoFormat(input, output, request(codecId, audioCodecId));
        QVERIFY(!ok);
        rec.checkProtocol(ok, total);
        QVERIFY2(log.contains(message), qPrintable(log.lines().join('\n')));
        QVERIFY(log.contains("Video format conversion completed: failed"));
    }
};

QTEST_GUILESS_MAIN(ConvertTest)
#include "tst_convert.moc"
