#include "ProgressBar.h"
#include "TestMedia.h"
#include "ToolTestSupport.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QtTest>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// vidora-cli end to end: exit codes, stdout and stderr of every command, interruption by
// signals and the progress display on a terminal.
class TestCli : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_cli;
    QString path(const QString& name) const { return m_dir + "/" + name; }

    struct Run
    {
        int exitCode = -1;
        QString out;
        QString err;
    };
    Run cli(const QStringList& args, const QString& workingDir = QString())
    {
        QProcess p;
        if (!workingDir.isEmpty())
            p.setWorkingDirectory(workingDir);
        p.start(m_cli, args);
        Run r;
        if (!p.waitForFinished(60000)) {
            p.kill();
            p.waitForFinished();
            return r;
        }
        r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -2;
        r.out = QString::fromUtf8(p.readAllStandardOutput());
        r.err = QString::fromUtf8(p.readAllStandardError());
        return r;
    }

    // Opens the writing end of a FIFO once the program has opened its reading end.
    static int openFifoForWriting(const QString& fifo)
    {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 20000) {
            const int fd = ::open(QFile::encodeName(fifo).constData(), O_WRONLY | O_NONBLOCK);
            if (fd >= 0) {
                fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
                return fd;
            }
            QTest::qWait(20);
        }
        return -1;
    }
    static void writeAll(int fd, const QByteArray& bytes)
    {
        qint64 done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
            if (n <= 0)
                return; // the reader left: nothing more to feed
            done += n;
        }
    }

private slots:
    void initTestCase()
    {
        ::signal(SIGPIPE, SIG_IGN);
        m_dir = TestMedia::scratchDir("cli");
        m_cli = qEnvironmentVariable("VIDORA_BIN_DIR") + "/vidora-cli";
        QVERIFY2(QFile::exists(m_cli), qPrintable(m_cli));
        QVERIFY(TestMedia::makeVideo(path("a.mp4"), 3.0));
        QVERIFY(TestMedia::makeVideo(path("b.mp4"), 2.0));
        // Noise makes the file large (megabytes), so the output reaches the disk while the input
        // is still being fed.
        QVERIFY(TestMedia::makeVideo(path("long.mkv"), 12.0, 320, 240, 25, true,
                                     {"-g", "25", "-vf", "noise=alls=20:allf=t", "-preset", "ultrafast",
                                      "-crf", "28", "-c:a", "aac"}));
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=duration=1", path("tone.m4a")}));
    }

    void probePrintsOneJsonLine()
    {
        const Run r = cli({"probe", path("a.mp4")});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err, QString());
        QVERIFY(r.out.endsWith('\n'));
        QCOMPARE(r.out.count('\n'), 1);
        QVERIFY(r.out.startsWith("{\"codecId\":27,\"width\":320,\"height\":240,\"bitrate\":"));
        const QJsonObject json = QJsonDocument::fromJson(r.out.toUtf8()).object();
        QCOMPARE(json.keys().size(), 8);
        QCOMPARE(json.value("fps").toInt(), 25);
        QCOMPARE(json.value("audioCodecId").toInt(), 86018);
        QVERIFY(json.value("bitrate").toDouble() > 0);
        QCOMPARE(json.value("duration").toDouble(), 3.0);

        const Run audio = cli({"probe", path("tone.m4a")});
        QCOMPARE(audio.exitCode, 0);
        const QJsonObject a = QJsonDocument::fromJson(audio.out.toUtf8()).object();
        QCOMPARE(a.value("width").toInt(), 0);
        QCOMPARE(a.value("duration").toDouble(), 1.0);
    }

    void probeOfAnUnreadableFileFailsWithOneLine()
    {
        QFile junk(path("junk.mp4"));
        QVERIFY(junk.open(QIODevice::WriteOnly));
        junk.write("definitely not a video");
        junk.close();
        for (const QString& name : {QStringLiteral("missing.mp4"), QStringLiteral("junk.mp4")}) {
            const Run r = cli({"probe", path(name)});
            QCOMPARE(r.exitCode, 1);
            QCOMPARE(r.out, QString());
            QCOMPARE(r.err, "vidora-cli: error: Could not open input file: " + path(name) + "\n");
        }
    }

    void usageErrorsExitWithTwoAndTheUsage_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        QTest::newRow("nothing") << QStringList{} << "no command given";
        QTest::newRow("unknown command") << QStringList{"shrink", "a.mp4"} << "unknown command: shrink";
        QTest::newRow("unknown option")
            << QStringList{"clip", "a.mp4", "o.mp4", "--start", "0", "--end", "1", "--fast"}
            << "Unknown option 'fast'.";
        QTest::newRow("clip without end")
            << QStringList{"clip", "a.mp4", "o.mp4", "--start", "1"} << "clip needs --start and --end";
        QTest::newRow("clip over its input")
            << QStringList{"clip", "a.mp4", "a.mp4", "--start", "0", "--end", "1"}
            << "OUT must not be the input file";
        QTest::newRow("merge over an input")
            << QStringList{"merge", "a.mp4", "b.mp4", "a.mp4"} << "OUT must not be one of the inputs";
        QTest::newRow("thumbnail time")
            << QStringList{"thumbnail", "a.mp4", "nan", "t.png"} << "SECONDS is not a number of seconds: nan";
    }
    void usageErrorsExitWithTwoAndTheUsage()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        const Run r = cli(args, m_dir);
        QCOMPARE(r.exitCode, 2);
        QVERIFY2(r.err.startsWith("vidora-cli: " + message + "\n\nUsage: "), qPrintable(r.err));
        QCOMPARE(r.out, QString());
        QVERIFY(!QFile::exists(path("o.mp4")));
    }

    void helpIsThereForTheProgramAndEachCommand()
    {
        const Run main = cli({"--help"});
        QCOMPARE(main.exitCode, 0);
        for (const char* word : {"probe", "clip", "merge", "thumbnail", "--quiet", "--verbose"})
            QVERIFY2(main.out.contains(word), word);
        const QStringList expected{"FILE", "--start <SECONDS>", "IN1 [IN2 ...]", "OUT.png"};
        const QStringList commands{"probe", "clip", "merge", "thumbnail"};
        for (int i = 0; i < commands.size(); ++i) {
            const Run r = cli({commands.at(i), "--help"});
            QCOMPARE(r.exitCode, 0);
            QVERIFY2(r.out.contains(expected.at(i)), qPrintable(r.out));
        }
    }

    void clipWritesTheRangeQuietlyWhenNotOnATerminal()
    {
        const QString out = path("clip out.mp4");
        const Run r = cli({"clip", path("a.mp4"), out, "--start", "0.5", "--end", "2.5"});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err, QString());
        QCOMPARE(r.out, QString());
        QVERIFY(qAbs(TestMedia::probe(out, "format=duration").toDouble() - 2.0) < 0.15);
    }

    void clipFailuresGiveTheJobsReason()
    {
        const Run bad = cli({"clip", path("a.mp4"), path("never.mp4"), "--start", "3", "--end", "1"});
        QCOMPARE(bad.exitCode, 1);
        QCOMPARE(bad.err, QStringLiteral("vidora-cli: error: Invalid time range: start=3, end=1\n"));
        QVERIFY(!QFile::exists(path("never.mp4")));

        const Run unwritable =
            cli({"clip", path("a.mp4"), path("no/such/dir/x.mp4"), "--start", "0", "--end", "1"});
        QCOMPARE(unwritable.exitCode, 1);
        QCOMPARE(unwritable.err,
                 "vidora-cli: error: Could not open output file: " + path("no/such/dir/x.mp4") + "\n");
    }

    void verboseShowsInfoLines()
    {
        const Run r = cli({"--verbose", "clip", path("a.mp4"), path("v.mkv"), "--start", "0", "--end", "10"});
        QCOMPARE(r.exitCode, 0);
        QVERIFY(r.err.contains("vidora-cli: info: cropVideo: "));
        QVERIFY(r.err.contains(
            "vidora-cli: warning: End time 10 exceeds video duration 3, adjusting to video duration"));
        QVERIFY(r.err.contains("vidora-cli: info: Video cropping completed: success"));
    }

    void mergeJoinsRelativeAndUnusualNames()
    {
        QVERIFY(QFile::copy(path("b.mp4"), path("第二 'b'.mp4")) || QFile::exists(path("第二 'b'.mp4")));
        // Relative names are taken from the current folder, not the list file's.
        const Run r = cli({"merge", "merged.mp4", "a.mp4", "b.mp4"}, m_dir);
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err, QString());
        QVERIFY(qAbs(TestMedia::probe(path("merged.mp4"), "format=duration").toDouble() - 5.0) < 0.1);

        // A quote garbles the list line: first in the list the concat open fails, later on the
        // read of that entry does. Either way the merge fails and leaves nothing.
        const Run quoted = cli({"merge", path("quoted.mp4"), path("第二 'b'.mp4"), path("a.mp4")});
        QCOMPARE(quoted.exitCode, 1);
        QVERIFY(quoted.err.startsWith("vidora-cli: error: Could not open concat demuxer: "));
        QCOMPARE(quoted.err.count('\n'), 1);
        const Run quotedLater = cli({"merge", path("quoted.mp4"), path("a.mp4"), path("第二 'b'.mp4")});
        QCOMPARE(quotedLater.exitCode, 1);
        QCOMPARE(quotedLater.err.count('\n'), 1);
        QVERIFY(!QFile::exists(path("quoted.mp4")));

        const Run missing = cli({"merge", path("m2.mp4"), path("a.mp4"), path("gone.mp4")});
        QCOMPARE(missing.exitCode, 1);
        QCOMPARE(missing.err, "vidora-cli: error: Input file does not exist: " + path("gone.mp4") + "\n");
        QVERIFY(!QFile::exists(path("m2.mp4")));
    }

    void thumbnailWritesAPng()
    {
        const QString png = path("frame 1.png");
        const Run r = cli({"thumbnail", path("a.mp4"), "1.5", png});
        QCOMPARE(r.exitCode, 0);
        QCOMPARE(r.err, QString());
        QImage image(png, "PNG");
        QCOMPARE(image.size(), QSize(320, 240));
        // The test pattern's first bar is black and some other bar is saturated.
        QVERIFY(qGray(image.pixel(5, 5)) < 40);
        bool colourful = false;
        for (int x = 0; x < 320; x += 8)
            colourful = colourful || qAbs(qRed(image.pixel(x, 60)) - qBlue(image.pixel(x, 60))) > 150;
        QVERIFY(colourful);

        const Run audio = cli({"thumbnail", path("tone.m4a"), "0", path("t.png")});
        QCOMPARE(audio.exitCode, 1);
        QCOMPARE(audio.err.count('\n'), 1);
        QVERIFY(!QFile::exists(path("t.png")));

        const Run unwritable = cli({"thumbnail", path("a.mp4"), "1", path("no/dir/t.png")});
        QCOMPARE(unwritable.exitCode, 1);
        QCOMPARE(unwritable.err, "vidora-cli: error: Could not write image: " + path("no/dir/t.png") + "\n");
    }

    void signalsCancelAndWaitForACleanEnd_data()
    {
        QTest::addColumn<int>("signalNumber");
        QTest::newRow("SIGINT") << int(SIGINT);
        QTest::newRow("SIGTERM") << int(SIGTERM);
    }
    void signalsCancelAndWaitForACleanEnd()
    {
        QFETCH(int, signalNumber);
        // The input arrives through a FIFO, so the job is certainly mid-way when the signal
        // comes: it waits for data that the test only sends afterwards.
        QFile source(path("long.mkv"));
        QVERIFY(source.open(QIODevice::ReadOnly));
        const QByteArray bytes = source.readAll();
        const QString fifo = path("feed.mkv");
        QFile::remove(fifo);
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        const QString out = path(QStringLiteral("interrupted-%1.mp4").arg(signalNumber));
        QFile::remove(out);

        QProcess p;
        int fd = -1;
        const auto cleanUp = qScopeGuard([&]() {
            if (fd >= 0)
                ::close(fd);
            if (p.state() != QProcess::NotRunning) {
                p.kill();
                p.waitForFinished();
            }
        });
        p.start(m_cli, {"clip", fifo, out, "--start", "0", "--end", "100"});
        QVERIFY(p.waitForStarted());
        fd = openFifoForWriting(fifo);
        QVERIFY(fd >= 0);
        writeAll(fd, bytes.left(bytes.size() / 2));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(out).size() > 0, 20000);
        QTest::qWait(200);
        ::kill(pid_t(p.processId()), signalNumber);
        QTest::qWait(200);
        writeAll(fd, bytes.mid(bytes.size() / 2));
        ::close(fd);
        fd = -1;
        QVERIFY(p.waitForFinished(30000));
        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QCOMPARE(p.exitCode(), 130);
        QVERIFY(QString::fromUtf8(p.readAllStandardError()).contains("interrupted"));
        // The partial file was closed properly and plays.
        const double kept = TestMedia::probe(out, "format=duration").toDouble();
        QVERIFY2(kept > 1.0 && kept < 11.0, qPrintable(QString::number(kept)));
        QVERIFY(TestMedia::ffmpeg({"-xerror", "-i", out, "-f", "null", "-"}));
    }

    void progressIsDrawnInPlaceOnATerminalOnly()
    {
        // `script` gives the program a terminal; a FIFO keeps the job running long enough for
        // a few redraws.
        QFile source(path("long.mkv"));
        QVERIFY(source.open(QIODevice::ReadOnly));
        const QByteArray bytes = source.readAll();
        const QString fifo = path("feed-tty.mkv");
        QFile::remove(fifo);
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);

        for (const bool quiet : {false, true}) {
            const QString out = path(quiet ? "tty-quiet.mkv" : "tty.mkv");
            QString command = QStringLiteral("'%1' %2 clip '%3' '%4' --start 0 --end 12")
                                  .arg(m_cli, quiet ? "--quiet" : "", fifo, out);
            QProcess p;
            p.start("script", {"-qec", command, "/dev/null"});
            QVERIFY(p.waitForStarted());
            const int fd = openFifoForWriting(fifo);
            QVERIFY(fd >= 0);
            writeAll(fd, bytes.left(bytes.size() / 2));
            QTest::qWait(700);
            writeAll(fd, bytes.mid(bytes.size() / 2));
            ::close(fd);
            QVERIFY(p.waitForFinished(30000));
            QCOMPARE(p.exitCode(), 0);
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
