#include "ToolTestSupport.h"

#include <QThread>
#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

// The service side of the tools: the time label, the cancel flag and the asynchronous
// wrappers that hand jobs to the pool.
class TestCommonTool : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString path(const QString& name) const { return m_dir + "/" + name; }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("common");
        av_log_set_level(AV_LOG_QUIET);
        QVERIFY(TestMedia::makeVideo(path("a.mp4"), 2.0, 160, 120));
    }

    void formatTimeTruncatesAndPads_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("label");
        QTest::newRow("zero") << 0.0 << "00:00:00";
        QTest::newRow("just under a minute") << 59.9 << "00:00:59";
        QTest::newRow("one minute") << 60.0 << "00:01:00";
        QTest::newRow("hour, minutes, seconds") << 3725.0 << "01:02:05";
        QTest::newRow("one hundred hours") << 360000.0 << "100:00:00";
        QTest::newRow("not a number") << std::nan("") << "00:00:00";
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "00:00:00";
        QTest::newRow("beyond 64 bits") << 1e300 << "2555555555555555:33:20";
    }
    void formatTimeTruncatesAndPads()
    {
        QFETCH(double, seconds);
        QFETCH(QString, label);
        QCOMPARE(CommonTool().formatTime(seconds), label);
    }

    void cropAsyncClearsAnEarlierCancelAndRunsOnThePool()
    {
        CommonTool tool;
        JobRecorder rec(tool);
        // Written on the pool thread after the recorder's queued copy of the signal is posted,
        // so the recorder may see the end first.
        std::atomic<QThread*> emitter{nullptr};
        connect(
            &tool, &CommonTool::videoCompressionFinished, &tool,
            [&emitter]() { emitter = QThread::currentThread(); }, Qt::DirectConnection);
        tool.cancelVideoOperation();
        QSignalSpy cancelled(&tool, &CommonTool::videoCompressionCancelled);
        QCOMPARE(cancelled.count(), 0); // asking emits nothing by itself
        tool.cropVideoAsync(path("a.mp4"), path("crop.mp4"), 0.0, 2.0);
        QVERIFY(!tool.isCancelled());
        QTRY_COMPARE_WITH_TIMEOUT(rec.finishedCount(), 1, 30000);
        rec.checkProtocol(true, true);
        QCOMPARE(rec.total(), 50);
        QVERIFY(!rec.events.contains("cancelled"));
        QTRY_VERIFY(emitter.load() != nullptr);
        QVERIFY(emitter.load() != QThread::currentThread());

        // An invalid range fails on the pool with exactly one signal.
        rec.events.clear();
        tool.cropVideoAsync(path("a.mp4"), path("bad.mp4"), 3.0, 1.0);
        QTRY_COMPARE_WITH_TIMEOUT(rec.finishedCount(), 1, 30000);
        QTest::qWait(100); // nothing else may follow
        QCOMPARE(rec.events, QStringList{"finished:false"});
    }

    // Unlike the other wrappers, the merge keeps a cancel asked before it started.
    void mergeAsyncKeepsAnEarlierCancel()
    {
        CommonTool tool;
        JobRecorder rec(tool);
        tool.cancelVideoOperation();
        QVERIFY(tool.mergeVideoAsync({path("a.mp4")}, path("merged.mp4")));
        QVERIFY(tool.isCancelled());
        QTRY_COMPARE_WITH_TIMEOUT(rec.finishedCount(), 1, 30000);
        QCOMPARE(rec.events, (QStringList{"total:50", "cancelled", "finished:false"}));

        // After an explicit reset the same merge goes through.
        rec.events.clear();
        tool.resetCancelState();
        QVERIFY(!tool.isCancelled());
        QVERIFY(tool.mergeVideoAsync({path("a.mp4")}, path("merged.mp4")));
        QTRY_COMPARE_WITH_TIMEOUT(rec.finishedCount(), 1, 30000);
        QCOMPARE(rec.events.last(), QStringLiteral("finished:true"));
    }

    void sharedInstanceLivesOnTheApplicationThread()
    {
        // Whoever asks first, queued signals must reach receivers through the GUI thread.
        CommonTool* fromWorker = nullptr;
        std::thread worker([&fromWorker]() { fromWorker = CommonTool::instance(); });
        worker.join();
        QVERIFY(fromWorker);
        QCOMPARE(fromWorker, CommonTool::instance());
        QCOMPARE(fromWorker->thread(), QCoreApplication::instance()->thread());
    }
};

QTEST_GUILESS_MAIN(TestCommonTool)
#include "tst_commontool.moc"
