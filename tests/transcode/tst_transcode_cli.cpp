// vidora-cli compress and convert, run as a user would, on media made at test time.
#include "ToolTestSupport.h"

#include <csignal>

class TranscodeCliTest : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_source; // 160x120, 2 s at 25 fps, H.264 + AAC in Matroska

    QString out(const QString& name) const { return m_dir + "/" + name; }
    static QString tagName() { return QString(QTest::currentDataTag()).replace(' ', '-'); }

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::exists(cliPath()));
        m_dir = TestMedia::scratchDir("cli");
        m_source = out("source.mkv");
        QVERIFY(TestMedia::makeVideo(m_source, 2, 160, 120, 25, true, {"-c:v", "libx264", "-c:a", "aac"}));
    }

    // Without options convert remuxes; sizes, rate and bit rates go through the convert page's
    // map: kbit/s on the command line.
    void convertOptionsReachTheEncoders()
    {
        const QString remux = out("remux.mp4");
        QCOMPARE(runCli({"convert", m_source, remux}).exitCode, 0);
        QCOMPARE(TestMedia::packetSizes(remux, "v:0"), TestMedia::packetSizes(m_source, "v:0"));
        QCOMPARE(TestMedia::packetSizes(remux, "a:0"), TestMedia::packetSizes(m_source, "a:0"));
        const QString target = out("options.mp4");
        const CliRun r =
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
        QTest::addColumn<QString>("codec");
        // Names of the convert page, codec ids and the library's own encoder names.
        const QList<QPair<QString, QString>> audio{{"copy", "aac"},   {"aac", "aac"},    {"mp3", "mp3"},
                                                   {"flac", "flac"},  {"m4a", "aac"},    {"wav", "pcm_s16le"},
                                                   {"ogg", "vorbis"}, {"86028", "flac"}, {"opus", "opus"}};
        const QList<QPair<QString, QString>> video{
            {"copy", "h264"}, {"hevc", "hevc"}, {"27", "h264"}, {"mpeg4", "mpeg4"}};
        for (const auto& a : audio)
            QTest::newRow(qPrintable("audio " + a.first)) << QString("--audio-codec") << a.first << a.second;
        for (const auto& v : video)
            QTest::newRow(qPrintable("video " + v.first)) << QString("--codec") << v.first << v.second;
    }
    void codecNames()
    {
        QFETCH(QString, option);
        QFETCH(QString, value);
        QFETCH(QString, codec);
        const QString target = out("names-" + tagName() + ".mkv");
        const CliRun r = runCli({"convert", m_source, target, option, value});
        QVERIFY2(r.exitCode == 0, qPrintable(r.err));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", option == "--codec" ? "v:0" : "a:0"), codec);
        QVERIFY(TestMedia::decodeErrors(target).isEmpty());
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
        const QString target = out("compress-" + tagName() + ".mkv");
        QCOMPARE(runCli(QStringList{"compress", m_source, target} + options).exitCode, 0);
        QVERIFY(TestMedia::fileBytes(target).contains(crf.toLatin1()));
    }

    // Usage errors (2) stop before any job runs and leave no output file; failed jobs exit
    // with 1 and their reason.
    void failures_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        auto row = [](const char* tag, const QStringList& args, int code, const QString& message) {
            QTest::newRow(tag) << args << code << message;
        };
        const QString in = m_source;
        row("unknown codec", {"convert", in, out("u1.mp4"), "--codec", "nonsense"}, 2, "");
        row("audio name as video", {"convert", in, out("u2.mp4"), "--codec", "mp3"}, 2, "");
        row("video name as audio", {"convert", in, out("u3.mp4"), "--audio-codec", "h264"}, 2, "");
        row("negative width", {"convert", in, out("u4.mp4"), "--width", "-2"}, 2, "");
        row("fps not a number", {"convert", in, out("u5.mp4"), "--fps", "fast"}, 2, "");
        row("bit rate too large", {"convert", in, out("u6.mp4"), "--bitrate", "99999999999"}, 2, "");
        row("missing OUT", {"convert", in}, 2, "");
        row("level not a number", {"compress", in, out("u7.mp4"), "--level", "high"}, 2, "");
        row("output is the input", {"compress", in, in}, 2, "");
        row("no such audio encoder", {"convert", in, out("f1.mp4"), "--audio-codec", "27"}, 1,
            "Audio encoder not found for codec ID: 27");
        row("missing input", {"compress", out("none.mp4"), out("f2.mp4")}, 1, "Could not open input file");
    }
    void failures()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, message);
        const qint64 sourceSize = QFile(m_source).size();
        const CliRun r = runCli(args);
        QCOMPARE(r.exitCode, exitCode);
        QVERIFY2(r.err.startsWith("vidora-cli: ") && r.err.contains(message), qPrintable(r.err));
        if (exitCode == 2)
            QVERIFY(!QFile::exists(args.value(2)) || args.value(2) == m_source);
        QCOMPARE(QFile(m_source).size(), sourceSize);
    }

    // Ctrl-C cancels the running job; the command then exits with 130.
    void interruptCancelsTheJob()
    {
        const QString source = out("long.mkv");
        QVERIFY(TestMedia::makeVideo(source, 10, 640, 480, 25, true,
                                     {"-c:v", "libx264", "-preset", "ultrafast"}));
        const QString target = out("interrupted.mkv");
        QProcess p;
        p.start(cliPath(), {"compress", source, target});
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
