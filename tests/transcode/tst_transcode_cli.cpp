// vidora-cli compress and convert, run as a user would, on media made at test time.
#include "TestMedia.h"
#include "TranscodeSupport.h"

#include <QFile>
#include <QProcess>
#include <QtTest>
#include <csignal>

namespace {

QString cli()
{
    return qEnvironmentVariable("VIDORA_BIN_DIR") + "/vidora-cli";
}

struct Result
{
    int exitCode = -1;
    QString errors;
};

Result runCli(const QStringList& args)
{
    QProcess p;
    p.start(cli(), args);
    p.waitForFinished(180000);
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
            QString::fromUtf8(p.readAllStandardError())};
}

} // namespace

class TranscodeCliTest : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_source; // 160x120, 2 s at 25 fps, H.264 + AAC in Matroska

    QString out(const QString& name) const { return m_dir + "/" + name; }

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::exists(cli()));
        m_dir = TestMedia::scratchDir("cli");
        m_source = out("source.mkv");
        QVERIFY(TestMedia::makeVideo(m_source, 2, 160, 120, 25, true, {"-c:v", "libx264", "-c:a", "aac"}));
    }

    void convertWithoutOptionsRemuxes()
    {
        const QString target = out("remux.mp4");
        const Result r = runCli({"convert", m_source, target});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(Transcode::packetSizes(target, "v:0"), Transcode::packetSizes(m_source, "v:0"));
        QCOMPARE(Transcode::packetSizes(target, "a:0"), Transcode::packetSizes(m_source, "a:0"));
    }

    // Sizes, rate and bit rates go through the convert page's map: kbit/s on the command line.
    void convertOptionsReachTheEncoders()
    {
        const QString target = out("options.mp4");
        const Result r =
            runCli({"convert", m_source, target, "--codec", "h264", "--width", "321", "--height", "240",
                    "--fps", "24", "--bitrate", "200", "--audio-codec", "mp3", "--audio-bitrate", "64"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(TestMedia::probe(target, "stream=codec_name,width,height,r_frame_rate", "v:0"),
                 QString("h264\n320\n240\n24/1"));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", "a:0"), QString("mp3"));
        const double audioRate = TestMedia::probe(target, "stream=bit_rate", "a:0").toDouble();
        QVERIFY2(audioRate > 56000 && audioRate < 72000, qPrintable(QString::number(audioRate)));
    }

    void codecNames_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("stream");
        QTest::addColumn<QString>("codec");
        QTest::newRow("audio copy") << "--audio-codec"
                                    << "copy"
                                    << "a:0"
                                    << "aac";
        QTest::newRow("audio aac") << "--audio-codec"
                                   << "aac"
                                   << "a:0"
                                   << "aac";
        QTest::newRow("audio mp3") << "--audio-codec"
                                   << "mp3"
                                   << "a:0"
                                   << "mp3";
        QTest::newRow("audio flac") << "--audio-codec"
                                    << "flac"
                                    << "a:0"
                                    << "flac";
        QTest::newRow("audio m4a") << "--audio-codec"
                                   << "m4a"
                                   << "a:0"
                                   << "aac";
        QTest::newRow("audio wav") << "--audio-codec"
                                   << "wav"
                                   << "a:0"
                                   << "pcm_s16le";
        QTest::newRow("audio ogg") << "--audio-codec"
                                   << "ogg"
                                   << "a:0"
                                   << "vorbis";
        QTest::newRow("audio id") << "--audio-codec"
                                  << "86028"
                                  << "a:0"
                                  << "flac";
        QTest::newRow("audio library name") << "--audio-codec"
                                            << "opus"
                                            << "a:0"
                                            << "opus";
        QTest::newRow("video copy") << "--codec"
                                    << "copy"
                                    << "v:0"
                                    << "h264";
        QTest::newRow("video hevc") << "--codec"
                                    << "hevc"
                                    << "v:0"
                                    << "hevc";
        QTest::newRow("video id") << "--codec"
                                  << "27"
                                  << "v:0"
                                  << "h264";
        QTest::newRow("video library name") << "--codec"
                                            << "mpeg4"
                                            << "v:0"
                                            << "mpeg4";
    }
    void codecNames()
    {
        QFETCH(QString, option);
        QFETCH(QString, value);
        QFETCH(QString, stream);
        QFETCH(QString, codec);
        const QString target =
            out(QStringLiteral("names-%1.mkv").arg(QString(QTest::currentDataTag()).replace(' ', '-')));
        const Result r = runCli({"convert", m_source, target, option, value});
        QVERIFY2(r.exitCode == 0, qPrintable(r.errors));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", stream), codec);
        QVERIFY(Transcode::decodeErrors(target, "0").isEmpty());
    }

    void compressLevels_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("crf");
        QTest::newRow("default") << QStringList() << "crf=18.0";
        QTest::newRow("2") << QStringList{"--level", "2"} << "crf=28.0";
        QTest::newRow("9 acts as 1") << QStringList{"--level", "9"} << "crf=23.0";
    }
    void compressLevels()
    {
        QFETCH(QStringList, options);
        QFETCH(QString, crf);
        const QString target =
            out(QStringLiteral("compress-%1.mkv").arg(QString(QTest::currentDataTag()).replace(' ', '-')));
        const Result r = runCli(QStringList{"compress", m_source, target} + options);
        QCOMPARE(r.exitCode, 0);
        QVERIFY(Transcode::fileBytes(target).contains(crf.toLatin1()));
    }

    // Usage errors stop before any job runs: exit 2 and no output file.
    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("unknown codec")
            << QStringList{"convert", m_source, out("u1.mp4"), "--codec", "nonsense"};
        QTest::newRow("audio name as video")
            << QStringList{"convert", m_source, out("u2.mp4"), "--codec", "mp3"};
        QTest::newRow("video name as audio")
            << QStringList{"convert", m_source, out("u3.mp4"), "--audio-codec", "h264"};
        QTest::newRow("negative width") << QStringList{"convert", m_source, out("u4.mp4"), "--width", "-2"};
        QTest::newRow("fps not a number") << QStringList{"convert", m_source, out("u5.mp4"), "--fps", "fast"};
        QTest::newRow("bit rate too large")
            << QStringList{"convert", m_source, out("u6.mp4"), "--bitrate", "99999999999"};
        QTest::newRow("missing OUT") << QStringList{"convert", m_source};
        QTest::newRow("level not a number")
            << QStringList{"compress", m_source, out("u7.mp4"), "--level", "high"};
        QTest::newRow("output is the input") << QStringList{"compress", m_source, m_source};
    }
    void usageErrors()
    {
        QFETCH(QStringList, args);
        const qint64 sourceSize = QFile(m_source).size();
        const Result r = runCli(args);
        QCOMPARE(r.exitCode, 2);
        QVERIFY(r.errors.startsWith("vidora-cli: "));
        QVERIFY(!QFile::exists(args.value(2)) || args.value(2) == m_source);
        QCOMPARE(QFile(m_source).size(), sourceSize);
    }

    void jobFailuresExitWithOne_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        QTest::newRow("no such audio encoder")
            << QStringList{"convert", m_source, out("f1.mp4"), "--audio-codec", "27"}
            << "Audio encoder not found for codec ID: 27";
        QTest::newRow("missing input")
            << QStringList{"compress", out("none.mp4"), out("f2.mp4")} << "Could not open input file";
    }
    void jobFailuresExitWithOne()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        const Result r = runCli(args);
        QCOMPARE(r.exitCode, 1);
        QVERIFY2(r.errors.contains(message), qPrintable(r.errors));
    }

    // Ctrl-C cancels the running job; the command then exits with 130.
    void interruptCancelsTheJob()
    {
        const QString source = out("long.mkv");
        QVERIFY(TestMedia::makeVideo(source, 10, 640, 480, 25, true,
                                     {"-c:v", "libx264", "-preset", "ultrafast"}));
        const QString target = out("interrupted.mkv");
        QProcess p;
        p.start(cli(), {"compress", source, target});
        QVERIFY(p.waitForStarted());
        // The output appears once the job has counted the frames and begun encoding.
        QVERIFY(QTest::qWaitFor([&]() { return QFile::exists(target); }, 60000));
        ::kill(static_cast<pid_t>(p.processId()), SIGINT);
        QVERIFY(p.waitForFinished(60000));
        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QCOMPARE(p.exitCode(), 130);
    }
};

QTEST_GUILESS_MAIN(TranscodeCliTest)
#include "tst_transcode_cli.moc"
