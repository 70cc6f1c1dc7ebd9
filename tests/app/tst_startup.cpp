#include "ProcessOutput.h"
#include "SingleInstance.h"
#include "TestMedia.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>
#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

// Two real processes of the program. Each test run has its own TMPDIR and no runtime folder,
// so the local server's socket lives in TMPDIR and a player the developer has open is never
// disturbed.
class TestStartup : public QObject
{
    Q_OBJECT

    QString m_program;
    QTemporaryDir m_media;
    QString m_file;
    QList<QProcess*> m_running;

    QProcess* startPlayer(const QStringList& args = {}, const QProcessEnvironment& extra = {})
    {
        auto* p = new QProcess(this);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("VIDORA_LOG_LEVEL", "info");
        env.insert("QT_QPA_PLATFORM", "xcb");
        for (const QString& key : extra.keys())
            env.insert(key, extra.value(key));
        p->setProcessEnvironment(env);
        p->setProcessChannelMode(QProcess::MergedChannels);
        p->start(m_program, args);
        m_running << p;
        return p;
    }

    static bool waitForListening(int timeoutMs = 15000, const QString& name = SingleInstance::serverName())
    {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < timeoutMs) {
            QLocalSocket probe;
            probe.connectToServer(name);
            if (probe.waitForConnected(200))
                return true;
            QTest::qWait(100);
        }
        return false;
    }

    // The second start's exit code; negative when it hung, took long or crashed.
    int runSecond(const QStringList& args, const QString& runtimeDir = {})
    {
        QProcess second;
        if (!runtimeDir.isEmpty()) {
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert("XDG_RUNTIME_DIR", runtimeDir);
            second.setProcessEnvironment(env);
        }
        second.start(m_program, args);
        QElapsedTimer t;
        t.start();
        if (!second.waitForFinished(5000)) {
            second.kill();
            second.waitForFinished();
            return -100;
        }
        // "At once": well before any window could be made and shown.
        if (t.elapsed() > 4000)
            return -101;
        return second.exitStatus() == QProcess::NormalExit ? second.exitCode() : -102;
    }

    // Generous: the program listens before its scene is up and reads the socket only after;
    // an instrumented build on a busy machine needs well over ten seconds for that.
    static bool waitForLine(QProcess* p, const QString& needle, int timeoutMs = 30000)
    {
        return ProcessOutput::waitForLine(p, needle, timeoutMs);
    }

    static void stop(QProcess* p)
    {
        if (p->state() != QProcess::NotRunning) {
            p->terminate();
            if (!p->waitForFinished(5000)) {
                p->kill();
                p->waitForFinished();
            }
        }
        p->deleteLater();
    }

private slots:
    void initTestCase()
    {
        qunsetenv("XDG_RUNTIME_DIR");
        m_program = qEnvironmentVariable("VIDORA_BIN_DIR") + "/vidora";
        QVERIFY2(QFile::exists(m_program), qPrintable(m_program));
        m_file = m_media.filePath("clip one.mp4");
        QVERIFY(TestMedia::writeFile(m_file, {})); // content does not matter for the hand-off
    }

    void cleanup()
    {
        for (QProcess* p : m_running)
            stop(p);
        m_running.clear();
    }

    void secondStartHandsOverAndExitsAtOnce()
    {
        QProcess* first = startPlayer({m_file});
        QVERIFY(waitForListening());
        QVERIFY(waitForLine(first, "openFile: command= file="));
        // Without arguments a second start changes nothing.
        QCOMPARE(runSecond({}), 0);
        QVERIFY(!waitForLine(first, "openFile:", 1500));

        QCOMPARE(runSecond({"-crop", m_file}), 0);
        QVERIFY(waitForLine(first, "openFile: command=-crop file=" + QUrl::fromLocalFile(m_file).toString()));

        // Several files: the last existing one wins, its name intact; a missing path is ignored.
        QTemporaryDir other;
        const QString odd = other.filePath("它's a \"测试\" file  two spaces.mp4");
        QVERIFY(TestMedia::writeFile(odd, {}));
        QCOMPARE(runSecond({m_file, odd, "/no/such.mp4"}), 0);
        QVERIFY(waitForLine(first, "openFile: command= file=" + QUrl::fromLocalFile(odd).toString()));

        QCOMPARE(runSecond({"/no/such/file.mp4"}), 0);
        QVERIFY(!waitForLine(first, "openFile:", 1500));
        QCOMPARE(first->state(), QProcess::Running);
    }

    void staleSocketOfKilledInstanceDoesNotBlockNewOne()
    {
        QProcess* crashed = startPlayer();
        QVERIFY(waitForListening());
        ::kill(static_cast<pid_t>(crashed->processId()), SIGKILL);
        crashed->waitForFinished();
        QVERIFY(QFile::exists(SingleInstance::serverName())); // left behind

        QProcess* fresh = startPlayer();
        QVERIFY(waitForListening());
        QCOMPARE(runSecond({"-compress", m_file}), 0);
        QVERIFY(waitForLine(fresh, "openFile: command=-compress"));
    }

    void socketBelongsToItsUserAlone()
    {
        // Without a runtime folder: a name of this user's own in the shared folder, that only
        // this user may connect to.
        QProcess* first = startPlayer();
        QVERIFY(waitForListening());
        const QFileInfo socket(SingleInstance::serverName());
        QVERIFY(socket.fileName().endsWith(QStringLiteral("-%1").arg(::geteuid())));
        QCOMPARE(socket.permissions() &
                     (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
                 QFile::Permissions());

        // With one: the socket lives there, and players of the same session find each other.
        QTemporaryDir runtime;
        QVERIFY(
            QFile::setPermissions(runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QProcessEnvironment session;
        session.insert("XDG_RUNTIME_DIR", runtime.path());
        QProcess* inSession = startPlayer({}, session);
        const QString inRuntime = runtime.filePath(SingleInstance::kApplicationId);
        QVERIFY(waitForListening(15000, inRuntime));
        QCOMPARE(runSecond({"-crop", m_file}, runtime.path()), 0);
        QVERIFY(waitForLine(inSession, "openFile: command=-crop"));
        QVERIFY(!waitForLine(first, "openFile:", 500));

        // Another user beside this one starts a player of their own instead of handing off here.
        if (::geteuid() != 0)
            QSKIP("starting a program as another user needs root");
        // A shared folder like /tmp, and a copy of the program that any user may run (the build
        // folder may be closed to others).
        QTemporaryDir shared(QStringLiteral("/tmp/vidora-shared-XXXXXX"));
        QVERIFY(::chmod(QFile::encodeName(shared.path()).constData(), 01777) == 0);
        const QString program = shared.filePath("vidora");
        QVERIFY(QFile::copy(m_program, program));
        QProcessEnvironment sharedTmp;
        sharedTmp.insert("TMPDIR", shared.path());
        QProcess* mine = startPlayer({}, sharedTmp);
        QVERIFY(waitForListening(
            15000, shared.filePath(QStringLiteral("%1-0").arg(SingleInstance::kApplicationId))));
        auto* other = new QProcess(this);
        QProcessEnvironment otherEnv = QProcessEnvironment::systemEnvironment();
        otherEnv.insert("TMPDIR", shared.path());
        otherEnv.insert("HOME", shared.path());
        otherEnv.insert("QT_QPA_PLATFORM", "offscreen");
        other->setProcessEnvironment(otherEnv);
        other->setWorkingDirectory(shared.path());
        other->start("setpriv",
                     QStringList{"--reuid=65534", "--regid=65534", "--clear-groups", program, m_file});
        m_running << other;
        const QString othersName =
            shared.filePath(QStringLiteral("%1-65534").arg(SingleInstance::kApplicationId));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(othersName), 15000);
        QCOMPARE(QFileInfo(othersName).ownerId(), 65534u);
        QVERIFY(!waitForLine(mine, "openFile:", 500));
        // Both end before their shared folder is removed, or they would write into it meanwhile.
        for (QProcess* p : {other, mine}) {
            m_running.removeAll(p);
            stop(p);
        }
    }
};

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"
