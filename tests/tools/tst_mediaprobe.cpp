#include "CommonTool.h"
#include "MediaProbe.h"
#include "TestMedia.h"
#include "ToolTestSupport.h"

#include <QFile>
#include <QUrl>
#include <QtTest>

using ToolTest::LogCapture;
namespace lvl = spdlog::level;

// Probing (getVideoInfo, durations) and the stream layout of stream-copy jobs, on media made
// by the ffmpeg tool at test time.
class TestMediaProbe : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }
    bool make(const QStringList& args) { return TestMedia::ffmpeg(args); }

    // Input with stream 0 video, 1 audio, 2 subtitle of the given codec (srt, ass, mov_text).
    QString withSubtitle(const QString& codec, const QString& container)
    {
        const QString out = path(QStringLiteral("sub-%1.%2").arg(codec, container));
        if (!QFile::exists(out))
            make({"-f",       "lavfi",       "-i",   "testsrc=size=160x120:duration=1",
                  "-f",       "lavfi",       "-i",   "sine=duration=1",
                  "-i",       path("s.srt"), "-map", "0",
                  "-map",     "1",           "-map", "2",
                  "-pix_fmt", "yuv420p",     "-c:s", codec,
                  out});
        return out;
    }

    // The output streams copyStreamLayout makes for `input` into a muxer chosen by `outputName`.
    struct Layout
    {
        ff::InputFormatPtr input;
        ff::OutputFormatPtr output;
        bool ok = false;
    };
    Layout layout(const QString& input, const QString& outputName,
                  void (*prepare)(AVFormatContext*) = nullptr)
    {
        Layout l;
        if (!MediaProbe::openInputFile(input, l.input) ||
            !MediaProbe::createOutputContext(l.output, path(outputName)))
            return l;
        if (prepare)
            prepare(l.input.get());
        l.ok = MediaProbe::copyStreamLayout(l.input.get(), l.output.get());
        return l;
    }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("probe");
        av_log_set_level(AV_LOG_ERROR);
        QVERIFY(TestMedia::makeVideo(path("plain.mp4"), 2.0));
        QVERIFY(make({"-f", "lavfi", "-i", "testsrc=size=64x64", "-frames:v", "1", path("cover.png")}));
        QVERIFY(make(
            {"-f", "lavfi", "-i", "testsrc=size=160x120:duration=1", "-pix_fmt", "yuv420p", path("v.mp4")}));
        QFile srt(path("s.srt"));
        QVERIFY(srt.open(QIODevice::WriteOnly));
        srt.write("1\n00:00:00,000 --> 00:00:00,800\nhello\n");
    }

    void infoDescribesVideoAndAudioStreams()
    {
        LogCapture log;
        CommonTool tool;
        const QVariantMap info = tool.getVideoInfo(path("plain.mp4"));
        QCOMPARE(info.keys(), (QStringList{"audioBitrate", "audioCodecId", "bitrate", "codecId", "fps",
                                           "height", "width"}));
        QCOMPARE(info.value("codecId").toInt(), int(AV_CODEC_ID_H264));
        QCOMPARE(info.value("width").toInt(), 320);
        QCOMPARE(info.value("height").toInt(), 240);
        QCOMPARE(info.value("fps").toInt(), 25);
        QCOMPARE(info.value("audioCodecId").toInt(), int(AV_CODEC_ID_AAC));
        QVERIFY(info.value("bitrate").toLongLong() > 0);
        QCOMPARE(info.value("bitrate").userType(), int(QMetaType::LongLong));
        QVERIFY(info.value("audioBitrate").toLongLong() > 0);
        QVERIFY(log.contains(lvl::info, "Video info - codec_id:27, size:320x240"));
        QVERIFY(log.contains(lvl::info, "Audio info - codec_id:86018"));
        QCOMPARE(tool.getVideoDuration(path("plain.mp4")), 2.0);
    }

    void urlFormsReadLocalPathsWithUnusualCharacters()
    {
        const QString odd = path("o'dd name 视频.mp4");
        QVERIFY(QFile::copy(path("plain.mp4"), odd));
        CommonTool tool;
        const QUrl url = QUrl::fromLocalFile(odd);
        QCOMPARE(tool.getVideoInfoFromUrl(url), tool.getVideoInfo(path("plain.mp4")));
        QCOMPARE(tool.getVideoDurationFromUrl(url), 2.0);
    }

    void coverPictureIsNeverTheVideoStream()
    {
        const QString mp3 = path("cover.mp3");
        QVERIFY(make({"-f", "lavfi", "-i", "sine=duration=1", "-i", path("cover.png"), "-map", "0", "-map",
                      "1", "-c:v", "png", "-disposition:v", "attached_pic", mp3}));
        const QVariantMap info = CommonTool().getVideoInfo(mp3);
        for (const char* key : {"codecId", "width", "height", "bitrate", "fps"})
            QCOMPARE(info.value(key).toLongLong(), 0);
        QCOMPARE(info.value("audioCodecId").toInt(), int(AV_CODEC_ID_MP3));
    }

    void frameRateIsRoundedToWholeNumber()
    {
        const QString ntsc = path("ntsc.mp4");
        QVERIFY(make({"-f", "lavfi", "-i", "testsrc=size=160x120:rate=30000/1001:duration=1", "-pix_fmt",
                      "yuv420p", ntsc}));
        QCOMPARE(CommonTool().getVideoInfo(ntsc).value("fps").toInt(), 30);
    }

    void unknownOrUnreadableDurationIsZero()
    {
        const QString raw = path("raw.h264");
        QVERIFY(make({"-f", "lavfi", "-i", "testsrc=size=160x120:duration=1", "-pix_fmt", "yuv420p", "-f",
                      "h264", raw}));
        CommonTool tool;
        QCOMPARE(tool.getVideoDuration(raw), 0.0);
        QCOMPARE(tool.getVideoDuration(path("missing.mp4")), 0.0);
        QVERIFY(tool.getVideoInfo(raw).value("width").toInt() == 160); // still opens
    }

    void unreadableFilesGiveEmptyInfoWithReason_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("create");
        QTest::newRow("missing") << QByteArray() << false;
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("text") << QByteArray("this is not a video\n") << true;
        QByteArray noise(4096, '\0');
        for (int i = 0; i < noise.size(); ++i)
            noise[i] = char((i * 7919 + 13) % 251);
        QTest::newRow("random bytes") << noise << true;
    }
    void unreadableFilesGiveEmptyInfoWithReason()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, create);
        const QString file = path(QStringLiteral("bad-%1.mp4").arg(QTest::currentDataTag()));
        QFile::remove(file);
        if (create) {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(content);
        }
        LogCapture log;
        CommonTool tool;
        QVERIFY(tool.getVideoInfo(file).isEmpty());
        QVERIFY(log.contains(lvl::err, "Failed to open input file: " + file));
        QCOMPARE(tool.getVideoDuration(file), 0.0);
    }

    void openInputFileReportsFailures()
    {
        LogCapture log;
        ff::InputFormatPtr input;
        QVERIFY(!MediaProbe::openInputFile(path("missing.mp4"), input));
        QVERIFY(!input);
        QCOMPARE(log.lines(lvl::err), QStringList{"Could not open input file: " + path("missing.mp4")});
        ff::OutputFormatPtr output;
        QVERIFY(!MediaProbe::createOutputContext(output, path("out.unknownext")));
        QVERIFY(log.contains(lvl::err, "Could not create output context"));
        QVERIFY(!MediaProbe::copyStreamLayout(nullptr, nullptr));
        QVERIFY(log.contains(lvl::err, "Invalid format context pointers"));
    }

    void textSubtitlesAreDroppedFromMp4Family_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("muxer");
        QTest::newRow("srt into mp4") << "srt"
                                      << "o.mp4"
                                      << "mp4";
        QTest::newRow("ass into mp4") << "ass"
                                      << "o.mp4"
                                      << "mp4";
        QTest::newRow("srt into mov") << "srt"
                                      << "o.mov"
                                      << "mov";
        QTest::newRow("ass into 3gp") << "ass"
                                      << "o.3gp"
                                      << "3gp";
    }
    void textSubtitlesAreDroppedFromMp4Family()
    {
        QFETCH(QString, codec);
        QFETCH(QString, output);
        QFETCH(QString, muxer);
        const QString input = withSubtitle(codec, "mkv");
        LogCapture log;
        Layout l = layout(input, output);
        QVERIFY(l.ok);
        QCOMPARE(int(l.output->nb_streams), 2);
        const QString name = avcodec_get_name(l.input->streams[2]->codecpar->codec_id);
        QCOMPARE(log.lines(lvl::warn),
                 QStringList{QStringLiteral(
                                 "Subtitle codec %1 not supported in %2 container, skipping subtitle stream")
                                 .arg(name, muxer)});
        QVERIFY(log.contains(lvl::info, "Skipping stream index 2 (Subtitle)"));
    }

    void subtitlesAreKeptWhereTheContainerTakesThem_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("inputContainer");
        QTest::addColumn<QString>("output");
        QTest::newRow("srt into mkv") << "srt"
                                      << "mkv"
                                      << "o.mkv";
        QTest::newRow("ass into mkv") << "ass"
                                      << "mkv"
                                      << "o.mkv";
        QTest::newRow("mov_text into mov") << "mov_text"
                                           << "mp4"
                                           << "o.mov";
    }
    void subtitlesAreKeptWhereTheContainerTakesThem()
    {
        QFETCH(QString, codec);
        QFETCH(QString, inputContainer);
        QFETCH(QString, output);
        LogCapture log;
        Layout l = layout(withSubtitle(codec, inputContainer), output);
        QVERIFY(l.ok);
        QCOMPARE(int(l.output->nb_streams), 3);
        QCOMPARE(l.output->streams[2]->codecpar->codec_id, l.input->streams[2]->codecpar->codec_id);
        QCOMPARE(log.count(lvl::warn), 0);
        QVERIFY(log.contains(lvl::info, "Copying special properties for Subtitle stream index 2"));
        QCOMPARE(l.output->streams[0]->codecpar->codec_tag, 0u);
    }

    void coverArtIsCopiedWithItsPicture()
    {
        const QString input = path("cover-after.mp4");
        QVERIFY(make({"-i", path("v.mp4"), "-i", path("cover.png"), "-map", "0", "-map", "1", "-c:v:0",
                      "copy", "-c:v:1", "png", "-disposition:v:1", "attached_pic", input}));
        LogCapture log;
        // A demuxer that cannot read the picture's size leaves it 0x0: the case the layout
        // treats as cover art.
        Layout l = layout(input, "o.mp4", [](AVFormatContext* in) {
            in->streams[1]->codecpar->width = 0;
            in->streams[1]->codecpar->height = 0;
        });
        QVERIFY(l.ok);
        QCOMPARE(int(l.output->nb_streams), 2);
        const AVStream* in = l.input->streams[1];
        const AVStream* out = l.output->streams[1];
        QVERIFY(in->attached_pic.size > 0);
        QCOMPARE(out->attached_pic.size, in->attached_pic.size);
        QVERIFY(out->attached_pic.data != in->attached_pic.data);
        QVERIFY(memcmp(out->attached_pic.data, in->attached_pic.data, in->attached_pic.size) == 0);
        QCOMPARE(out->codecpar->width, 160);
        QCOMPARE(out->codecpar->height, 120);
        QVERIFY(out->disposition & AV_DISPOSITION_ATTACHED_PIC);
        QVERIFY(log.contains(lvl::info, "Found cover image stream (index=1)"));
        QVERIFY(log.contains(lvl::info, "Copying special properties for Cover Image stream index 1"));
        QVERIFY(
            log.contains(lvl::info, QStringLiteral("Copied cover image: size=%1 bytes, dimensions=160x120")
                                        .arg(in->attached_pic.size)));
    }

    void coverBeforeAnyVideoHasNoSizeToBorrow()
    {
        const QString input = path("cover-first.mkv");
        QVERIFY(make({"-i", path("cover.png"), "-i", path("v.mp4"), "-map", "0", "-map", "1", "-c:v:0", "png",
                      "-c:v:1", "copy", input}));
        Layout l = layout(input, "o.mkv", [](AVFormatContext* in) {
            in->streams[0]->codecpar->width = 0;
            in->streams[0]->codecpar->height = 0;
        });
        QVERIFY(l.ok);
        QCOMPARE(int(l.output->nb_streams), 2);
        QCOMPARE(l.output->streams[0]->codecpar->width, 0);
        QCOMPARE(l.output->streams[0]->codecpar->height, 0);
        QCOMPARE(l.output->streams[1]->codecpar->width, 160);
    }
};

QTEST_GUILESS_MAIN(TestMediaProbe)
#include "tst_mediaprobe.moc"
