#include "AppPaths.h"
#include "ProcessOutput.h"
#include "SqlHelper.h"
#include "TestMedia.h"

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// The program as a distribution ships it: installed with cmake into a prefix that is then
// made read-only, started with a fresh HOME from another folder: first without a session bus,
// then on the private one the suite gives this test, where the desktop's media controls step
// through the history.
class TestInstall : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_root;
    QString m_prefix;
    QString m_home;
    QProcessEnvironment m_env;
    QList<QProcess*> m_running;

    // Every file of the prefix with its size and time, to prove nothing was written there.
    QStringList snapshot() const
    {
        QStringList entries;
        QDirIterator it(m_prefix, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info(it.next());
            entries << QStringLiteral("%1 %2 %3").arg(info.filePath()).arg(info.size()).arg(info.lastModified().toMSecsSinceEpoch());
        }
        entries.sort();
        return entries;
    }

    QProcess* start(const QStringList& args)
    {
        auto* p = new QProcess(this);
        p->setProcessEnvironment(m_env);
        p->setWorkingDirectory(QDir::rootPath());
        p->setProcessChannelMode(QProcess::MergedChannels);
        p->start(m_prefix + "/bin/vidora", args);
        m_running << p;
        return p;
    }

    static bool waitForLine(QProcess* p, const QString& needle, int timeoutMs = 15000)
    {
        return ProcessOutput::waitForLine(p, needle, timeoutMs);
    }

    static int run(const QString& program, const QStringList& args, QByteArray* output = nullptr)
    {
        QProcess p;
        p.setProcessChannelMode(QProcess::MergedChannels);
        p.start(program, args);
        if (!p.waitForFinished(120000))
            return -1;
        if (output)
            *output = p.readAll();
        return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    }

private slots:
    void initTestCase()
    {
        m_prefix = m_root.filePath("prefix");
        m_home = m_root.filePath("home");
        QVERIFY(QDir().mkpath(m_home));
        const QString build = QFileInfo(qEnvironmentVariable("VIDORA_BIN_DIR")).absolutePath();
        QByteArray out;
        QVERIFY2(run("cmake", {"--install", build, "--prefix", m_prefix}, &out) == 0, out.constData());

        const QString runtime = m_root.filePath("run");
        QVERIFY(QDir().mkpath(runtime));
        QVERIFY(QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        m_env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_DIRS"})
            m_env.remove(name);
        m_env.insert("HOME", m_home);
        m_env.insert("XDG_RUNTIME_DIR", runtime);
        m_env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_root.filePath("no-bus"));
        m_env.insert("VIDORA_LOG_LEVEL", "info");
        m_env.insert("QT_QPA_PLATFORM", "xcb");
    }

    void cleanupTestCase()
    {
        for (QProcess* p : m_running) {
            p->terminate();
            if (!p->waitForFinished(5000))
                p->kill();
            p->waitForFinished();
        }
        run("chmod", {"-R", "u+w", m_prefix});
    }

    void desktopFilesAreInPlaceAndValid()
    {
        for (const char* file : {"bin/vidora", "bin/vidora-cli", "share/vidora/config.json", "share/vidora/mpvqt.conf",
                                 "share/vidora/vidora_zh_CN.qm", "share/icons/hicolor/48x48/apps/org.vidora.vidora.png",
                                 "share/icons/hicolor/256x256/apps/org.vidora.vidora.png"})
            QVERIFY2(QFile::exists(m_prefix + "/" + file), file);
        QByteArray out;
        const QString desktop = m_prefix + "/share/applications/org.vidora.vidora.desktop";
        QVERIFY2(run("desktop-file-validate", {desktop}, &out) == 0 && out.trimmed().isEmpty(), out.constData());
        QVERIFY2(run("appstreamcli", {"validate", "--no-net", m_prefix + "/share/metainfo/org.vidora.vidora.metainfo.xml"},
                     &out) == 0,
                 out.constData());
    }

    void readOnlyInstallKeepsUserDataInTheHomeFolders()
    {
        QVERIFY(run("chmod", {"-R", "a-w", m_prefix}) == 0);
        const QStringList before = snapshot();
        const QString clip = m_root.filePath("clip.mp4");
        QVERIFY(TestMedia::makeVideo(clip, 1.5, 160, 120, 25, false));

        // The paths the installed copy chooses, computed here with the same HOME.
        qputenv("HOME", m_home.toUtf8());
        for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
            qunsetenv(name);
        const AppPaths paths = AppPaths::resolve(m_prefix + "/bin");
        QVERIFY(paths.installed);
        QCOMPARE(paths.readOnlyFolder, m_prefix + "/share/vidora");
        QCOMPARE(paths.defaultConfig, m_prefix + "/share/vidora/config.json");
        QCOMPARE(paths.config, m_home + "/.config/vidora/config.json");
        QCOMPARE(paths.historyDatabase, m_home + "/.local/share/vidora/video_history.db");
        QCOMPARE(paths.screenshotFolder, m_home + "/Pictures/Vidora");

        // It plays to the end (the end saves the row once more), with no bus to talk to.
        QProcess* first = start({clip});
        QVERIFY(waitForLine(first, "Video info saved successfully for: " + clip));
        const QString url = QUrl::fromLocalFile(clip).toString();
        const auto playCount = [&] {
            SqlHelper store(paths.historyDatabase);
            for (const QVariantMap& row : store.getVideoHistory(-1))
                if (row.value("url").toString() == url)
                    return row.value("play_count").toInt();
            return 0;
        };
        QTRY_VERIFY_WITH_TIMEOUT(playCount() >= 2, 20000);
        QCOMPARE(first->state(), QProcess::Running);

        QCOMPARE(snapshot(), before);
        QVERIFY(!QFile::exists(paths.config)); // seeded only on the first change
        first->kill();
        first->waitForFinished();
    }

    void mediaControlsStepThroughTheHistory()
    {
        // The history holds clip.mp4; a second file joins it at the end.
        QVERIFY2(QDBusConnection::sessionBus().isConnected(), "run under dbus-run-session");
        m_env.insert("DBUS_SESSION_BUS_ADDRESS", qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
        const QString third = m_root.filePath("third.mp4");
        QVERIFY(TestMedia::makeVideo(third, 8, 160, 120, 25, false));
        QProcess* player = start({third});
        QDBusInterface properties("org.mpris.MediaPlayer2.vidora", "/org/mpris/MediaPlayer2",
                                  "org.freedesktop.DBus.Properties");
        QDBusInterface controls("org.mpris.MediaPlayer2.vidora", "/org/mpris/MediaPlayer2",
                                "org.mpris.MediaPlayer2.Player");
        const auto playing = [&] {
            const QDBusReply<QDBusVariant> reply = properties.call("Get", "org.mpris.MediaPlayer2.Player", "Metadata");
            if (!reply.isValid())
                return QString();
            return qdbus_cast<QVariantMap>(reply.value().variant().value<QDBusArgument>()).value("xesam:url").toString();
        };
        QTRY_COMPARE_WITH_TIMEOUT(playing(), QUrl::fromLocalFile(third).toString(), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(properties.call("Get", "org.mpris.MediaPlayer2.Player", "Position")
                                         .arguments().value(0).value<QDBusVariant>().variant().toLongLong() > 0,
                                 10000);
        controls.call("Previous");
        QTRY_COMPARE_WITH_TIMEOUT(playing(), QUrl::fromLocalFile(m_root.filePath("clip.mp4")).toString(), 10000);
        controls.call("Next");
        QTRY_COMPARE_WITH_TIMEOUT(playing(), QUrl::fromLocalFile(third).toString(), 10000);
        QCOMPARE(player->state(), QProcess::Running);
    }
};

QTEST_GUILESS_MAIN(TestInstall)
#include "tst_install.moc"
