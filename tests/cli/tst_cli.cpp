#include "ProgressBar.h"
#include "ToolTestSupport.h"

#include <QElapsedTimer>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QScopeGuard>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

// vidora-cli end to end: exit codes, stdout and stderr of every command, the options of the
// transcoding commands, interruption by signals and the progress display on a terminal.
class TestCli : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_source; // 160x120, 2 s at 25 fps, H.264 + AAC in Matroska: cheap to transcode
    QString path(const QString& name) const { return m_dir + "/" + name; }

    // Feeds long.mkv through a new FIFO to `program`: half, then `midway` (the test's moment to
    // act, the job certainly waiting for data), then the rest. The exit code, -1 when it hangs.
    int feedThroughFifo(QProcess& p, const QString& program, const QStringList& args, const QString& fifo,
                        const std::function<void()>& midway)
    {
        const QByteArray bytes = TestMedia::fileBytes(path("long.mkv"));
        QFile::remove(fifo);
        if (::mkfifo(QFile::encodeName(fifo).constData(), 0600) != 0)
            return -1;
        p.start(program, args);
        QElapsedTimer clock;
        clock.start();
        int fd = -1; // opens once the program has opened its end
        while ((fd = ::open(QFile::encodeName(fifo).constData(), O_WRONLY | O_NONBLOCK)) < 0 &&
               clock.elapsed() < 20000)
            QTest::qWait(20);
        if (fd < 0)
            return -1;
        fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
        auto writeAll = [fd](const QByteArray& part) {
            for (qint64 done = 0, n = 0; done < part.size(); done += n)
                if ((n = ::write(fd, part.constData() + done, size_t(part.size() - done))) <= 0)
                    return; // the reader left: nothing more to feed
        };
        writeAll(bytes.left(bytes.size() / 2));
        midway();
        writeAll(bytes.mid(bytes.size() / 2));
        ::close(fd);
        if (!p.waitForFinished(30000))
            return -1;
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
    }

private slots:
    void initTestCase()
    {
        ::signal(SIGPIPE, SIG_IGN);
        m_dir = TestMedia::scratchDir("cli");
        QVERIFY2(QFile::exists(cliPath()), qPrintable(cliPath()));
        QVERIFY(TestMedia::makeVideo(path("a.mp4"), 3.0));
        QVERIFY(TestMedia::makeVideo(path("b.mp4"), 2.0));
        // Noise makes the file large (megabytes), so the output reaches the disk while the input
        // is still being fed.
        QVERIFY(TestMedia::makeVideo(path("long.mkv"), 12.0, 320, 240, 25, true,
                                     {"-g", "25", "-vf", "noise=alls=20:allf=t", "-preset", "ultrafast",
                                      "-crf", "28", "-c:a", "aac"}));
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=duration=1", path("tone.m4a")}));
        m_source = path("source.mkv");
        QVERIFY(TestMedia::makeVideo(m_source, 2, 160, 120, 25, true, {"-c:v", "libx264", "-c:a", "aac"}));
    }

    void probePrintsOneJsonLine()
    {
        const CliRun r = runCli({"probe", path("a.mp4")});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err, QString());
        QVERIFY(r.out.endsWith('\n') && r.out.count('\n') == 1);
        QVERIFY(r.out.startsWith("{\"codecId\":27,\"width\":320,\"height\":240,\"bitrate\":"));
        const QJsonObject json = QJsonDocument::fromJson(r.out.toUtf8()).object();
        QCOMPARE(json.keys().size(), 8);
        QCOMPARE(json.value("fps").toInt(), 25);
        QCOMPARE(json.value("audioCodecId").toInt(), 86018);
        QVERIFY(json.value("bitrate").toDouble() > 0);
        QCOMPARE(json.value("duration").toDouble(), 3.0);
    }

    // Usage errors exit with 2 and the usage, failed jobs with 1 and the job's one reason;
    // neither prints anything on stdout or leaves an output file.
    void failuresExitWithTheirCodeAndReason_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("err");    // how stderr starts
        QTest::addColumn<QString>("output"); // must not exist afterwards
        auto usage = [](const char* tag, const QStringList& args, const QString& message) {
            QTest::newRow(tag) << args << 2 << "vidora-cli: " + message + "\n\nUsage: "
                               << "o.mp4";
        };
        usage("nothing", {}, "no command given");
        usage("unknown command", {"shrink", "a.mp4"}, "unknown command: shrink");
        usage("unknown option", {"clip", "a.mp4", "o.mp4", "--start", "0", "--end", "1", "--fast"},
              "Unknown option 'fast'.");
        usage("clip without end", {"clip", "a.mp4", "o.mp4", "--start", "1"}, "clip needs --start and --end");
        usage("clip over its input", {"clip", "a.mp4", "a.mp4", "--start", "0", "--end", "1"},
              "OUT must not be the input file");
        usage("merge over an input", {"merge", "a.mp4", "b.mp4", "a.mp4"},
              "OUT must not be one of the inputs");
        usage("thumbnail time", {"thumbnail", "a.mp4", "nan", "t.png"},
              "SECONDS is not a number of seconds: nan");
        usage("compress over its input", {"compress", "a.mp4", "a.mp4"}, "OUT must not be the input file");
        usage("compress level", {"compress", "a.mp4", "o.mp4", "--level", "high"},
              "--level is not a whole number: high");
        usage("convert without OUT", {"convert", "a.mp4"}, "convert takes IN and OUT");
        usage("unknown codec", {"convert", "a.mp4", "o.mp4", "--codec", "nonsense"},
              "unknown video codec: nonsense");
        usage("audio name as video", {"convert", "a.mp4", "o.mp4", "--codec", "mp3"},
              "unknown video codec: mp3");
        usage("video name as audio", {"convert", "a.mp4", "o.mp4", "--audio-codec", "h264"},
              "unknown audio codec: h264");
        usage("negative width", {"convert", "a.mp4", "o.mp4", "--width", "-2"},
              "--width must be a whole number from 0 to 16384: -2");
        usage("fps not a number", {"convert", "a.mp4", "o.mp4", "--fps", "fast"},
              "--fps must be a whole number from 0 to 1000: fast");
        usage("bit rate too large", {"convert", "a.mp4", "o.mp4", "--bitrate", "99999999999"},
              "--bitrate must be a whole number from 0 to 10000000: 99999999999");
        auto job = [](const char* tag, const QStringList& args, const QString& reason,
                      const QString& output) {
            QTest::newRow(tag) << args << 1 << "vidora-cli: error: " + reason << output;
        };
        const QString open = "Could not open input file: ";
        job("probe missing", {"probe", path("missing.mp4")}, open + path("missing.mp4") + "\n", "");
        job("clip range", {"clip", path("a.mp4"), path("never.mp4"), "--start", "3", "--end", "1"},
            "Invalid time range: start=3, end=1\n", path("never.mp4"));
        job("merge missing", {"merge", path("m2.mp4"), path("a.mp4"), path("gone.mp4")},
            "Input file does not exist: " + path("gone.mp4") + "\n", path("m2.mp4"));
        job("thumbnail of audio", {"thumbnail", path("tone.m4a"), "0", path("t.png")}, "", path("t.png"));
        job("thumbnail unwritable", {"thumbnail", path("a.mp4"), "1", path("no/dir/t.png")},
            "Could not write image: " + path("no/dir/t.png") + "\n", "");
    }
    void failuresExitWithTheirCodeAndReason()
    {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QString, err);
        QFETCH(QString, output);
        const qint64 inputSize = QFile(path("a.mp4")).size();
        const CliRun r = runCli(args, m_dir);
        QCOMPARE(r.exitCode, exitCode);
        QVERIFY2(r.err.startsWith(err), qPrintable(r.err));
        if (exitCode == 1)
            QCOMPARE(r.err.count('\n'), 1);
        QCOMPARE(r.out, QString());
        QVERIFY(!QFile::exists(QDir(m_dir).absoluteFilePath(output)) || output.isEmpty());
        QCOMPARE(QFile(path("a.mp4")).size(), inputSize);
    }

    void helpIsThereForTheProgramAndEachCommand()
    {
        const QList<QPair<QStringList, QStringList>> cases{
            {{"--help"}, {"probe", "clip", "merge", "thumbnail", "--quiet", "--verbose"}},
            // Every command's help goes through the same parser; one stands for all.
            {{"clip", "--help"}, {"--start <SECONDS>"}}};
        for (const auto& c : cases) {
            const CliRun r = runCli(c.first);
            QCOMPARE(r.exitCode, 0);
            for (const QString& word : c.second)
                QVERIFY2(r.out.contains(word), qPrintable(word));
        }
    }

    void commandsSucceedQuietlyOffATerminal()
    {
        const QString out = path("clip out.mp4");
        const CliRun r = runCli({"clip", path("a.mp4"), out, "--start", "0.5", "--end", "2.5"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err + r.out, QString());
        QVERIFY(qAbs(TestMedia::seconds(out) - 2.0) < 0.15);

        const CliRun v =
            runCli({"--verbose", "clip", path("a.mp4"), path("v.mkv"), "--start", "0", "--end", "10"});
        QCOMPARE(v.exitCode, 0);
        QVERIFY(v.err.contains("vidora-cli: info: cropVideo: "));
        QVERIFY(v.err.contains(
            "vidora-cli: warning: End time 10 exceeds video duration 3, adjusting to video duration"));
        QVERIFY(v.err.contains("vidora-cli: info: Video cropping completed: success"));

        // Relative names are taken from the current folder, not the list file's.
        const CliRun m = runCli({"merge", "merged.mp4", "a.mp4", "b.mp4"}, m_dir);
        QCOMPARE(m.exitCode, 0);
        QCOMPARE(m.err, QString());
        QVERIFY(qAbs(TestMedia::seconds(path("merged.mp4")) - 5.0) < 0.1);

        const QString png = path("frame 1.png");
        const CliRun t = runCli({"thumbnail", path("a.mp4"), "1.5", png});
        QCOMPARE(t.exitCode, 0);
        QCOMPARE(t.err, QString());
        QImage image(png, "PNG");
        QCOMPARE(image.size(), QSize(320, 240));
        // The test pattern's first bar is black and some other bar is saturated.
        QVERIFY(qGray(image.pixel(5, 5)) < 40);
        bool colourful = false;
        for (int x = 0; x < 320; x += 8)
            colourful = colourful || qAbs(qRed(image.pixel(x, 60)) - qBlue(image.pixel(x, 60))) > 150;
        QVERIFY(colourful);
    }

    // Without options convert remuxes; sizes, rate and bit rates go through the convert page's
    // map: kbit/s on the command line.
    void convertOptionsReachTheEncoders()
    {
        const QString remux = path("remux.mp4");
        QCOMPARE(runCli({"convert", m_source, remux}).exitCode, 0);
        QCOMPARE(TestMedia::packetSizes(remux, "v:0"), TestMedia::packetSizes(m_source, "v:0"));
        QCOMPARE(TestMedia::packetSizes(remux, "a:0"), TestMedia::packetSizes(m_source, "a:0"));
        const QString target = path("options.mp4");
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

    void convertTakesPageNamesCodecIdsAndEncoderNames_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("codec");
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
    void convertTakesPageNamesCodecIdsAndEncoderNames()
    {
        QFETCH(QString, option);
        QFETCH(QString, value);
        QFETCH(QString, codec);
        const QString target = path("names-" + QString(QTest::currentDataTag()).replace(' ', '-') + ".mkv");
        const CliRun r = runCli({"convert", m_source, target, option, value});
        QVERIFY2(r.exitCode == 0, qPrintable(r.err));
        QCOMPARE(TestMedia::probe(target, "stream=codec_name", option == "--codec" ? "v:0" : "a:0"), codec);
        QVERIFY(TestMedia::decodeErrors(target).isEmpty());
    }

    void compressLevelChoosesTheQuality()
    {
        for (const auto& [level, crf] : {std::pair{"", "crf=18.0"}, std::pair{"2", "crf=28.0"}}) {
            const QString target = path(QStringLiteral("compress-%1.mkv").arg(level));
            const QStringList options = *level ? QStringList{"--level", level} : QStringList();
            QCOMPARE(runCli(QStringList{"compress", m_source, target} + options).exitCode, 0);
            QVERIFY2(TestMedia::fileBytes(target).contains(crf), crf);
        }
    }

    void signalCancelsTheJobAndExitsWith130_data()
    {
        QTest::addColumn<int>("signalNumber");
        QTest::newRow("SIGINT") << int(SIGINT);
        QTest::newRow("SIGTERM") << int(SIGTERM);
    }
    void signalCancelsTheJobAndExitsWith130()
    {
        QFETCH(int, signalNumber);
        const QString out = path(QStringLiteral("interrupted-%1.mp4").arg(signalNumber));
        QFile::remove(out);
        QProcess p;
        const auto cleanUp = qScopeGuard([&]() {
            if (p.state() != QProcess::NotRunning) {
                p.kill();
                p.waitForFinished();
            }
        });
        const int code =
            feedThroughFifo(p, cliPath(), {"clip", path("feed.mkv"), out, "--start", "0", "--end", "100"},
                            path("feed.mkv"), [&]() {
                                QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(out).size() > 0, 20000);
                                QTest::qWait(200);
                                ::kill(pid_t(p.processId()), signalNumber);
                                QTest::qWait(200);
                            });
        QCOMPARE(code, 130);
        QVERIFY(QString::fromUtf8(p.readAllStandardError()).contains("interrupted"));
        // The partial file was closed properly and plays.
        const double kept = TestMedia::seconds(out);
        QVERIFY2(kept > 1.0 && kept < 11.0, qPrintable(QString::number(kept)));
        QVERIFY(TestMedia::plays(out));
    }

    void progressIsDrawnInPlaceOnATerminalOnly()
    {
        // `script` gives the program a terminal; the FIFO keeps the job running long enough for
        // a few redraws.
        for (const bool quiet : {false, true}) {
            const QString command = QStringLiteral("'%1' %2 clip '%3' '%4' --start 0 --end 12")
                                        .arg(cliPath(), quiet ? "--quiet" : "", path("feed-tty.mkv"),
                                             path(quiet ? "tty-quiet.mkv" : "tty.mkv"));
            QProcess p;
            QCOMPARE(feedThroughFifo(p, "script", {"-qec", command, "/dev/null"}, path("feed-tty.mkv"),
                                     []() { QTest::qWait(700); }),
                     0);
            const QString screen = QString::fromUtf8(p.readAllStandardOutput());
            if (quiet) {
                QCOMPARE(screen.trimmed(), QString());
            } else {
                QVERIFY2(screen.contains("\rclip [#"), qPrintable(screen));
                QVERIFY(screen.contains("/300"));
                QVERIFY(screen.contains("% elapsed 00:00:0"));
                QVERIFY(screen.contains("\r\033[K")); // wiped at the end
            }
        }
    }

    void progressLineFitsAndEstimates()
    {
        const QString half = ProgressBar::render("clip", 150, 300, 2000, 80);
        QVERIFY(half.size() <= 79);
        QVERIFY(half.startsWith("clip ["));
        QVERIFY(half.contains(" 150/300  50% elapsed 00:00:02 left ~00:00:02"));
        // Fields keep their width as the numbers grow.
        QCOMPARE(ProgressBar::render("clip", 5, 300, 100, 80).size(), half.size());
        const QString bar = half.mid(half.indexOf('[') + 1, half.indexOf(']') - half.indexOf('[') - 1);
        QCOMPARE(bar.count('#'), bar.size() / 2);
        QCOMPARE(bar.count('#') + bar.count('-'), bar.size());
        QVERIFY(
            ProgressBar::render("merge", 0, 0, 500, 80).contains(" 0   0% elapsed 00:00:00 left  --:--:--"));
        // Past the announced total (a faster frame rate than 25) the bar stays full.
        QVERIFY(ProgressBar::render("clip", 400, 300, 1000, 80).contains(" 400/300 100% "));
        // A narrow terminal drops the bar, never wraps.
        QVERIFY(ProgressBar::render("clip", 1, 2, 1000, 30).size() <= 29);
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
