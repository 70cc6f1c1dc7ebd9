#include "MpvController.h"
#include "TestMedia.h"
#include "TsanAnnotations.h"

#include <QFile>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

// The controller against a real libmpv, on media generated here; audio and video output
// go to libmpv's null outputs.
class TestMpvController : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_clip;   // 1 s, audio and video
    QString m_longer; // 6 s
    QThread m_thread;
    MpvController* m_mpv = nullptr;
    QStringList m_sequence;

    void load(const QString& path) { m_mpv->command(QVariantList{"loadfile", path}); }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("controller");
        m_clip = m_dir + "/clip.mp4";
        m_longer = m_dir + "/longer.mp4";
        QVERIFY(TestMedia::makeVideo(m_clip, 1.0, 160, 120, 25));
        QVERIFY(TestMedia::makeVideo(m_longer, 6.0, 160, 120, 25));
        // The option file is read from the working directory; this one also proves it is read.
        QDir::setCurrent(m_dir);
        QVERIFY(TestMedia::writeFile("mpvqt.conf", "ao=null\nvolume=37\n"));

        m_thread.start();
        m_mpv = new MpvController;
        m_mpv->moveToThread(&m_thread);
        // Ordered by Qt's blocking call, which the sanitizer does not see by itself.
        VIDORA_TSAN_RELEASE(m_mpv);
        QMetaObject::invokeMethod(m_mpv, "init", Qt::BlockingQueuedConnection);
        VIDORA_TSAN_ACQUIRE(m_mpv);
        QVERIFY(m_mpv->mpv());
        QCOMPARE(m_mpv->setProperty("vo", "null"), 0);
        QCOMPARE(m_mpv->setProperty("ao", "null"), 0);

        connect(m_mpv, &MpvController::fileStarted, this, [this] { m_sequence << "started"; });
        connect(m_mpv, &MpvController::fileLoaded, this, [this] { m_sequence << "loaded"; });
        connect(m_mpv, &MpvController::endFile, this, [this](const QString& r) { m_sequence << "end:" + r; });
    }

    void cleanupTestCase()
    {
        mpv_handle* handle = m_mpv->mpv();
        mpv_set_wakeup_callback(handle, nullptr, nullptr);
        connect(&m_thread, &QThread::finished, m_mpv, &QObject::deleteLater);
        m_thread.quit();
        m_thread.wait();
        mpv_terminate_destroy(handle);
    }

    void init() { m_sequence.clear(); }

    // Also: a property that becomes unavailable arrives as an invalid value.
    void aFilePlayedToTheEndReportsStartLoadAndEof()
    {
        QObject receiver; // on this thread: the controller's signals reach it queued
        QList<QList<QVariant>> changes;
        connect(m_mpv, &MpvController::propertyChanged, &receiver,
                [&changes](const QString& name, const QVariant& value) { changes.append({name, value}); });
        m_mpv->observeProperty("duration", MPV_FORMAT_DOUBLE, 3);
        // libmpv reports only the latest value of a property: the first report must be read
        // before the file can change it, or a busy machine never sees "unavailable before".
        QTRY_VERIFY_WITH_TIMEOUT(!changes.isEmpty(), 5000);
        load(m_clip);
        QTRY_COMPARE_WITH_TIMEOUT(m_sequence.size(), 3, 15000);
        QCOMPARE(m_sequence, (QStringList{"started", "loaded", "end:eof"}));
        QTest::qWait(200);
        m_mpv->unobserveProperty(3);
        QList<QVariant> values;
        for (const QList<QVariant>& args : changes)
            if (args.at(0) == "duration")
                values << args.at(1);
        // Unavailable before the file, about 1 s while it plays, unavailable again after it.
        QVERIFY(values.size() >= 3);
        QVERIFY(!values.first().isValid());
        QVERIFY(std::any_of(values.cbegin(), values.cend(),
                            [](const QVariant& v) { return v.isValid() && qAbs(v.toDouble() - 1.0) < 0.1; }));
        QVERIFY(!values.last().isValid());
    }

    void aUserStopReportsNoEnd()
    {
        load(m_longer);
        QTRY_VERIFY_WITH_TIMEOUT(m_sequence.contains("loaded"), 15000);
        m_mpv->command(QVariantList{"stop"});
        // Idle again means the file has ended completely; its end event came before.
        QTRY_VERIFY_WITH_TIMEOUT(m_mpv->getProperty("idle-active").toBool(), 10000);
        QTest::qWait(200);
        QCOMPARE(m_sequence, (QStringList{"started", "loaded"}));
    }

    void brokenAndMissingFilesEndWithError()
    {
        const QString text = m_dir + "/text.mp4", empty = m_dir + "/empty.mp4";
        QVERIFY(TestMedia::writeFile(empty, {}) &&
                TestMedia::writeFile(text, QByteArray("only text\n").repeated(200)));
        for (const QString& path : {text, empty, m_dir + "/missing.mp4"}) {
            m_sequence.clear();
            load(path);
            QTRY_VERIFY2_WITH_TIMEOUT(m_sequence.contains("end:error"), qPrintable(path), 15000);
            QVERIFY(!m_sequence.contains("end:eof"));
        }
    }

    void failuresComeBackAsErrorReturnAndRepliesCarryTheirId()
    {
        const QVariant missing = m_mpv->getProperty("no-such-property");
        QCOMPARE(missing.userType(), qMetaTypeId<ErrorReturn>());
        QCOMPARE(missing.value<ErrorReturn>().error, int(MPV_ERROR_PROPERTY_NOT_FOUND));
        const QVariant badCommand = m_mpv->command(QVariantList{"no-such-command"});
        QCOMPARE(badCommand.userType(), qMetaTypeId<ErrorReturn>());
        QVERIFY(badCommand.value<ErrorReturn>().error < 0);
        QVERIFY(m_mpv->setProperty("volume", "loud") < 0);

        // Successes come back converted; 37 comes from the option file beside the program.
        QCOMPARE(m_mpv->setProperty("title", "标题 ✓"), 0);
        QCOMPARE(m_mpv->getProperty("title"), QVariant(QString("标题 ✓")));
        QCOMPARE(m_mpv->command(QVariantList{"expand-text", "v=${volume}"}), QVariant(QString("v=37")));

        // A QSignalSpy would record on the controller's thread while this one reads.
        QObject receiver;
        QList<QList<QVariant>> replies;
        connect(m_mpv, &MpvController::asyncReply, &receiver, [&replies](const QVariant& data, mpv_event event) {
            replies.append({data, QVariant::fromValue(event)});
        });
        QMetaObject::invokeMethod(m_mpv, [this] {
            m_mpv->getPropertyAsync("volume", 11);
            m_mpv->commandAsync(QVariantList{"expand-text", "x"}, 12);
            m_mpv->setPropertyAsync("volume", "loud", 13);
        });
        QTRY_COMPARE_WITH_TIMEOUT(replies.count(), 3, 5000);
        QMap<quint64, QList<QVariant>> byId;
        for (const QList<QVariant>& args : replies)
            byId.insert(args.at(1).value<mpv_event>().reply_userdata, args);
        QCOMPARE(byId.value(11).at(0).toDouble(), 37.0);
        QCOMPARE(byId.value(12).at(0).toString(), QString("x"));
        QVERIFY(byId.value(13).at(1).value<mpv_event>().error < 0);
    }

    // A controller on this thread, so the event handler runs exactly when the test says.
    void eventsQueuedAtOneWakeupAllArriveInOneRun()
    {
        MpvController local;
        local.init();
        QCOMPARE(local.setProperty("vo", "null"), 0);
        QSignalSpy replies(&local, &MpvController::asyncReply);
        for (int id = 1; id <= 5; ++id)
            local.setPropertyAsync("volume", 10 * id, id);
        // Let libmpv queue all five replies. No event loop may run meanwhile, so the posted
        // wakeups stay unprocessed.
        double volume = 0.0;
        for (int i = 0; i < 500 && volume != 50.0; ++i) {
            QThread::msleep(10);
            mpv_get_property(local.mpv(), "volume", MPV_FORMAT_DOUBLE, &volume);
        }
        QCOMPARE(volume, 50.0);
        QThread::msleep(100);
        QVERIFY(QMetaObject::invokeMethod(&local, "eventHandler", Qt::DirectConnection));
        QCOMPARE(replies.count(), 5);
        for (int i = 0; i < 5; ++i)
            QCOMPARE(replies.at(i).at(1).value<mpv_event>().reply_userdata, quint64(i + 1));
        mpv_set_wakeup_callback(local.mpv(), nullptr, nullptr);
        mpv_terminate_destroy(local.mpv());
    }
};

QTEST_GUILESS_MAIN(TestMpvController)
#include "tst_mpv_controller.moc"
