#include "MergeJob.h"
#include "ToolTestSupport.h"

#include <QSignalSpy>

namespace lvl = spdlog::level;

// Joining files through the concat list: totals, timestamp repair, the list file's life and
// the ways a merge can fail.
class TestMergeJob : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }
    static bool listFileGone() { return !QFile::exists(MergeJob::listFilePath()); }

    static void verifyStrictlyIncreasing(const QString& file, const QString& stream)
    {
        const QStringList pts = TestMedia::packetField(file, stream, "pts");
        QVERIFY(!pts.isEmpty());
        for (int i = 1; i < pts.size(); ++i)
            QVERIFY2(pts.at(i).toLongLong() > pts.at(i - 1).toLongLong(),
                     qPrintable(QStringLiteral("%1 packet %2 goes back").arg(stream).arg(i)));
    }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("merge");
        QVERIFY(TestMedia::makeVideo(path("a.mp4"), 2.0));
        QVERIFY(TestMedia::makeVideo(path("b.mp4"), 3.0));
        QVERIFY(TestMedia::makeTurned(path("a.mp4"), path("a portrait.mp4"), 90));
        QVERIFY(TestMedia::makeTurned(path("b.mp4"), path("b portrait.mp4"), 90));
        QVERIFY(TestMedia::makeTurned(path("b.mp4"), path("b mirrored.mp4"), 90, true));
        QCOMPARE(MergeJob::listFilePath(), QDir::tempPath() + "/merge_list.txt");
    }

    void twoInputsPlayEndToEndWithRepairedTimestamps()
    {
        // Spaces, double quotes and Chinese characters pass through the list unharmed.
        const QString first = path("第一 段 clip.mp4");
        const QString second = path("second \"take\".mp4");
        QVERIFY(QFile::copy(path("a.mp4"), first) && QFile::copy(path("b.mp4"), second));
        LogCapture log(lvl::debug);
        CommonTool tool;
        JobRecorder rec(tool);
        QString listSeen;
        // The list exists from the total until the end of the job.
        connect(
            &tool, &CommonTool::videoCompressionFrameTotal, &tool,
            [&listSeen]() { listSeen = QString::fromUtf8(TestMedia::fileBytes(MergeJob::listFilePath())); },
            Qt::DirectConnection);
        const QString out = path("合并 output.mp4");
        QVERIFY(tool.mergeVideos({first, second}, out));
        QCOMPARE(listSeen, QStringLiteral("ffconcat version 1.0\nfile '%1'\nfile '%2'\n").arg(first, second));
        rec.checkProtocol(true, true);
        QCOMPARE(rec.total(), 125);
        // Progress every ten video packets, counted across the parts.
        QList<int> tens;
        for (int n = 10; n <= 120; n += 10)
            tens << n;
        QCOMPARE(rec.progress(), tens);
        QVERIFY(qAbs(TestMedia::seconds(out) - 5.0) < 0.1);
        QCOMPARE(TestMedia::packetCount(out, "v:0"), 125);
        QCOMPARE(TestMedia::packetCount(out, "a:0"),
                 TestMedia::packetCount(first, "a:0") + TestMedia::packetCount(second, "a:0"));
        verifyStrictlyIncreasing(out, "v:0");
        verifyStrictlyIncreasing(out, "a:0");
        QVERIFY(TestMedia::plays(out));
        QVERIFY(log.contains("mergeVideos: 2 input files -> " + out));
        QVERIFY(log.contains("Video merging completed: success"));

        // Reordered frames come out of the demuxer with earlier pts than the packet before:
        // each repair moves the pts one past the previous packet's, which the line reports.
        const QStringList adjusted = log.lines(lvl::debug).filter("Adjusted PTS for stream 0");
        QVERIFY(!adjusted.isEmpty());
        for (const QString& line : adjusted)
            QCOMPARE(line.section(' ', -1).toLongLong(), line.section(' ', -3, -3).toLongLong() + 1);
        QVERIFY(listFileGone());
    }

    // Parts shown alike keep their display matrix (other orientations are refused, below).
    void portraitPartsStayPortrait()
    {
        CommonTool tool;
        const QString out = path("portrait.mp4");
        QVERIFY(tool.mergeVideos({path("a portrait.mp4"), path("b portrait.mp4")}, out));
        QCOMPARE(TestMedia::probe(out, "stream=width,height:stream_side_data=rotation", "v:0"),
                 QStringLiteral("320\n240\n90"));
    }

    void cancelStopsWithoutTrailerAndRemovesTheBrokenFile()
    {
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        connect(&tool, &CommonTool::videoCompressionProgress, &tool, &CommonTool::cancelVideoOperation,
                Qt::DirectConnection);
        const QString out = path("cancelled.mp4");
        QVERIFY(!tool.mergeVideos({path("a.mp4"), path("b.mp4")}, out));
        QCOMPARE(rec.events, (QStringList{"total:125", "progress:10", "cancelled", "finished:false"}));
        QVERIFY(log.contains("Video merging operation cancelled by user"));
        QVERIFY(log.contains("Video merging completed: failed"));
        QVERIFY(!QFile::exists(out));
        QVERIFY(listFileGone());
    }

    // Every failure: false, one finished(false) at the end, one logged reason, no output file
    // and no list file left behind.
    void failuresLeaveNothingBehind_data()
    {
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QStringList>("events"); // all of them; for a later bad input the first
        QTest::addColumn<QString>("reason");     // the start of the one error line
        QDir(m_dir).mkpath("sub");
        const QString a = path("a.mp4");
        const QString never = path("never.mp4");
        const QStringList early{"finished:false"};
        const QStringList late{"total:50", "finished:false"};
        auto row = [](const char* tag, const QStringList& in, const QString& out, const QStringList& events,
                      const QString& reason) { QTest::newRow(tag) << in << out << events << reason; };
        row("no inputs", {}, never, early, "No input files provided");
        row("absent second file", {a, path("gone.mp4")}, never, early,
            "Input file does not exist: " + path("gone.mp4"));
        row("empty entry", {a, QString()}, never, early, "Input file does not exist: ");
        row("a folder", {a, path("sub")}, never, early, "Input file does not exist: " + path("sub"));
        // Copied packets cannot be turned: parts shown at another orientation would lie on their side.
        const QString orientations("Cannot merge videos shown at different orientations: %1 (%2) and %3 (%4)");
        row("upright and portrait", {a, path("a portrait.mp4")}, never, early,
            orientations.arg(a, "upright", path("a portrait.mp4"), "270 degrees clockwise"));
        row("portrait and mirrored", {path("a portrait.mp4"), path("b mirrored.mp4")}, never, early,
            orientations.arg(path("a portrait.mp4"), "270 degrees clockwise", path("b mirrored.mp4"),
                             "mirrored, 270 degrees clockwise"));
        // A single quote garbles the list line.
        QVERIFY(QFile::copy(a, path("it's.mp4")) || QFile::exists(path("it's.mp4")));
        row("single quote", {path("it's.mp4")}, never, late, "Could not open concat demuxer: ");
        row("missing folder", {a}, path("no/such/folder/out.mp4"), late,
            "Could not open output file: " + path("no/such/folder/out.mp4"));
        row("file as folder", {a}, path("a.mp4/out.mp4"), late,
            "Could not open output file: " + path("a.mp4/out.mp4"));
        const QMap<QString, QString> bad = TestMedia::badInputs(m_dir);
        for (const char* name : {"empty", "text", "random bytes"}) {
            row(qPrintable(QString(name) + " later"), {a, bad[name]}, never, {"total:50"}, "");
            row(qPrintable(QString(name) + " first"), {bad[name], a}, never, {},
                "Could not open concat demuxer: ");
        }
    }
    void failuresLeaveNothingBehind()
    {
        QFETCH(QStringList, inputs);
        QFETCH(QString, output);
        QFETCH(QStringList, events);
        QFETCH(QString, reason);
        LogCapture log;
        CommonTool tool;
        JobRecorder rec(tool);
        QVERIFY(!tool.mergeVideos(QVariant(inputs).toList(), output));
        rec.checkProtocol(false, rec.total() >= 0);
        if (events.size() > 1)
            QCOMPARE(rec.events, events);
        else if (!events.isEmpty())
            QCOMPARE(rec.events.first(), events.first());
        const QStringList errors = log.lines(lvl::err);
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors.first().startsWith(reason), qPrintable(errors.first()));
        if (reason.endsWith("demuxer: ")) // followed by the library's reason
            QVERIFY(errors.first().size() > reason.size());
        QVERIFY(!QFile::exists(output));
        QVERIFY(listFileGone());
        QVERIFY(QFileInfo(path("a.mp4")).isFile());
    }
};

QTEST_GUILESS_MAIN(TestMergeJob)
#include "tst_mergejob.moc"
