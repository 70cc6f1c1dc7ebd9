#include "TestMedia.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QtTest>
#include <csignal>
#include <memory>
#include <sqlite3.h>
#include <unistd.h>

// The real program, in a folder of its own (its history and configuration live beside the
// executable), against damage the user's machine can do: a kill, a broken or unwritable
// history, a truncated configuration.
namespace {

// One query on a database opened read-only from outside the program; "" when unreadable.
QString query(const QString& file, const QByteArray& sql)
{
    sqlite3* raw = nullptr;
    sqlite3_open_v2(file.toUtf8().constData(), &raw, SQLITE_OPEN_READONLY, nullptr);
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> db(raw, &sqlite3_close);
    QString answer;
    sqlite3_exec(
        db.get(), sql.constData(),
        [](void* out, int, char** values, char**) {
            *static_cast<QString*>(out) = QString::fromUtf8(values[0] ? values[0] : "");
            return 0;
        },
        &answer, nullptr);
    return answer;
}

} // namespace

class TestRobustness : public QObject
{
    Q_OBJECT

    QString m_media; // 1 s test pattern with a tone
    QString m_long;  // 30 s
    QString m_bin;

    // A private copy of the program folder: the executable (hard-linked where possible) and
    // its configuration, libmpv told to play without an audio device.
    QString makeProgramFolder(const QString& name)
    {
        const QString folder = TestMedia::scratchDir(name);
        const QString program = folder + "/vidora";
        if (::link(QFile::encodeName(m_bin + "/vidora").constData(), QFile::encodeName(program).constData()) != 0)
            QFile::copy(m_bin + "/vidora", program);
        QFile::copy(m_bin + "/config.json", folder + "/config.json");
        TestMedia::writeFile(folder + "/mpvqt.conf", "ao=null\n");
        return folder;
    }

    std::unique_ptr<QProcess> start(const QString& folder, const QString& file)
    {
        auto p = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("VIDORA_LOG_LEVEL", "info");
        env.insert("QT_QPA_PLATFORM", "xcb");
        p->setProcessEnvironment(env);
        p->setProcessChannelMode(QProcess::MergedChannels);
        p->start(folder + "/vidora", {file});
        return p;
    }

    // Reads the output until `text` was seen `n` times.
    static bool waitFor(QProcess* p, QByteArray& seen, const QByteArray& text, int n = 1, int timeoutMs = 30000)
    {
        QElapsedTimer timer;
        timer.start();
        while (seen.count(text) < n && timer.elapsed() < timeoutMs) {
            p->waitForReadyRead(200);
            seen += p->readAll();
        }
        if (seen.count(text) < n)
            qWarning().noquote() << "output so far:\n" << seen;
        return seen.count(text) >= n;
    }

    static bool endsCleanly(QProcess* p, int signal)
    {
        ::kill(static_cast<pid_t>(p->processId()), signal);
        return p->waitForFinished(30000) && p->exitStatus() == QProcess::NormalExit && p->exitCode() == 0;
    }

private slots:
    void initTestCase()
    {
        m_bin = qEnvironmentVariable("VIDORA_BIN_DIR");
        QVERIFY(QFile::exists(m_bin + "/vidora"));
        const QString dir = TestMedia::scratchDir("media");
        m_media = dir + "/one second.mp4";
        m_long = dir + "/long.mp4";
        QVERIFY(TestMedia::makeVideo(m_media, 1.0, 160, 120));
        QVERIFY(TestMedia::makeVideo(m_long, 30.0, 160, 120, 10));
    }

    // A termination signal ends the player like closing its window: the resume point is
    // saved and the history closed (no write-ahead log left). A kill -9 later leaves an
    // intact database with every row saved before it.
    void terminationSavesAndClosesAndAKillLosesNothingSaved()
    {
        const QString folder = makeProgramFolder("kill");
        const QString db = folder + "/video_history.db";
        const QString longUrl = QUrl::fromLocalFile(m_long).toString();
        QByteArray seen;
        auto player = start(folder, m_long);
        QVERIFY(waitFor(player.get(), seen, "Video info saved successfully"));
        QTest::qWait(3000);
        QVERIFY(endsCleanly(player.get(), SIGTERM));
        QVERIFY(!QFile::exists(db + "-wal"));
        const double resumeAt = query(db, "SELECT last_position FROM video_history").toDouble();
        QVERIFY2(resumeAt > 0.5, qPrintable(QString::number(resumeAt)));

        player = start(folder, m_media);
        seen.clear();
        QVERIFY(waitFor(player.get(), seen, "Video info saved successfully", 3));
        ::kill(static_cast<pid_t>(player->processId()), SIGKILL);
        QVERIFY(player->waitForFinished(10000));
        QCOMPARE(query(db, "PRAGMA integrity_check"), QString("ok"));
        QCOMPARE(query(db, "SELECT count(*) FROM video_history"), QString("2"));
        QCOMPARE(query(db, "SELECT last_position FROM video_history WHERE url = '" + longUrl.toUtf8() + "'").toDouble(),
                 resumeAt);
    }

    // The player plays (to the end of the file: load, end and stop each save) with one line
    // saying why there is no history, and leaves the history file as it found it.
    void unusableHistoryAndTruncatedConfigurationDoNotStopPlayback_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("random bytes") << "random bytes";
        QTest::newRow("unwritable folder") << "unwritable folder";
    }
    void unusableHistoryAndTruncatedConfigurationDoNotStopPlayback()
    {
        QFETCH(QString, kind);
        const QString folder = makeProgramFolder("unusable");
        const QString db = folder + "/video_history.db";
        const QByteArray config = TestMedia::fileBytes(folder + "/config.json");
        QVERIFY(TestMedia::writeFile(folder + "/config.json", config.left(config.size() / 2)));
        if (kind == "random bytes") {
            QVERIFY(TestMedia::writeFile(db, TestMedia::noise(8192)));
        } else {
            auto first = start(folder, m_media);
            QByteArray seen;
            QVERIFY(waitFor(first.get(), seen, "Video info saved successfully", 3));
            QVERIFY(endsCleanly(first.get(), SIGTERM));
            QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
            // Root writes into any folder; folders in the places of the journal files fail
            // SQLite's writes there just as a read-only folder does.
            if (geteuid() == 0)
                for (const char* suffix : {"-journal", "-wal", "-shm"})
                    QVERIFY(QDir().mkpath(db + suffix));
        }
        const QByteArray before = TestMedia::fileBytes(db);

        auto player = start(folder, m_media);
        QByteArray seen;
        const bool played = waitFor(player.get(), seen, "Video info saved successfully", 3);
        const bool ended = endsCleanly(player.get(), SIGTERM);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(played && ended);
        QCOMPARE(seen.count("Playback history is off: cannot write " + QFile::encodeName(db)), 1);
        QCOMPARE(TestMedia::fileBytes(db), before);
    }
};

QTEST_GUILESS_MAIN(TestRobustness)
#include "tst_robustness.moc"
