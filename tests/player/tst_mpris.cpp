#include "MprisService.h"
#include "MpvView.h"
#include "TestMedia.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QtTest>
#include <memory>

// The media controls as a desktop sees them: a second bus connection of its own talks to a
// real player view over a private session bus (the suite starts this under dbus-run-session).
namespace {

const QString kService = QString::fromLatin1(MprisService::kServiceName);
const QString kPath = QString::fromLatin1(MprisService::kObjectPath);
const QString kPlayer = QStringLiteral("org.mpris.MediaPlayer2.Player");

} // namespace

// What the desktop hears: PropertiesChanged and Seeked.
class BusRecorder : public QObject
{
    Q_OBJECT
public:
    QList<QVariantMap> changes;
    QList<qlonglong> seeks;

    QVariant lastChange(const QString& name) const
    {
        for (auto it = changes.crbegin(); it != changes.crend(); ++it)
            if (it->contains(name))
                return it->value(name);
        return {};
    }

public slots:
    void changed(const QString& interface, const QVariantMap& properties, const QStringList&)
    {
        if (interface == kPlayer)
            changes << properties;
    }
    void seeked(qlonglong position) { seeks << position; }
};

class TestMpris : public QObject
{
    Q_OBJECT

private:
    QDBusConnection m_desktop{QString()};
    BusRecorder m_recorder;
    std::unique_ptr<QQuickWindow> m_window;
    MpvView* m_view = nullptr;
    QString m_file;

    QDBusMessage call(const QString& interface, const QString& method, const QVariantList& args = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(kService, kPath, interface, method);
        message.setArguments(args);
        // The service answers on this same thread, so the wait must keep the loop running.
        return m_desktop.call(message, QDBus::BlockWithGui, 5000);
    }
    QVariant get(const QString& name, const QString& interface = kPlayer)
    {
        const QVariant value = call("org.freedesktop.DBus.Properties", "Get", {interface, name})
                                   .arguments()
                                   .value(0)
                                   .value<QDBusVariant>()
                                   .variant();
        if (value.userType() == qMetaTypeId<QDBusArgument>())
            return qdbus_cast<QVariantMap>(value.value<QDBusArgument>());
        return value;
    }
    void set(const QString& name, const QVariant& value)
    {
        call("org.freedesktop.DBus.Properties", "Set",
             {kPlayer, name, QVariant::fromValue(QDBusVariant(value))});
    }
    double positionSeconds() { return get("Position").toLongLong() / 1e6; }

private slots:
    void initTestCase()
    {
        const QString dir = TestMedia::scratchDir("mpris");
        m_file = dir + "/clip.mp4";
        QVERIFY(TestMedia::makeVideo(m_file, 6));
        QDir::setCurrent(dir);
        QVERIFY(TestMedia::writeFile("mpvqt.conf", "ao=null\n"));

        // No bus, no controls, no harm.
        QVERIFY(!MprisService::instance()->start(QDBusConnection(QStringLiteral("no-such-bus"))));
        QVERIFY2(QDBusConnection::sessionBus().isConnected(), "run under dbus-run-session");
        QVERIFY(MprisService::instance()->start());

        m_desktop = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("desktop"));
        QVERIFY(m_desktop.connect(QString(), kPath, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                                  &m_recorder, SLOT(changed(QString, QVariantMap, QStringList))));
        QVERIFY(m_desktop.connect(QString(), kPath, kPlayer, "Seeked", &m_recorder, SLOT(seeked(qlonglong))));

        m_window = std::make_unique<QQuickWindow>();
        m_window->resize(320, 240);
        m_view = new MpvView(m_window->contentItem());
        m_view->setSize(QSizeF(320, 240));
        QSignalSpy ready(m_view, &MpvView::initCompleted);
        m_window->show();
        QVERIFY(ready.wait(10000));
        QCOMPARE(MprisService::instance()->player(), m_view);
    }

    void cleanupTestCase()
    {
        m_window.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("desktop"));
    }

    void desktopFindsThePlayer()
    {
        QVERIFY(m_desktop.interface()->isServiceRegistered(kService));
        QCOMPARE(get("Identity", "org.mpris.MediaPlayer2").toString(), QString("Vidora"));
        QVERIFY(
            get("SupportedMimeTypes", "org.mpris.MediaPlayer2").toStringList().contains("video/x-matroska"));
        QCOMPARE(get("PlaybackStatus").toString(), QString("Stopped"));
    }

    // One file from start to stop, driven and watched from the desktop's side.
    void controlsFollowAndDriveThePlayer()
    {
        m_view->setPropertyBlocking("loop-file", "inf");
        m_view->loadFile(m_file);
        QTRY_COMPARE_WITH_TIMEOUT(get("PlaybackStatus").toString(), QString("Playing"), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(get("Metadata").toMap().contains("mpris:length"), 10000);
        const QVariantMap meta = get("Metadata").toMap();
        QCOMPARE(meta.value("xesam:url").toString(), QUrl::fromLocalFile(m_file).toString());
        QCOMPARE(meta.value("xesam:title").toString(), QString("clip.mp4"));
        QVERIFY(qAbs(meta.value("mpris:length").toLongLong() - 6000000) < 100000);

        // Pausing in the player and PlayPause on the bus both reach the other side.
        m_view->setPause(true);
        QTRY_COMPARE(get("PlaybackStatus").toString(), QString("Paused"));
        QTRY_COMPARE(m_recorder.lastChange("PlaybackStatus").toString(), QString("Paused"));
        call(kPlayer, "PlayPause");
        QTRY_VERIFY(!m_view->pause());
        QTRY_COMPARE(m_recorder.lastChange("PlaybackStatus").toString(), QString("Playing"));
        call(kPlayer, "Pause");
        QTRY_VERIFY(m_view->pause());

        // Seek is relative, SetPosition absolute and only for the track playing; both are
        // announced as jumps.
        const double before = positionSeconds();
        call(kPlayer, "Seek", {qlonglong(2000000)});
        QTRY_VERIFY(qAbs(positionSeconds() - (before + 2.0)) < 0.3);
        QTRY_VERIFY(!m_recorder.seeks.isEmpty());
        const QVariant track = get("Metadata").toMap().value("mpris:trackid");
        call(kPlayer, "SetPosition",
             {QVariant::fromValue(QDBusObjectPath("/org/vidora/vidora/track/0")), qlonglong(0)});
        QTest::qWait(300);
        QVERIFY(positionSeconds() > 1.5);
        call(kPlayer, "SetPosition", {track, qlonglong(500000)});
        QTRY_VERIFY(qAbs(positionSeconds() - 0.5) < 0.3);
        // Past the end means the next file.
        QSignalSpy next(MprisService::instance(), &MprisService::nextRequested);
        call(kPlayer, "Seek", {qlonglong(60000000)});
        QCOMPARE(next.count(), 1);

        set("Volume", 0.4);
        QTRY_COMPARE(m_view->volume(), 40);
        QTRY_COMPARE(m_recorder.lastChange("Volume").toDouble(), 0.4);
        set("Rate", 1.5);
        QTRY_COMPARE(m_view->speed(), 1.5);

        // The cover picture is a frame of the file.
        QTRY_VERIFY_WITH_TIMEOUT(get("Metadata").toMap().contains("mpris:artUrl"), 15000);
        const QImage art(QUrl(get("Metadata").toMap().value("mpris:artUrl").toString()).toLocalFile());
        QCOMPARE(art.size(), QSize(320, 240));

        QSignalSpy open(MprisService::instance(), &MprisService::openUriRequested);
        call(kPlayer, "OpenUri", {QUrl::fromLocalFile("/srv/films/a b.mkv").toString()});
        QCOMPARE(open.value(0).value(0).toString(), QString("/srv/films/a b.mkv"));
        call(kPlayer, "OpenUri", {QString("https://example.org/a.mp4")});
        QCOMPARE(open.count(), 1);

        call(kPlayer, "Stop");
        QTRY_COMPARE(get("PlaybackStatus").toString(), QString("Stopped"));
        QCOMPARE(m_recorder.lastChange("PlaybackStatus").toString(), QString("Stopped"));
    }
};

QTEST_MAIN(TestMpris)
#include "tst_mpris.moc"
