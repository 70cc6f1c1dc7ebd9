#include "MpvView.h"
#include "SqlHelper.h"
#include "TestMedia.h"

#include <QFile>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QtTest>
#include <memory>

// MpvView end to end: a real window under the X server, Mesa's software OpenGL, real
// libmpv, generated media, the real history database in the working directory.
namespace {

const QColor kRed(255, 0, 0);
const QColor kBlue(0, 0, 255);
const QColor kBlack(0, 0, 0);
const QColor kGreen(0, 128, 0);
const QColor kWhite(255, 255, 255);

bool near(const QColor& a, const QColor& b)
{
    return qAbs(a.red() - b.red()) < 60 && qAbs(a.green() - b.green()) < 60 && qAbs(a.blue() - b.blue()) < 60;
}

struct Player
{
    std::unique_ptr<QQuickWindow> window;
    MpvView* view = nullptr; // child of the window's content item
};

QVariantMap rowOf(const QString& url)
{
    for (const QVariantMap& row : SqlHelper::instance()->getVideoHistory(-1))
        if (row.value("url").toString() == url)
            return row;
    return {};
}

} // namespace

class TestMpvView : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString m_pattern; // 640x360, red top half, blue bottom half, 4 s, with a tone
    QString m_short;   // the same pattern, 1.5 s

    static Player open(int width, int height)
    {
        Player player;
        player.window = std::make_unique<QQuickWindow>();
        player.window->resize(width, height);
        player.view = new MpvView(player.window->contentItem());
        player.view->setSize(QSizeF(width, height));
        QSignalSpy initCompleted(player.view, &MpvView::initCompleted);
        player.window->show();
        initCompleted.wait(10000);
        return player;
    }

    // Polls the window until every point shows its colour; on failure names the first wrong one.
    static bool showsColours(QQuickWindow* window, const QList<QPair<QPoint, QColor>>& expected)
    {
        QImage image;
        const auto wrong = [&](const QPair<QPoint, QColor>& e) {
            return !near(image.pixelColor(e.first), e.second);
        };
        QElapsedTimer timer;
        timer.start();
        do {
            image = window->grabWindow();
            if (std::none_of(expected.cbegin(), expected.cend(), wrong))
                return true;
            QTest::qWait(100);
        } while (timer.elapsed() < 10000);
        const auto e = *std::find_if(expected.cbegin(), expected.cend(), wrong);
        qWarning() << e.first << "is" << image.pixelColor(e.first).name() << "wanted" << e.second.name();
        return false;
    }

    static QString url(const QString& path) { return QUrl::fromLocalFile(path).toString(); }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("view");
        m_pattern = m_dir + "/pattern.mp4";
        m_short = m_dir + "/short.mp4";
        const QString pattern =
            "-f lavfi -i color=c=red:s=640x180:r=25:d=%1 -f lavfi -i color=c=blue:s=640x180:r=25:d=%1 "
            "-f lavfi -i sine=frequency=440:duration=%1 -filter_complex [0][1]vstack[v] "
            "-map [v] -map 2 -pix_fmt yuv420p -g 10";
        QVERIFY(TestMedia::ffmpeg(pattern.arg(4).split(' ') << m_pattern));
        QVERIFY(TestMedia::ffmpeg(pattern.arg(1.5).split(' ') << m_short));
        // Start-up makes the program's folder current: the option file and the history
        // database live there. No audio device is needed.
        QDir::setCurrent(m_dir);
        QVERIFY(TestMedia::writeFile("mpvqt.conf", "ao=null\n"));
    }

    void init() { SqlHelper::instance()->clearHistory(); }

    // One looping file in a 2:1 item: the picture upright, its tracks, then the messages of
    // user changes, the aspect choices and the screenshot.
    void playsUprightAndShowsUserChanges()
    {
        Player p = open(800, 400);
        MpvView* v = p.view;
        QQuickWindow* w = p.window.get();
        QSignalSpy loaded(v, &MpvView::fileLoaded);
        v->setPropertyBlocking("loop-file", "inf");
        v->loadFile(m_pattern);
        QCOMPARE(v->fileUrl(), url(m_pattern));
        // The 16:9 video shows with side bars unless told otherwise.
        QVERIFY(showsColours(w, {{{20, 100}, kBlack}, {{100, 100}, kRed}, {{100, 300}, kBlue}}));
        QCOMPARE(loaded.count(), 1);
        QTRY_VERIFY(qAbs(v->duration() - 4.0) < 0.1);
        const QVariantMap audio = v->getAudioTracks().value(0).toMap();
        QCOMPARE(audio.value("title").toString(), QString("Audio Track 1"));
        QCOMPARE(audio.value("samplerate").toInt(), 44100);
        QCOMPARE(v->getSubtitleTracks().value(0).toMap().value("title").toString(), QString("no subtitle"));
        QCOMPARE(v->currentSubtitleTrack(), -1);
        // Neither the initial state reported by libmpv nor choosing the chosen track is a change.
        v->setAudioTrack(1);
        QVERIFY(v->lastShownText().isEmpty());

        const QList<std::tuple<std::function<void()>, QString, std::function<bool()>>> steps{
            {[v] { v->setPause(true); }, "❚❚ paused", [v] { return v->pause(); }},
            {[v] { v->setPause(false); }, "▶ playing", [v] { return !v->pause(); }},
            {[v] { v->setVolume(0); }, "🔊0%", [v] { return v->volume() == 0; }},
            {[v] { v->setMute(true); }, "🔇 Muted", [v] { return v->mute(); }},
            {[v] { v->setVolume(55); }, "🔊55%", [v] { return v->volume() == 55; }},
            {[v] { v->setMute(false); }, "🔊 Unmuted", [v] { return !v->mute(); }},
            {[v] { v->setSpeed(1.5); }, "🏃 1.5x", [v] { return v->speed() == 1.5; }},
            {[v] { v->setSpeed(2); }, "🏃 2x", [v] { return v->speed() == 2.0; }},
        };
        for (const auto& [act, text, state] : steps) {
            act();
            QTRY_COMPARE_WITH_TIMEOUT(v->lastShownText(), text, 5000);
            QVERIFY2(state(), qPrintable(text));
        }
        // Turning hardware decoding on where there is none: the mode changes, nothing is shown.
        QSignalSpy hwdec(v, &MpvView::hwdecChanged);
        v->setHwdecMode("auto-safe");
        QTRY_COMPARE(v->hwdecMode(), QString("auto-safe"));
        QTRY_COMPARE(hwdec.count(), 1);
        QTest::qWait(300);
        QCOMPARE(v->lastShownText(), QString("🏃 2x"));

        v->setAspectRatio(MpvView::RATIO4_3);
        QCOMPARE(v->lastShownText(), QString("Aspect Ratio:4:3"));
        QCOMPARE(v->aspectRatio(), MpvView::RATIO4_3);
        QVERIFY(showsColours(w, {{{100, 100}, kBlack}, {{200, 100}, kRed}, {{700, 300}, kBlack}}));
        v->setAspectRatio(MpvView::FILL);
        QCOMPARE(v->lastShownText(), QString("Aspect Ratio:Full"));
        QVERIFY(showsColours(w, {{{5, 100}, kRed}, {{795, 300}, kBlue}}));
        v->setAspectRatio(MpvView::DEFAULT);
        QCOMPARE(v->lastShownText(), QString("Aspect Ratio:default"));
        QVERIFY(showsColours(w, {{{20, 100}, kBlack}, {{100, 100}, kRed}}));

        QSignalSpy taken(v, &MpvView::screenshotTaken);
        v->getScreenshot();
        QVERIFY(taken.wait(10000));
        const QUrl fileUrl(taken.at(0).at(0).toString());
        QVERIFY(fileUrl.isLocalFile());
        const QFileInfo file(fileUrl.toLocalFile());
        QCOMPARE(file.absolutePath(), QDir(QDir::tempPath() + "/screenshots").absolutePath());
        QVERIFY(file.fileName().startsWith("screenshot_"));
        // At the video's own size, upright.
        const QImage image(file.absoluteFilePath());
        QCOMPARE(image.size(), QSize(640, 360));
        QVERIFY(near(image.pixelColor(320, 40), kRed) && near(image.pixelColor(320, 320), kBlue));
        QTRY_COMPARE(v->lastShownText(), QString("📷 ScreenShot saved"));
        v->stop();
    }

    // The picture inside a clipping parent, under another item: copied into the window where
    // the window has no depth buffer and the item is opaque and axis-aligned, else drawn as a
    // textured quad. Either way it must land upright in the same place, clipped, and stay
    // beneath what is drawn after it.
    void pictureLandsInPlaceCopiedOrDrawn_data()
    {
        QTest::addColumn<bool>("depthBuffer");
        QTest::addColumn<qreal>("opacity");
        QTest::addColumn<qreal>("rotation");
        QTest::newRow("copied") << false << 1.0 << 0.0;
        QTest::newRow("copied upside down") << false << 1.0 << 180.0;
        QTest::newRow("drawn, translucent") << false << 0.99 << 0.0;
        QTest::newRow("drawn, depth buffer") << true << 1.0 << 0.0;
    }
    void pictureLandsInPlaceCopiedOrDrawn()
    {
        QFETCH(bool, depthBuffer);
        QFETCH(qreal, opacity);
        QFETCH(qreal, rotation);
        qmlRegisterType<MpvView>("PlayerTest", 1, 0, "MpvView");
        QQuickWindow window;
        QSurfaceFormat format = window.format();
        format.setDepthBufferSize(depthBuffer ? 24 : 0);
        format.setStencilBufferSize(depthBuffer ? 8 : 0);
        window.setFormat(format);
        window.resize(400, 300);
        window.setColor(kGreen);
        QQmlEngine engine;
        QQmlComponent component(&engine);
        // A 320x240 view shows the 16:9 picture between 30 px bars; the parent cuts it at 180.
        component.setData("import QtQuick 2.15\nimport PlayerTest 1.0\n"
                          "Item { Item { x: 40; y: 30; width: 320; height: 180; clip: true\n"
                          "  MpvView { objectName: 'view'; width: 320; height: 240 } }\n"
                          "Rectangle { x: 180; y: 60; width: 20; height: 20; color: 'white' } }",
                          QUrl());
        std::unique_ptr<QQuickItem> scene(qobject_cast<QQuickItem*>(component.create()));
        QVERIFY2(scene, qPrintable(component.errorString()));
        scene->setParentItem(window.contentItem());
        auto* view = scene->findChild<MpvView*>("view");
        view->setOpacity(opacity);
        view->setRotation(rotation);
        QSignalSpy initCompleted(view, &MpvView::initCompleted);
        window.show();
        QVERIFY(initCompleted.wait(10000));
        view->loadFile(m_pattern);
        const QColor top = rotation == 0.0 ? kRed : kBlue, bottom = rotation == 0.0 ? kBlue : kRed;
        QVERIFY(showsColours(&window, {{{100, 90}, top},
                                       {{100, 180}, bottom},
                                       {{100, 250}, kGreen},
                                       {{20, 90}, kGreen},
                                       {{190, 70}, kWhite},
                                       {{100, 50}, kBlack}}));
        view->stop();
    }

    void historyFollowsLoadStopResumeAndEnd()
    {
        Player p = open(320, 180);
        MpvView* v = p.view;
        const QString u = url(m_pattern);

        // Loading writes the row at once, before playback; the position is not known yet.
        v->loadFile(m_pattern);
        QVariantMap row = rowOf(u);
        QCOMPARE(row.value("filename").toString(), QString("pattern.mp4"));
        QCOMPARE(row.value("play_count").toInt(), 1);
        QCOMPARE(row.value("last_position").toDouble(), -1.0);

        // Stopping saves the position reached.
        QTRY_VERIFY_WITH_TIMEOUT(v->position() > 1.5, 10000);
        v->stop();
        QVERIFY(v->fileUrl().isEmpty());
        row = rowOf(u);
        const double saved = row.value("last_position").toDouble();
        QVERIFY2(saved > 1.5 && saved < 3.0, qPrintable(QString::number(saved)));
        QVERIFY(qAbs(row.value("duration").toDouble() - 4.0) < 0.1);
        QCOMPARE(row.value("play_count").toInt(), 2);

        // Loading again keeps the resume point and continues from there.
        QSignalSpy loaded(v, &MpvView::fileLoaded);
        v->loadFile(u);
        QCOMPARE(rowOf(u).value("last_position").toDouble(), saved);
        QVERIFY(qAbs(rowOf(u).value("duration").toDouble() - 4.0) < 0.1);
        QVERIFY(loaded.wait(10000));
        QTest::qWait(300);
        const double resumedAt = v->getProperty("time-pos").toDouble();
        QVERIFY2(resumedAt >= saved - 0.1, qPrintable(QString::number(resumedAt)));

        // Reaching the end saves position 0 (start over next time) and announces the end.
        QSignalSpy ended(v, &MpvView::playEnd);
        QVERIFY(ended.wait(10000));
        QVERIFY(v->fileUrl().isEmpty());
        row = rowOf(u);
        QCOMPARE(row.value("last_position").toDouble(), 0.0);
        QCOMPARE(row.value("play_count").toInt(), 5);
        QCOMPARE(SqlHelper::instance()->getVideoHistory(-1).size(), 1);

        // A finished file starts from the beginning; deleting its row stops it.
        v->loadFile(u);
        QVERIFY(loaded.wait(10000));
        QTest::qWait(300);
        QVERIFY(v->getProperty("time-pos").toDouble() < 1.0);
        v->deleteVideoByUrl(u);
        QVERIFY(v->fileUrl().isEmpty());
        QVERIFY(rowOf(u).isEmpty());
    }

    void badFilesEndQuietlyAndThePlayerGoesOn()
    {
        Player p = open(320, 180);
        const QString empty = m_dir + "/empty.mp4", text = m_dir + "/text.mkv";
        QVERIFY(TestMedia::writeFile(empty, {}) &&
                TestMedia::writeFile(text, QByteArray("not a video\n").repeated(100)));

        QSignalSpy ended(p.view, &MpvView::playEnd);
        for (const QString& path : {m_dir + "/missing.mp4", empty, text}) {
            p.view->loadFile(path);
            QVERIFY2(ended.wait(10000), qPrintable(path));
            QVERIFY(p.view->fileUrl().isEmpty());
        }
        QCOMPARE(SqlHelper::instance()->getVideoHistory(-1).size(), 3);

        // A file deleted while it plays.
        const QString doomed = m_dir + "/doomed.mp4";
        QVERIFY(QFile::copy(m_short, doomed));
        p.view->loadFile(doomed);
        QTRY_VERIFY_WITH_TIMEOUT(p.view->position() > 0.2, 10000);
        QVERIFY(QFile::remove(doomed));
        QVERIFY(ended.wait(10000));

        p.view->loadFile(m_pattern);
        QVERIFY(showsColours(p.window.get(), {{{160, 20}, kRed}, {{160, 160}, kBlue}}));
        p.view->stop();
    }

    // A load overtaken by the next before libmpv opened it never starts (quick clicks through
    // the history do this); the files after it must still get their positions and ends. A
    // folder plays as the file it holds.
    void overtakenLoadsAndFoldersLeaveLaterFilesTracked()
    {
        Player p = open(320, 180);
        MpvView* v = p.view;
        QSignalSpy ended(v, &MpvView::playEnd);
        const QString folder = m_dir + "/folder";
        QVERIFY(QDir().mkpath(folder) && QFile::copy(m_short, folder + "/only.mp4"));
        for (const QStringList& loads :
             {QStringList{m_pattern, m_short, m_pattern, m_short, m_pattern, m_short}, QStringList{folder},
              QStringList{m_short}}) {
            for (const QString& file : loads)
                v->loadFile(file);
            QTRY_VERIFY2_WITH_TIMEOUT(v->position() > 0.3, qPrintable(loads.last()), 10000);
            QVERIFY(ended.wait(10000));
            QCOMPARE(rowOf(url(loads.last())).value("last_position").toDouble(), 0.0);
        }
    }

    // The renderer outlives its item here; a broken option file must not stop the next view.
    void theViewCanGoWhileItsWindowStays()
    {
        Player p = open(320, 180);
        p.view->loadFile(m_pattern);
        QVERIFY(showsColours(p.window.get(), {{{160, 20}, kRed}}));
        delete p.view;
        QTest::qWait(300);
        (void)p.window->grabWindow();

        QVERIFY(
            TestMedia::writeFile("mpvqt.conf", "ao=null\nno-such-option=1\nvolume=loud\n[[[\n\xff\xfe\n"));
        p.view = new MpvView(p.window->contentItem());
        p.view->setSize(QSizeF(320, 180));
        QSignalSpy initCompleted(p.view, &MpvView::initCompleted);
        const bool started = initCompleted.wait(10000);
        QVERIFY(TestMedia::writeFile("mpvqt.conf", "ao=null\n"));
        QVERIFY(started);
        p.view->loadFile(m_pattern);
        QVERIFY(showsColours(p.window.get(), {{{160, 20}, kRed}, {{160, 160}, kBlue}}));
        p.view->stop();
    }
};

QTEST_MAIN(TestMpvView)
#include "tst_mpv_view.moc"
