#include "MediaProbe.h"
#include "ToolTestSupport.h"

#include <QUrl>
#include <QtEndian>
#include <cstring>

namespace lvl = spdlog::level;

// Probing (getVideoInfo, durations) and the stream layout of stream-copy jobs, on media made
// by the ffmpeg tool at test time.
class TestMediaProbe : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }

    // Input with stream 0 video, 1 audio, 2 subtitle of the given codec (srt, ass, mov_text).
    QString withSubtitle(const QString& codec, const QString& container)
    {
        const QString out = path(QStringLiteral("sub-%1.%2").arg(codec, container));
        if (!QFile::exists(out))
            TestMedia::ffmpeg({"-f",       "lavfi",       "-i",   "testsrc=size=160x120:duration=1",
                               "-f",       "lavfi",       "-i",   "sine=duration=1",
                               "-i",       path("s.srt"), "-map", "0",
                               "-map",     "1",           "-map", "2",
                               "-pix_fmt", "yuv420p",     "-c:s", codec,
                               out});
        return out;
    }

    // The output streams copyStreamLayout makes for `input` into a muxer chosen by `outputName`;
    // `coverIndex` >= 0 clears that stream's size first, as a demuxer that cannot read a
    // picture's size leaves it.
    struct Layout
    {
        ff::InputFormatPtr input;
        ff::OutputFormatPtr output;
        bool ok = false;
    };
    Layout layout(const QString& input, const QString& outputName, int coverIndex = -1)
    {
        Layout l;
        if (!MediaProbe::openInputFile(input, l.input) ||
            !MediaProbe::createOutputContext(l.output, path(outputName)))
            return l;
        if (coverIndex >= 0)
            l.input->streams[coverIndex]->codecpar->width = l.input->streams[coverIndex]->codecpar->height =
                0;
        l.ok = MediaProbe::copyStreamLayout(l.input.get(), l.output.get());
        return l;
    }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("probe");
        av_log_set_level(AV_LOG_ERROR);
        QVERIFY(TestMedia::makeVideo(path("plain.mp4"), 2.0));
        QVERIFY(TestMedia::ffmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=64x64", "-frames:v", "1", path("cover.png")}));
        QVERIFY(TestMedia::makeVideo(path("v.mp4"), 1.0, 160, 120, 25, false));
        QVERIFY(TestMedia::writeFile(path("s.srt"), "1\n00:00:00,000 --> 00:00:00,800\nhello\n"));
    }

    void infoDescribesVideoAndAudioStreams()
    {
        LogCapture log;
        CommonTool tool;
        const QVariantMap info = tool.getVideoInfo(path("plain.mp4"));
        QVERIFY(info.value("bitrate").toLongLong() > 0 && info.value("audioBitrate").toLongLong() > 0);
        QVariantMap fixed = info;
        fixed.remove("bitrate");
        fixed.remove("audioBitrate");
        QCOMPARE(fixed, (QVariantMap{{"codecId", int(AV_CODEC_ID_H264)},
                                     {"width", 320},
                                     {"height", 240},
                                     {"fps", 25},
                                     {"audioCodecId", int(AV_CODEC_ID_AAC)}}));
        QCOMPARE(info.value("bitrate").userType(), int(QMetaType::LongLong));
        QVERIFY(log.contains("Video info - codec_id:27, size:320x240"));
        QVERIFY(log.contains("Audio info - codec_id:86018"));
        QCOMPARE(tool.getVideoDuration(path("plain.mp4")), 2.0);

        // The URL forms read local paths with a quote, spaces and Chinese characters.
        const QString odd = path("o'dd name 视频.mp4");
        QVERIFY(QFile::copy(path("plain.mp4"), odd));
        QCOMPARE(tool.getVideoInfoFromUrl(QUrl::fromLocalFile(odd)), info);
        QCOMPARE(tool.getVideoDurationFromUrl(QUrl::fromLocalFile(odd)), 2.0);
    }

    void unusualSourcesReportWhatTheyHold_data()
    {
        QTest::addColumn<QStringList>("make");
        QTest::addColumn<QVariantMap>("expected"); // a subset of the info
        QTest::addColumn<double>("duration");
        auto row = [](const char* tag, const QStringList& make, const QVariantMap& expected,
                      double duration) { QTest::newRow(tag) << make << expected << duration; };
        row("cover picture is never the video",
            {"-f", "lavfi", "-i", "sine=duration=1", "-i", path("cover.png"), "-map", "0", "-map", "1",
             "-c:v", "png", "-disposition:v", "attached_pic", path("cover.mp3")},
            {{"codecId", 0},
             {"width", 0},
             {"height", 0},
             {"bitrate", 0},
             {"fps", 0},
             {"audioCodecId", int(AV_CODEC_ID_MP3)}},
            1.0);
        row("30000/1001 rounds to 30",
            {"-f", "lavfi", "-i", "testsrc=size=160x120:rate=30000/1001:duration=1", "-pix_fmt", "yuv420p",
             path("ntsc.mp4")},
            {{"fps", 30}}, 1.0);
        row("unknown duration is zero but opens",
            {"-f", "lavfi", "-i", "testsrc=size=160x120:duration=1", "-pix_fmt", "yuv420p", "-f", "h264",
             path("raw.h264")},
            {{"width", 160}}, 0.0);
    }
    void unusualSourcesReportWhatTheyHold()
    {
        QFETCH(QStringList, make);
        QFETCH(QVariantMap, expected);
        QFETCH(double, duration);
        QVERIFY(TestMedia::ffmpeg(make));
        CommonTool tool;
        const QVariantMap info = tool.getVideoInfo(make.last());
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY2(info.value(it.key()).toLongLong() == it.value().toLongLong(), qPrintable(it.key()));
        QVERIFY(qAbs(tool.getVideoDuration(make.last()) - duration) < 0.05);
    }

    // A damaged header can claim a negative length (the fuzzer found one); that is no length.
    void negativeContainerDurationCountsAsUnknown()
    {
        const QString file = path("negative.mkv");
        QVERIFY(TestMedia::ffmpeg(
            {"-f", "lavfi", "-i", "testsrc=size=160x120:duration=1", "-pix_fmt", "yuv420p", file}));
        QByteArray bytes = TestMedia::fileBytes(file);
        // Matroska's Duration element: id 0x4489, then an 8-byte big-endian float.
        const int at = bytes.indexOf(QByteArray("\x44\x89\x88", 3));
        QVERIFY(at > 0);
        const double negative = -5000.0;
        quint64 raw = 0;
        std::memcpy(&raw, &negative, sizeof raw);
        qToBigEndian(raw, bytes.data() + at + 3);
        QVERIFY(TestMedia::writeFile(file, bytes));
        QVERIFY(TestMedia::seconds(file) < 0.0);
        CommonTool tool;
        QCOMPARE(tool.getVideoDuration(file), 0.0);
        QCOMPARE(tool.getVideoInfo(file).value("width").toInt(), 160);
    }

    // An unknown codec leaves the header's size unchecked (the fuzzer found one claiming
    // 1438220545 x -1702821291); a size no picture can have is no size.
    void impossibleSizeOfAnUnknownCodecCountsAsNone()
    {
        const QString file = path("unknown.mkv");
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "testsrc=size=640x360:duration=0.2:rate=5", "-c:v",
                                   "rawvideo", "-pix_fmt", "yuv420p", file}));
        QByteArray bytes = TestMedia::fileBytes(file);
        // PixelWidth (0xB0) 640 and PixelHeight (0xBA) 360 as two-byte values, and the codec name.
        for (const QByteArray& field :
             {QByteArray("\xB0\x82\x02\x80", 4), QByteArray("\xBA\x82\x01\x68", 4)}) {
            const int at = bytes.indexOf(field);
            QVERIFY(at > 0);
            bytes[at + 2] = '\xFF';
            bytes[at + 3] = '\xFF';
        }
        const int codec = bytes.indexOf("V_UNCOMPRESSED");
        QVERIFY(codec > 0);
        bytes[codec + 2] = 'X';
        QVERIFY(TestMedia::writeFile(file, bytes));
        const QVariantMap info = CommonTool().getVideoInfo(file);
        QCOMPARE(info.value("codecId").toInt(), 0);
        QCOMPARE(info.value("width").toInt(), 0);
        QCOMPARE(info.value("height").toInt(), 0);
    }

    void unreadableFilesGiveEmptyInfoWithReason()
    {
        const QMap<QString, QString> bad = TestMedia::badInputs(m_dir);
        QVERIFY(!bad.isEmpty());
        for (const char* name : {"missing", "empty", "text", "random bytes", "truncated"}) {
            LogCapture log;
            CommonTool tool;
            QVERIFY2(tool.getVideoInfo(bad[name]).isEmpty(), name);
            QVERIFY2(log.contains("Failed to open input file: " + bad[name]), name);
            QCOMPARE(tool.getVideoDuration(bad[name]), 0.0);
        }
    }

    // Text subtitles the MP4 family cannot hold are dropped with a warning; others are kept.
    void subtitlesTheContainerCannotHoldAreDropped_data()
    {
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("droppedBy"); // the muxer that refuses it; empty when kept
        auto row = [](const char* tag, const char* codec, const char* in, const char* out, const char* by) {
            QTest::newRow(tag) << QString(codec) << QString(in) << QString(out) << QString(by);
        };
        row("srt into mp4", "srt", "mkv", "o.mp4", "mp4");
        row("ass into mp4", "ass", "mkv", "o.mp4", "mp4");
        row("srt into mov", "srt", "mkv", "o.mov", "mov");
        row("ass into 3gp", "ass", "mkv", "o.3gp", "3gp");
        row("srt into mkv", "srt", "mkv", "o.mkv", "");
        row("ass into mkv", "ass", "mkv", "o.mkv", "");
        row("mov_text into mov", "mov_text", "mp4", "o.mov", "");
    }
    void subtitlesTheContainerCannotHoldAreDropped()
    {
        QFETCH(QString, codec);
        QFETCH(QString, input);
        QFETCH(QString, output);
        QFETCH(QString, droppedBy);
        LogCapture log;
        Layout l = layout(withSubtitle(codec, input), output);
        QVERIFY(l.ok);
        QCOMPARE(l.output->streams[0]->codecpar->codec_tag, 0u);
        if (!droppedBy.isEmpty()) {
            QCOMPARE(int(l.output->nb_streams), 2);
            const QString name = avcodec_get_name(l.input->streams[2]->codecpar->codec_id);
            const QString warning(
                "Subtitle codec %1 not supported in %2 container, skipping subtitle stream");
            QCOMPARE(log.lines(lvl::warn), QStringList{warning.arg(name, droppedBy)});
            QVERIFY(log.contains("Skipping stream index 2 (Subtitle)"));
        } else {
            QCOMPARE(int(l.output->nb_streams), 3);
            QCOMPARE(l.output->streams[2]->codecpar->codec_id, l.input->streams[2]->codecpar->codec_id);
            QVERIFY(log.lines(lvl::warn).isEmpty());
            QVERIFY(log.contains("Copying special properties for Subtitle stream index 2"));
        }
    }

    void coverArtIsCopiedWithItsPicture()
    {
        const QString input = path("cover-after.mp4");
        QVERIFY(TestMedia::ffmpeg({"-i", path("v.mp4"), "-i", path("cover.png"), "-map", "0", "-map", "1",
                                   "-c:v:0", "copy", "-c:v:1", "png", "-disposition:v:1", "attached_pic",
                                   input}));
        Layout l = layout(input, "o.mp4", 1);
        QVERIFY(l.ok);
        QCOMPARE(int(l.output->nb_streams), 2);
        const AVStream* in = l.input->streams[1];
        const AVStream* out = l.output->streams[1];
        QVERIFY(in->attached_pic.size > 0);
        QCOMPARE(out->attached_pic.size, in->attached_pic.size);
        QVERIFY(out->attached_pic.data != in->attached_pic.data);
        QVERIFY(memcmp(out->attached_pic.data, in->attached_pic.data, in->attached_pic.size) == 0);
        // The picture borrows the video's size.
        QCOMPARE(out->codecpar->width, 160);
        QCOMPARE(out->codecpar->height, 120);
        QVERIFY(out->disposition & AV_DISPOSITION_ATTACHED_PIC);
    }

    void coverBeforeAnyVideoHasNoSizeToBorrow()
    {
        const QString input = path("cover-first.mkv");
        QVERIFY(TestMedia::ffmpeg({"-i", path("cover.png"), "-i", path("v.mp4"), "-map", "0", "-map", "1",
                                   "-c:v:0", "png", "-c:v:1", "copy", input}));
        Layout l = layout(input, "o.mkv", 0);
        QVERIFY(l.ok);
        QCOMPARE(int(l.output->nb_streams), 2);
        QCOMPARE(l.output->streams[0]->codecpar->width, 0);
        QCOMPARE(l.output->streams[0]->codecpar->height, 0);
        QCOMPARE(l.output->streams[1]->codecpar->width, 160);
    }
};

QTEST_GUILESS_MAIN(TestMediaProbe)
#include "tst_mediaprobe.moc"
