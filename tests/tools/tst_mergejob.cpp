#include "CommonTool.h"
#include "MergeJob.h"
#include "TestMedia.h"
#include "ToolTestSupport.h"

#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>

using ToolTest::LogCapture;
using ToolTest::SignalRecorder;
namespace lvl = spdlog::level;

// Joining files through the concat list: totals, timestamp repair, the list file's life and
// the ways a merge can fail.
class TestMergeJob : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }
    static double seconds(const QString& file)
    {
        return TestMedia::probe(file, "format=duration").toDouble();
    }
    static bool listFileGone() { return !QFile::exists(MergeJob::listFilePath()); }

    static void verifyStrictlyIncreasing(const QList<qint64>& pts)
    {
        QVERIFY(!pts.isEmpty());
        for (int i = 1; i < pts.size(); ++i)
            QVERIFY2(pts.at(i) > pts.at(i - 1), qPrintable(QStringLiteral("packet %1 goes back").arg(i)));
    }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("merge");
        QVERIFY(TestMedia::makeVideo(path("a.mp4"), 2.0));
        QVERIFY(TestMedia::makeVideo(path("b.mp4"), 3.0));
        QCOMPARE(MergeJob::listFilePath(), QDir::tempPath() + "/merge_list.txt");
    }

    void oneInputGivesACopyOfIt()
    {
        CommonTool tool;
        SignalRecorder rec(tool);
        QSignalSpy total(&tool, &CommonTool::videoCompressionFrameTotal);
        const QString out = path("one.mp4");
        QVERIFY(tool.mergeVideos({path("a.mp4")}, out));
        QCOMPARE(total.count(), 1);
        QCOMPARE(rec.events.first(), QStringLiteral("total:50"));
        QCOMPARE(rec.progressValues(), (QList<int>{10, 20, 30, 40, 50}));
        QCOMPARE(rec.events.last(), QStringLiteral("finished:true"));
        QCOMPARE(rec.finishedCount(), 1);
        QCOMPARE(ToolTest::countPackets(out, "v:0"), ToolTest::countPackets(path("a.mp4"), "v:0"));
        QCOMPARE(ToolTest::countPackets(out, "a:0"), ToolTest::countPackets(path("a.mp4"), "a:0"));
        QVERIFY(listFileGone());
    }

    void twoInputsPlayEndToEndWithRepairedTimestamps()
    {
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        QString listSeen;
        // The list exists from the total until the end of the job.
        connect(
            &tool, &CommonTool::videoCompressionFrameTotal, &tool,
            [&listSeen]() {
                QFile list(MergeJob::listFilePath());
                if (list.open(QIODevice::ReadOnly))
                    listSeen = QString::fromUtf8(list.readAll());
            },
            Qt::DirectConnection);
        const QString out = path("two.mp4");
        QVERIFY(tool.mergeVideos({path("a.mp4"), path("b.mp4")}, out));
        QCOMPARE(
            listSeen,
            QStringLiteral("ffconcat version 1.0\nfile '%1'\nfile '%2'\n").arg(path("a.mp4"), path("b.mp4")));
        QCOMPARE(rec.events.first(), QStringLiteral("total:125"));
        QCOMPARE(rec.progressValues().size(), 12);
        QVERIFY(qAbs(seconds(out) - 5.0) < 0.1);
        QCOMPARE(ToolTest::countPackets(out, "v:0"), 125);
        verifyStrictlyIncreasing(ToolTest::packetPts(out, "v:0"));
        verifyStrictlyIncreasing(ToolTest::packetPts(out, "a:0"));
        QVERIFY(TestMedia::ffmpeg({"-xerror", "-i", out, "-f", "null", "-"}));
        QVERIFY(log.contains(lvl::info, "mergeVideos: 2 input files -> " + out));
        QVERIFY(log.contains(lvl::info, "Video merging completed: success"));

        // Reordered frames come out of the demuxer with earlier pts than the packet before:
        // each repair moves the pts one past the previous packet's, which the line reports.
        const QStringList adjusted = log.lines(lvl::debug).filter("Adjusted PTS for stream 0");
        QVERIFY(!adjusted.isEmpty());
        const QRegularExpression shape(
            QStringLiteral("^Adjusted PTS for stream 0 from (-?\\d+) to (-?\\d+)$"));
        for (const QString& line : adjusted) {
            const auto m = shape.match(line);
            QVERIFY2(m.hasMatch(), qPrintable(line));
            QCOMPARE(m.captured(2).toLongLong(), m.captured(1).toLongLong() + 1);
        }
        QVERIFY(listFileGone());
    }

    void emptyListFailsAtOnce()
    {
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        QVERIFY(!tool.mergeVideos({}, path("none.mp4")));
        QCOMPARE(rec.events, QStringList{"finished:false"});
        QCOMPARE(log.lines(lvl::err), QStringList{"No input files provided"});
    }

    void missingFileStopsBeforeAnyOutput_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::newRow("absent second file") << "gone.mp4";
        QTest::newRow("empty entry") << "";
        QTest::newRow("a folder") << "sub";
    }
    void missingFileStopsBeforeAnyOutput()
    {
        QFETCH(QString, missing);
        QDir(m_dir).mkpath("sub");
        const QString second = missing.isEmpty() ? QString() : path(missing);
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("never.mp4");
        QVERIFY(!tool.mergeVideos({path("a.mp4"), second}, out));
        QCOMPARE(rec.events, QStringList{"finished:false"});
        QCOMPARE(log.lines(lvl::err), QStringList{"Input file does not exist: " + second});
        QVERIFY(!QFile::exists(out));
        QVERIFY(listFileGone());
    }

    void singleQuoteInAPathBreaksTheList()
    {
        const QString quoted = path("it's.mp4");
        QVERIFY(QFile::copy(path("a.mp4"), quoted));
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("quoted-out.mp4");
        QVERIFY(!tool.mergeVideos({quoted}, out));
        QCOMPARE(rec.events, (QStringList{"total:50", "finished:false"}));
        const QStringList errors = log.lines(lvl::err);
        QCOMPARE(errors.size(), 1);
        QVERIFY(errors.first().startsWith("Could not open concat demuxer: "));
        QVERIFY(errors.first().size() > QString("Could not open concat demuxer: ").size());
        QVERIFY(!QFile::exists(out));
        QVERIFY(listFileGone());
    }

    void cancelStopsWithoutTrailerAndRemovesTheBrokenFile()
    {
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        connect(&tool, &CommonTool::videoCompressionProgress, &tool, &CommonTool::cancelVideoOperation,
                Qt::DirectConnection);
        const QString out = path("cancelled.mp4");
        QVERIFY(!tool.mergeVideos({path("a.mp4"), path("b.mp4")}, out));
        QCOMPARE(rec.events, (QStringList{"total:125", "progress:10", "cancelled", "finished:false"}));
        QVERIFY(log.contains(lvl::info, "Video merging operation cancelled by user"));
        QVERIFY(log.contains(lvl::info, "Video merging completed: failed"));
        QVERIFY(!QFile::exists(out));
        QVERIFY(listFileGone());
    }

    void unreadableLaterInputFailsTheMerge_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("not a video at all\n");
        QByteArray noise(32768, '\0');
        quint32 x = 99;
        for (char& c : noise)
            c = char((x = x * 1664525u + 1013904223u) >> 24);
        QTest::newRow("random bytes") << noise;
    }
    void unreadableLaterInputFailsTheMerge()
    {
        QFETCH(QByteArray, content);
        const QString bad = path("bad.mp4");
        QFile f(bad);
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(content);
        f.close();
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        const QString out = path("with-bad.mp4");
        QVERIFY(!tool.mergeVideos({path("a.mp4"), bad}, out));
        QCOMPARE(rec.events.first(), QStringLiteral("total:50"));
        QCOMPARE(rec.events.last(), QStringLiteral("finished:false"));
        QCOMPARE(rec.finishedCount(), 1);
        QCOMPARE(log.count(lvl::err), 1);
        QVERIFY(!QFile::exists(out));
        QVERIFY(listFileGone());

        // First in the list, the concat open itself fails.
        log.clear();
        rec.events.clear();
        QVERIFY(!tool.mergeVideos({bad, path("a.mp4")}, out));
        QCOMPARE(rec.events.last(), QStringLiteral("finished:false"));
        QCOMPARE(rec.finishedCount(), 1);
        QCOMPARE(log.count(lvl::err), 1);
        QVERIFY(log.lines(lvl::err).first().startsWith("Could not open concat demuxer: "));
        QVERIFY(listFileGone());
    }

    void unwritableOutputFails_data()
    {
        QTest::addColumn<QString>("out");
        QTest::newRow("missing folder") << "no/such/folder/out.mp4";
        QTest::newRow("file as folder") << "a.mp4/out.mp4";
    }
    void unwritableOutputFails()
    {
        QFETCH(QString, out);
        LogCapture log;
        CommonTool tool;
        SignalRecorder rec(tool);
        QVERIFY(!tool.mergeVideos({path("a.mp4")}, path(out)));
        QCOMPARE(rec.events, (QStringList{"total:50", "finished:false"}));
        QCOMPARE(log.lines(lvl::err), QStringList{"Could not open output file: " + path(out)});
        QVERIFY(listFileGone());
        QVERIFY(QFileInfo(path("a.mp4")).isFile());
    }

    void unusualPathsWork()
    {
        const QString first = path("第一 段 clip.mp4");
        const QString second = path("second \"take\".mp4");
        QVERIFY(QFile::copy(path("a.mp4"), first));
        QVERIFY(QFile::copy(path("b.mp4"), second));
        const QString out = path("合并 output.mkv");
        QVERIFY(CommonTool().mergeVideos({first, second}, out));
        QVERIFY(qAbs(seconds(out) - 5.0) < 0.1);
    }
};

QTEST_GUILESS_MAIN(TestMergeJob)
#include "tst_mergejob.moc"
