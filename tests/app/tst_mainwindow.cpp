#include "SqlHelper.h"
#include "TestMedia.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>
#include <functional>

// The real program under Xvfb, driven like a person would: command line, keys and clicks
// through xdotool, checked by screen pixels and by the history file it writes. One player
// runs for the whole case and the functions continue where the last one left off.
//
// Coordinates are the window's own: the body starts 5 px in, the title bar is 40 px, the
// control bar the last 120 px of the body, the play list the last 240 px when open.
class TestMainWindow : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void startsOnTheEmptyState();
    void secondStartHandsOverAFileThatPlays();
    void spaceShowsThePauseOverlay();
    void arrowKeysStepAndTheResumePointShowsIt();
    void playListShowsCardsWithThumbnailsAndPinReorders();
    void screenshotPostsANotificationWhoseLinkShowsTheFile();
    void miniPlayerAndBack();
    void missingFileIsReported();
    void clearAsksAndClearsOnlyOnConfirm();

private:
    QString xdo(const QStringList& args);
    void focusPlayer();
    void key(const QString& name);
    void click(int x, int y);
    QImage grab();
    QRgb pixel(int x, int y);
    int brightPixels(int x0, int y0, int x1, int y1);
    bool waitFor(const std::function<bool()>& condition, int timeoutMs = 10000, bool report = true);
    int runSecond(const QStringList& args);
    QList<QVariantMap> rows();
    QVariantMap row(const QString& file);
    QSize windowSize();
    void setListOpen(bool open);
    bool answerMessageBox(const QString& key);

    QTemporaryDir m_folder;
    QString m_program;
    QString m_blue, m_green;
    QProcess m_player;
    QProcess m_monitor;
    QString m_window;
    QImage m_shot;
};

namespace {

bool blueish(QRgb c)
{
    return qBlue(c) > 150 && qRed(c) < 90 && qGreen(c) < 90;
}
bool greenish(QRgb c)
{
    return qGreen(c) > 150 && qRed(c) < 90 && qBlue(c) < 90;
}

constexpr int kVideoX = 200, kVideoY = 150; // inside the picture of a 16:9 video
constexpr int kControlY = 615;              // centre line of the control bar's buttons

} // namespace

void TestMainWindow::initTestCase()
{
    // A private copy of the program: a build-folder run keeps its history beside itself.
    const QString bin = qEnvironmentVariable("VIDORA_BIN_DIR");
    m_program = m_folder.filePath("vidora");
    for (const char* name : {"vidora", "config.json", "vidora_zh_CN.qm"})
        QVERIFY(QFile::copy(bin + "/" + name, m_folder.filePath(name)));
    QFile::setPermissions(m_program, QFile::permissions(bin + "/vidora"));
    qunsetenv("XDG_RUNTIME_DIR");

    m_blue = m_folder.filePath("blue clip.mp4");
    m_green = m_folder.filePath("green.mp4");
    for (const auto& [path, colour] : {std::pair{m_blue, "0x0000ff"}, std::pair{m_green, "0x00ff00"}})
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", QString("color=c=%1:s=640x360:r=10:d=600").arg(colour), "-c:v",
                                   "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", path}));

    // Watches the session bus for the file manager request that the notification's link makes.
    m_monitor.start("dbus-monitor", {"interface='org.freedesktop.FileManager1',member='ShowItems'"});
    QVERIFY(m_monitor.waitForStarted());

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("VIDORA_LOG_LEVEL", "info");
    m_player.setProcessEnvironment(env);
    m_player.setProcessChannelMode(QProcess::MergedChannels);
    // Started in another folder: the translated title shows the catalogue beside it was found.
    m_player.setWorkingDirectory(QDir::rootPath());
    m_player.start(m_program, QStringList());
    QVERIFY(waitFor([this] {
        m_window = xdo({"search", "--all", "--pid", QString::number(m_player.processId()), "--name",
                        QStringLiteral("^播放器$")}).section('\n', 0, 0);
        return !m_window.isEmpty();
    }, 60000));
}

void TestMainWindow::cleanupTestCase()
{
    // The player's own log, beside the failure screens, for whoever reads a failure.
    QFile log(QDir::temp().filePath("player-output.txt"));
    if (log.open(QIODevice::WriteOnly))
        log.write(m_player.readAll());
    m_player.terminate();
    if (!m_player.waitForFinished(5000))
        m_player.kill();
    m_monitor.kill();
    m_monitor.waitForFinished();
}

QString TestMainWindow::xdo(const QStringList& args)
{
    QProcess p;
    p.start("xdotool", args);
    p.waitForFinished(10000);
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

// Without a window manager nobody gives the window the keyboard: take it as a click would.
void TestMainWindow::focusPlayer()
{
    xdo({"windowfocus", "--sync", m_window});
}

void TestMainWindow::key(const QString& name)
{
    focusPlayer();
    xdo({"key", name});
    QTest::qWait(300);
}

// The pointer arrives first, as a hand's would, so hover-driven parts are there to be clicked.
void TestMainWindow::click(int x, int y)
{
    xdo({"mousemove", "--window", m_window, QString::number(x - 3), QString::number(y)});
    QTest::qWait(150);
    xdo({"mousemove", "--window", m_window, QString::number(x), QString::number(y)});
    QTest::qWait(150);
    xdo({"click", "1"});
    QTest::qWait(200);
}

QImage TestMainWindow::grab()
{
    QProcess p;
    p.start("import", {"-window", m_window, "png:-"});
    p.waitForFinished(20000);
    m_shot = QImage::fromData(p.readAllStandardOutput(), "PNG");
    return m_shot;
}

QRgb TestMainWindow::pixel(int x, int y)
{
    return grab().pixel(x, y);
}

int TestMainWindow::brightPixels(int x0, int y0, int x1, int y1)
{
    grab();
    int n = 0;
    for (int y = y0; y < y1; ++y)
        for (int x = x0; x < x1; ++x)
            n += qGray(m_shot.pixel(x, y)) > 200;
    return n;
}

bool TestMainWindow::waitFor(const std::function<bool()>& condition, int timeoutMs, bool report)
{
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < timeoutMs) {
        if (condition())
            return true;
        QTest::qWait(200);
    }
    if (condition() || !report)
        return condition();
    // What the screen showed when it went wrong, for whoever reads the failure.
    static int failures = 0;
    const QString path = QDir::temp().filePath(QStringLiteral("mainwindow-failure-%1.png").arg(++failures));
    if (m_shot.save(path))
        qWarning().noquote() << "last screen:" << path;
    return false;
}

int TestMainWindow::runSecond(const QStringList& args)
{
    QProcess second;
    second.start(m_program, args);
    if (!second.waitForFinished(10000)) {
        second.kill();
        return -1;
    }
    return second.exitCode();
}

QList<QVariantMap> TestMainWindow::rows()
{
    SqlHelper store(m_folder.filePath("video_history.db"));
    return store.getVideoHistory(100);
}

QVariantMap TestMainWindow::row(const QString& file)
{
    for (const QVariantMap& r : rows())
        if (r.value("url").toString() == QUrl::fromLocalFile(file).toString())
            return r;
    return {};
}

// The list's colour fills its middle while open; its tab sits at the list's left edge.
void TestMainWindow::setListOpen(bool open)
{
    const auto isOpen = [this] {
        const QRgb c = pixel(900, 400);
        return qRed(c) == 0x2B && qGreen(c) == 0x2B && qBlue(c) == 0x2B;
    };
    for (int attempt = 0; attempt < 5 && isOpen() != open; ++attempt) {
        const int tabX = isOpen() ? 735 : 965;
        // The tab slides out while the pointer moves over the video.
        xdo({"mousemove", "--window", m_window, "400", "300"});
        xdo({"mousemove", "--window", m_window, QString::number(tabX - 40), "360"});
        QTest::qWait(500);
        click(tabX, 360);
        waitFor([&] { return isOpen() == open; }, 3000, false);
    }
    QCOMPARE(isOpen(), open);
}

QSize TestMainWindow::windowSize()
{
    const QStringList parts = xdo({"getwindowgeometry", "--shell", m_window}).split('\n');
    QSize size;
    for (const QString& line : parts) {
        if (line.startsWith("WIDTH="))
            size.setWidth(line.mid(6).toInt());
        if (line.startsWith("HEIGHT="))
            size.setHeight(line.mid(7).toInt());
    }
    return size;
}

void TestMainWindow::startsOnTheEmptyState()
{
    // The "Open file" shape of the empty state, left of its icon.
    QVERIFY(waitFor([this] {
        const QRgb c = pixel(434, 405);
        return qAbs(qRed(c) - 0x48) < 12 && qAbs(qGreen(c) - 0x01) < 12 && qAbs(qBlue(c) - 0x85) < 12;
    }));
    QCOMPARE(brightPixels(399, 12, 599, 38), 0); // no file name yet
}

void TestMainWindow::secondStartHandsOverAFileThatPlays()
{
    QCOMPARE(runSecond({m_blue}), 0);
    QVERIFY(waitFor([this] { return blueish(pixel(kVideoX, kVideoY)); }, 20000));
    QVERIFY(brightPixels(399, 12, 599, 38) > 30); // the file name in the title bar
    QVERIFY(!row(m_blue).isEmpty());
}

void TestMainWindow::spaceShowsThePauseOverlay()
{
    key("space");
    QVERIFY(waitFor([this] {
        const QRgb c = pixel(kVideoX, kVideoY);
        return qBlue(c) > 60 && qBlue(c) < 130; // the picture under the dimming layer
    }));
    key("space");
    QVERIFY(waitFor([this] { return blueish(pixel(kVideoX, kVideoY)); }));
}

void TestMainWindow::arrowKeysStepAndTheResumePointShowsIt()
{
    // Paused; steps back end at the start whatever the position was, then two forward and
    // one back leave 5 s.
    key("space");
    for (const char* step : {"Left", "Left", "Left", "Left", "Left", "Right", "Right", "Left"})
        key(step);
    // Opening another file saves where this one stood.
    QCOMPARE(runSecond({m_green}), 0);
    QVERIFY(waitFor([this] { return row(m_blue).value("last_position").toDouble() > 0; }));
    const double blueStop = row(m_blue).value("last_position").toDouble();
    QVERIFY2(blueStop >= 4.5 && blueStop < 6.5, qPrintable(QString::number(blueStop)));
    QVERIFY(waitFor([this] { return greenish(pixel(kVideoX, kVideoY)); }, 20000));
    QCOMPARE(rows().size(), 2);
}

void TestMainWindow::playListShowsCardsWithThumbnailsAndPinReorders()
{
    const auto selected = [this](int rowIndex) {
        xdo({"mousemove", "--window", m_window, "400", "300"});
        QTest::qWait(300);
        const QRgb c = pixel(900, 96 + 64 * rowIndex);
        return qRed(c) == 0x33 && qGreen(c) == 0x33 && qBlue(c) == 0x33;
    };
    setListOpen(true);
    // Rows in first-play order, each card with its own picture; the playing one is marked.
    QVERIFY(waitFor([this] { return blueish(pixel(814, 125)) && greenish(m_shot.pixel(814, 189)); }));
    QVERIFY(selected(1));

    // Pinning the playing file moves its card to the top.
    setListOpen(false); // the pin sits in the title bar above the list's header
    click(812, 25);
    QVERIFY(waitFor([this] { return row(m_green).value("is_top").toInt() == 1; }));
    setListOpen(true);
    QVERIFY(waitFor([this] { return greenish(pixel(814, 125)) && blueish(m_shot.pixel(814, 189)); }));

    // A card plays its file, which then is the one the pin acts on.
    click(814, 189);
    QVERIFY(waitFor([&] { return selected(1); }));
    // Drawn whole, though the open list clips its own content.
    QVERIFY(waitFor([this] { return blueish(pixel(kVideoX, kVideoY)) && blueish(m_shot.pixel(600, 500)); }, 20000));
    setListOpen(false);
    click(812, 25);
    QVERIFY(waitFor([this] { return row(m_blue).value("is_top").toInt() == 1 && row(m_green).value("is_top").toInt() == 0; }));
    click(812, 25);
    QVERIFY(waitFor([this] { return row(m_blue).value("is_top").toInt() == 0; }));
}

void TestMainWindow::screenshotPostsANotificationWhoseLinkShowsTheFile()
{
    const QDir shots(QDir::tempPath() + "/screenshots");
    const int before = shots.entryList({"*.png"}).size();
    click(697, kControlY);
    QVERIFY(waitFor([&] { return QDir(shots.path()).entryList({"*.png"}).size() == before + 1; }));
    // The row, "#000B0D", ends 20 px from the body's right and 14 px above the control bar.
    QVERIFY(waitFor([this] {
        const QRgb c = pixel(968, 524);
        return qRed(c) < 10 && qGreen(c) >= 4 && qGreen(c) < 20 && qBlue(c) >= 6 && qBlue(c) < 22;
    }));
    // The link is the row's last word.
    click(945, 524);
    QVERIFY(waitFor([this] { return m_monitor.readAllStandardOutput().contains("ShowItems"); }, 5000));
}

void TestMainWindow::miniPlayerAndBack()
{
    setListOpen(false);
    click(905, kControlY);
    QVERIFY(waitFor([this] { return windowSize() == QSize(320, 200); }));
    QVERIFY(waitFor([this] { return blueish(pixel(20, 100)); })); // the video covers it all
    key("Escape");
    QVERIFY(waitFor([this] { return windowSize() == QSize(998, 680); }));
}

// The message box takes the key and closes.
bool TestMainWindow::answerMessageBox(const QString& key)
{
    const auto box = [this] { return xdo({"search", "--onlyvisible", "--name", QStringLiteral("^提示$")}).section('\n', 0, 0); };
    if (!waitFor([&] { return !box().isEmpty(); }))
        return false;
    xdo({"windowfocus", "--sync", box()});
    xdo({"key", key});
    return waitFor([&] { return box().isEmpty(); });
}

void TestMainWindow::missingFileIsReported()
{
    // The playing file's card, after the file went away: the box says so and playback goes on.
    QVERIFY(QFile::rename(m_green, m_green + ".gone"));
    setListOpen(true);
    click(814, 189);
    QVERIFY(answerMessageBox("Escape"));
    QVERIFY(QFile::rename(m_green + ".gone", m_green));
}

void TestMainWindow::clearAsksAndClearsOnlyOnConfirm()
{
    click(966, 69);
    QVERIFY(answerMessageBox("Escape"));
    QCOMPARE(rows().size(), 2);
    click(966, 69);
    QVERIFY(answerMessageBox("Return"));
    QVERIFY(waitFor([this] { return rows().isEmpty(); }));
}

QTEST_GUILESS_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
