#include "TestMedia.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>

// The tools used as a person would: the real program under X, files handed in on the
// command line or picked in its dialogs, buttons pressed and dialogs answered with xdotool,
// outputs checked with ffprobe. The program runs from a private copy of its folder so its
// configuration can point the tools at this run's output folder, and finds a stand-in
// xdg-open that records which folder the desktop was asked to show.
class TestToolUse : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void clipCutsTheDraggedRange();
    void compressShowsProgressStopsAndCompletes();
    void conversionFromTheToolMenu();
    void mergeFromTheToolMenu();

private:
    QString window(const QString& name, int timeoutMs = 15000);
    static void xdo(const QStringList& args);
    static void click(const QString& win, int x, int y);
    void pressExport(const QString& win) { click(win, 471, 536); }
    void answerFileDialog(const QString& title, const QString& path);
    bool waitForLine(const QString& needle, int timeoutMs);
    static QRect windowRect(const QString& win);
    static QRect colourBox(const QRect& area, QColor colour);
    void handOver(const QStringList& args);
    void dismissMessage();
    QString openFromToolMenu(int row, const QString& title);
    static QImage grab(const QRect& area);
    static bool countMoved(const QImage& before, const QImage& now);

    QTemporaryDir m_dir;
    QString m_app, m_out, m_a, m_long, m_opened;
    QProcess m_player;
    QByteArray m_seen;
    int m_seenUpTo = 0;
};

void TestToolUse::initTestCase()
{
    const QString bin = qEnvironmentVariable("VIDORA_BIN_DIR");
    m_app = m_dir.filePath("app");
    m_out = m_dir.filePath("out");
    QVERIFY(QDir().mkpath(m_app) && QDir().mkpath(m_out) && QDir().mkpath(m_dir.filePath("shim")));
    QVERIFY(QFile::copy(bin + "/vidora", m_app + "/vidora"));
    QByteArray config = TestMedia::fileBytes(bin + "/config.json");
    config.replace("\"defaultDir\": \"\"", "\"defaultDir\": \"" + m_out.toUtf8() + "\"");
    QVERIFY(TestMedia::writeFile(m_app + "/config.json", config));

    m_opened = m_dir.filePath("opened.txt");
    const QString shim = m_dir.filePath("shim/xdg-open");
    QVERIFY(TestMedia::writeFile(shim, "#!/bin/sh\necho \"$1\" >> '" + m_opened.toUtf8() + "'\n"));
    QFile::setPermissions(shim, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);

    m_a = m_dir.filePath("a.mp4");
    m_long = m_dir.filePath("long.mp4");
    QVERIFY(TestMedia::makeVideo(m_a, 4));
    QVERIFY(TestMedia::makeVideo(m_long, 60, 640, 360, 25, false));

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("VIDORA_LOG_LEVEL", "info");
    env.insert("QT_QPA_PLATFORM", "xcb");
    env.insert("PATH", m_dir.filePath("shim") + ":" + env.value("PATH"));
    env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_dir.filePath("no-bus")); // no file manager service
    env.insert("HOME", m_dir.path());
    m_player.setProcessEnvironment(env);
    m_player.setProcessChannelMode(QProcess::MergedChannels);
    m_player.start(m_app + "/vidora", {"-crop", m_a});
    QVERIFY(m_player.waitForStarted());
    QVERIFY2(!window("Video capture", 30000).isEmpty(), m_player.readAll().constData());
}

void TestToolUse::cleanupTestCase()
{
    m_player.terminate();
    if (!m_player.waitForFinished(5000))
        m_player.kill();
}

// The player's own visible window of exactly that title; a second start that hands its files
// over never counts.
QString TestToolUse::window(const QString& name, int timeoutMs)
{
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < timeoutMs) {
        const QString ids = TestMedia::run("xdotool", {"search", "--all", "--onlyvisible", "--pid",
                                                      QString::number(m_player.processId()), "--name", "^" + name + "$"}).trimmed();
        if (!ids.isEmpty() && !ids.contains(' ') && ids.at(0).isDigit())
            return ids.split('\n').last();
        QTest::qWait(200);
    }
    return {};
}

void TestToolUse::xdo(const QStringList& args)
{
    QProcess::execute("xdotool", args);
    QTest::qWait(150);
}

void TestToolUse::click(const QString& win, int x, int y)
{
    xdo({"mousemove", "--window", win, QString::number(x), QString::number(y)});
    xdo({"click", "1"});
}

// Qt's own file dialog takes a typed full path in its path field. Its view loads after the
// window maps and may drop early keys on a busy machine, so the answer is typed again until
// the dialog closes. Without a window manager a dialog may map below the window that was
// raised last, so it is raised before each try.
void TestToolUse::answerFileDialog(const QString& title, const QString& path)
{
    const QString dialog = window(title);
    QVERIFY2(!dialog.isEmpty(), qPrintable(title));
    for (int attempt = 0; attempt < 5 && !window(title, 100).isEmpty(); ++attempt) {
        QTest::qWait(1000);
        xdo({"windowraise", dialog});
        click(dialog, 200, 20);
        xdo({"key", "ctrl+a"});
        xdo({"type", "--delay", "5", path});
        xdo({"key", "Return"});
        QTest::qWait(1000);
    }
    QVERIFY2(window(title, 100).isEmpty(), qPrintable(title + " stays open"));
}

bool TestToolUse::waitForLine(const QString& needle, int timeoutMs)
{
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < timeoutMs) {
        m_player.waitForReadyRead(100);
        m_seen += m_player.readAll();
        const int at = m_seen.indexOf(needle.toUtf8(), m_seenUpTo);
        if (at >= 0) {
            m_seenUpTo = at + needle.size();
            return true;
        }
    }
    qWarning().noquote() << "output since last match:" << m_seen.mid(m_seenUpTo);
    return false;
}

QRect TestToolUse::windowRect(const QString& win)
{
    const QString geometry = TestMedia::run("xdotool", {"getwindowgeometry", "--shell", win});
    QMap<QString, int> g;
    for (auto it = QRegularExpression("(X|Y|WIDTH|HEIGHT)=(\\d+)").globalMatch(geometry); it.hasNext();) {
        const auto m = it.next();
        g[m.captured(1)] = m.captured(2).toInt();
    }
    return {g["X"], g["Y"], g["WIDTH"], g["HEIGHT"]};
}

// The screen itself, not a window's own picture: a translucent window's grab does not keep
// its colours, and what covers a window is what a click there reaches. Grabbed in this process:
// a grabbing program started per look can take seconds on a busy machine, long enough for the
// job being watched to end.
QImage TestToolUse::grab(const QRect& area)
{
    return QGuiApplication::primaryScreen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()).toImage();
}

// Where a colour (within a few steps per channel) sits within an area of the screen.
QRect TestToolUse::colourBox(const QRect& area, QColor colour)
{
    const QImage image = grab(area);
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (qAbs(c.red() - colour.red()) <= 10 && qAbs(c.green() - colour.green()) <= 10 &&
                qAbs(c.blue() - colour.blue()) <= 10)
                box |= QRect(x, y, 1, 1);
        }
    return box.translated(area.topLeft());
}

// The count's dark digits on the display's white, which the rising fill turns light blue: in the
// blue channel the fill changes a pixel by a few steps at most, a digit by far more. The display
// must still be up: its end uncovers the dark window below.
bool TestToolUse::countMoved(const QImage& before, const QImage& now)
{
    if (qBlue(now.pixel(0, 0)) < 200)
        return false;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (qAbs(qBlue(before.pixel(x, y)) - qBlue(now.pixel(x, y))) > 60)
                return true;
    return false;
}

// The message box holds the other windows until its OK (bottom right) is pressed.
void TestToolUse::dismissMessage()
{
    const QString box = window("Message");
    QVERIFY(!box.isEmpty());
    const QRect r = windowRect(box);
    xdo({"mousemove", QString::number(r.right() - 60), QString::number(r.bottom() - 40)});
    xdo({"click", "1"});
    QTRY_VERIFY(window("Message", 500).isEmpty());
}

void TestToolUse::handOver(const QStringList& args)
{
    QProcess second;
    second.setProcessEnvironment(m_player.processEnvironment());
    second.start(m_app + "/vidora", args);
    QVERIFY(second.waitForFinished(10000));
    QCOMPARE(second.exitCode(), 0);
}

void TestToolUse::clipCutsTheDraggedRange()
{
    const QString tool = window("Video capture");
    QVERIFY(!tool.isEmpty());
    xdo({"windowraise", tool}); // there is no window manager to keep the newest window on top
    QTest::qWait(1000);
    // The selection bar runs between the two handles; the end handle goes to its middle, so
    // the cut ends at 2 s of 4.
    const QRect whole = windowRect(tool);
    QRect end, bar;
    QTRY_VERIFY_WITH_TIMEOUT((end = colourBox(whole, QColor(0xF4, 0x43, 0x36)),
                              bar = colourBox({whole.x(), end.center().y() - 1, whole.width(), 3}, QColor(0x4c, 0xaf, 0x50)),
                              bar.width() > 100 && end.width() > 10), 20000);
    xdo({"mousemove", QString::number(end.center().x()), QString::number(end.center().y())});
    xdo({"mousedown", "1"});
    for (int x = end.center().x(); x >= bar.center().x(); x -= 10)
        xdo({"mousemove", QString::number(x), QString::number(end.center().y())});
    xdo({"mouseup", "1"});

    // Keys typed while a busy machine is still building the dialog can land elsewhere and
    // cancel it, which returns the window to idle; a person would simply try again.
    bool started = false;
    for (int attempt = 0; attempt < 3 && !started; ++attempt) {
        pressExport(tool);
        answerFileDialog("Save File to ...", m_out + "/cut");
        started = waitForLine("cropVideo:", 5000);
    }
    QVERIFY(started);
    QVERIFY(waitForLine("export finished: true", 30000));
    QVERIFY2(qAbs(TestMedia::seconds(m_out + "/cut.mp4") - 2) < 0.6,
             qPrintable(QString::number(TestMedia::seconds(m_out + "/cut.mp4"))));
    QTRY_VERIFY(TestMedia::fileBytes(m_opened).contains(m_out.toUtf8()));
    dismissMessage();
}

void TestToolUse::compressShowsProgressStopsAndCompletes()
{
    handOver({"-compress", m_long});
    const QString tool = window("Video compression");
    QVERIFY(!tool.isEmpty());
    xdo({"windowraise", tool});
    QTest::qWait(500);
    pressExport(tool);
    QVERIFY(waitForLine("compressVideo:", 15000));

    // Once frames are counted, the count in the middle of the progress display moves.
    QVERIFY(waitForLine("Video frame index", 15000));
    const QRect label(windowRect(tool).topLeft() + QPoint(280 - 70, 300 - 22), QSize(140, 44));
    const QImage before = grab(label);
    QVERIFY(qGray(before.pixel(0, 0)) > 200); // the display is up
    QTRY_VERIFY_WITH_TIMEOUT(countMoved(before, grab(label)), 10000);

    click(tool, 280, 300); // the stop disc over the progress
    QVERIFY(waitForLine("Video compression cancelled", 15000));
    QVERIFY(waitForLine("export finished: false", 15000));
    dismissMessage();
    QVERIFY(!TestMedia::plays(m_out + "/long_export.mp4") ||
            TestMedia::seconds(m_out + "/long_export.mp4") < 55); // stopped well before the end

    // Exporting again after a stop runs to its end.
    handOver({"-compress", m_a});
    QTest::qWait(500);
    pressExport(tool);
    QVERIFY(waitForLine("compressVideo:", 15000));
    QVERIFY(waitForLine("export finished: true", 60000));
    QVERIFY(qAbs(TestMedia::seconds(m_out + "/a_export.mp4") - 4) < 0.5);
    dismissMessage();
}

// Rows of the control bar's tool menu, from its button, in the player's window.
QString TestToolUse::openFromToolMenu(int row, const QString& title)
{
    const QString player = window("Player");
    if (player.isEmpty())
        return {};
    xdo({"windowraise", player});
    click(player, 744, 615);
    QTest::qWait(500); // the menu unrolls
    click(player, 750, 510 + 24 * row);
    const QString tool = window(title);
    if (!tool.isEmpty())
        xdo({"windowraise", tool});
    QTest::qWait(500);
    return tool;
}

void TestToolUse::conversionFromTheToolMenu()
{
    const QString tool = openFromToolMenu(3, "Format Conversion");
    QVERIFY(!tool.isEmpty());
    click(tool, 469, 86);
    answerFileDialog("Select Files", m_a);
    click(tool, 425, 228);  // resolution list
    QTest::qWait(500);
    click(tool, 420, 289);  // its "360p" row
    QByteArray opened = TestMedia::fileBytes(m_opened);
    pressExport(tool);
    QVERIFY(waitForLine("export finished: true", 60000));
    QCOMPARE(TestMedia::probe(m_out + "/a_export.mp4", "stream=codec_name,width,height", "v:0"),
             QStringLiteral("h264\n640\n360"));
    QTRY_VERIFY(TestMedia::fileBytes(m_opened).size() > opened.size());
    dismissMessage();
}

void TestToolUse::mergeFromTheToolMenu()
{
    const QString tool = openFromToolMenu(2, "Video Merger");
    QVERIFY(!tool.isEmpty());
    click(tool, 110, 451);  // the add card, then again where it moved to
    answerFileDialog("Select Video Files", m_a);
    click(tool, 252, 451);
    answerFileDialog("Select Video Files", m_a);
    pressExport(tool);
    answerFileDialog("保存文件到...", m_out + "/merged");
    QVERIFY(waitForLine("export finished: true", 30000));
    QVERIFY(qAbs(TestMedia::seconds(m_out + "/merged.mp4") - 8) < 0.3);
    dismissMessage();
}

QTEST_MAIN(TestToolUse)
#include "tst_tooluse.moc"
