// Main window figures, run inside an X server of its own by bench/mainwindow_bench.sh:
//   mainwindow_bench startup PROGRAM [ARG...]   start to the window's final idle look on screen,
//                                              then the program's resident memory at idle
//   mainwindow_bench hover PROGRAM FILE         mouse move over the seek bar to the new preview
//                                              frame on screen, through the real window
//   mainwindow_bench history FOLDER             the real play list fed a model of every file in
//                                              FOLDER: card on screen to its thumbnail drawn,
//                                              and how long the GUI thread is held while scrolling
// Programs run with a private home and runtime folder, so no user setting and no running
// instance takes part.
#include "QmlRegistration.h"

#include <QCursor>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <cstdio>
#include <map>
#include <spdlog/spdlog.h>
#include <vector>

namespace {

double median(std::vector<double> v)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, static_cast<size_t>(p * (v.size() - 1) + 0.5))];
}

QImage grab(const QRect& area = QRect())
{
    QScreen* screen = QGuiApplication::primaryScreen();
    const QRect r = area.isNull() ? screen->geometry() : area;
    return screen->grabWindow(0, r.x(), r.y(), r.width(), r.height()).toImage();
}

// Sleeps in the event loop: polling it would keep one of the two cores busy while the
// program under test starts and decodes.
void pump(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

long residentKb(qint64 pid)
{
    QFile f(QStringLiteral("/proc/%1/smaps_rollup").arg(pid));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("Rss:"))
            return line.mid(4).trimmed().split(' ').value(0).toLong();
    return -1;
}

struct Launched
{
    QTemporaryDir home;
    QProcess process;
};

// The private folders keep user files, a running instance and earlier runs out of the figures.
void launch(Launched& run, const QString& program, const QStringList& args)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    const QString home = run.home.path();
    QDir(home).mkpath(QStringLiteral("runtime"));
    QFile::setPermissions(home + "/runtime", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    env.insert("HOME", home);
    env.insert("XDG_RUNTIME_DIR", home + "/runtime");
    env.insert("XDG_CONFIG_HOME", home + "/config");
    env.insert("XDG_DATA_HOME", home + "/data");
    // BENCH_CACHE_HOME keeps one program's caches (Mesa's compiled shaders above all) from one
    // start to the next, as a user's second and later starts find them.
    const QString cache = qEnvironmentVariable("BENCH_CACHE_HOME");
    env.insert("XDG_CACHE_HOME", cache.isEmpty() ? home + "/cache" : cache);
    run.process.setProcessEnvironment(env);
    run.process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    run.process.setStandardOutputFile(QProcess::nullDevice());
    run.process.start(program, args);
}

void stop(QProcess& process)
{
    process.terminate();
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished(2000);
    }
}

// The screen is compared every 20 ms; the program is on screen in full at the last change
// before 1.5 s without any. Its memory is read 3 s later, when start-up work has long ended.
int startup(const QString& program, const QStringList& args)
{
    Launched run;
    QElapsedTimer clock;
    QImage last = grab();
    clock.start();
    launch(run, program, args);
    qint64 lastChange = -1;
    while (clock.elapsed() < 20000) {
        QThread::msleep(20);
        const QImage now = grab();
        const qint64 at = clock.elapsed();
        if (now != last) {
            lastChange = at;
            last = now;
        } else if (lastChange >= 0 && at - lastChange >= 1500) {
            break;
        }
    }
    pump(3000);
    const long rss = residentKb(run.process.processId());
    std::printf("on-screen-ms %lld rss-kb %ld\n", static_cast<long long>(lastChange), rss);
    stop(run.process);
    return lastChange >= 0 && rss > 0 ? 0 : 1;
}

// Waits until `area` has not changed for `quietMs`; returns the time of its last change
// (measured from `clock`), or -1 when it kept changing until `limitMs`.
qint64 settle(const QRect& area, const QElapsedTimer& clock, int quietMs, int limitMs)
{
    QImage last = grab(area);
    qint64 lastChange = clock.elapsed();
    bool changed = false;
    while (clock.elapsed() < limitMs) {
        QThread::msleep(2);
        const QImage now = grab(area);
        if (now != last) {
            last = now;
            lastChange = clock.elapsed();
            changed = true;
        } else if (clock.elapsed() - lastChange >= quietMs) {
            return changed ? lastChange : -1;
        }
    }
    return -1;
}

void xdo(const QStringList& args)
{
    QProcess xdotool;
    xdotool.setStandardOutputFile(QProcess::nullDevice());
    xdotool.start(QStringLiteral("xdotool"), args);
    xdotool.waitForFinished();
}

// The window sits at the screen's top-left corner (no window manager); its body starts 5 px
// in, the seek bar runs along the control bar's top, 555 px down. Near the bar's left end the
// preview box stays put at the body's edge, so only the picture in it changes.
int hover(const QString& program, const QString& file)
{
    Launched run;
    launch(run, program, {file});
    pump(6000);                                     // window up and the file playing
    xdo({"mousemove", "499", "615", "click", "1"}); // the play button: pause
    pump(1500);

    const int seekY = 560;
    const QRect picture(9, 421, 200, 96);           // the box without its time label
    // 5.5 s, then 1.4 s, and so on: the first move must ask for another frame than the one
    // the window prepared while the pointer crossed the control bar (0 s, the keyframe of 1.4 s).
    const int positions[2] = {100, 25};
    std::vector<double> latencies;
    QStringList each;
    double first = -1;
    for (int i = 0; i < 13; ++i) {
        // The pointer is moved from here (the X server warps it, as a real mouse moves it), so
        // the clock starts at the move itself and not at a helper program's start.
        QElapsedTimer clock;
        clock.start();
        QCursor::setPos(QGuiApplication::primaryScreen(), positions[i % 2], seekY);
        // The first move shows the empty box before its first frame: the frame is the last
        // change before a second without any.
        const qint64 drawn = settle(picture, clock, i == 0 ? 1000 : 250, 3000);
        each << QString::number(drawn);
        if (i == 0)
            first = drawn;
        else if (drawn >= 0)
            latencies.push_back(drawn);
        pump(400);                                  // past the 300 ms between previews
    }
    stop(run.process);
    std::printf("hover first-ms %.0f median-ms %.1f max-ms %.1f moves %zu every move: %s\n", first,
                median(latencies), latencies.empty() ? 0.0 : *std::max_element(latencies.begin(), latencies.end()),
                latencies.size(), qPrintable(each.join(QLatin1Char(' '))));
    return latencies.size() >= 10 ? 0 : 1;
}

const char* kHistoryScene = R"(
import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0
import "qrc:/qml"
import "qrc:/qml/MainLogic.js" as Logic

Window {
    width: 260; height: 700; visible: true
    color: Theme.windowBackground
    property alias panel: panel
    ListModel { id: rows }
    function fill(paths) {
        for (var i = 0; i < paths.length; ++i)
            rows.append({ url: paths[i], filename: paths[i].split("/").pop(), lastPosition: i % 7,
                          duration: 10, is_top: 0 })
    }
    HistoryPanel { id: panel; anchors.right: parent.right; height: parent.height; model: rows }
    // As the main window routes them.
    Connections {
        target: ImageProvider
        function onImageLoaded(index, filePath) {
            if (Logic.isCardImage(filePath))
                panel.setCardImage(index, "image://ImageProvider/" + filePath)
        }
    }
}
)";

// Per frame on screen: which cards lie in the list's view, and which of those show a picture.
int history(const QString& folder)
{
    spdlog::set_level(spdlog::level::warn);
    QStringList paths;
    for (const QString& name : QDir(folder).entryList({"*.mp4"}, QDir::Files, QDir::Name))
        paths << QUrl::fromLocalFile(QDir(folder).filePath(name)).toString();

    QQmlApplicationEngine engine;
    registerQmlTypes();
    addModuleImportPath(engine);
    engine.loadData(kHistoryScene);
    finishEngineSetup(engine);
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    if (!window)
        return 1;
    QMetaObject::invokeMethod(window, "fill", Q_ARG(QVariant, QVariant(paths)));
    pump(500);

    QElapsedTimer clock;
    clock.start();
    std::map<int, qint64> shown, drawn;
    QQuickItem* list = nullptr;
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] {
        if (!list)
            list = window->findChild<QQuickItem*>(QStringLiteral("historyList"));
        if (!list)
            return;
        const double top = list->property("contentY").toDouble();
        const double bottom = top + list->height();
        const auto cards = list->property("contentItem").value<QQuickItem*>()->childItems();
        for (QQuickItem* card : cards) {
            const QVariant index = card->property("indexNum");
            if (!index.isValid() || card->y() + card->height() <= top || card->y() >= bottom)
                continue;
            const int row = index.toInt();
            shown.emplace(row, clock.elapsed());
            bool pictured = false;
            for (QQuickItem* child : card->findChildren<QQuickItem*>())
                if (qstrcmp(child->metaObject()->className(), "QQuickImage") == 0 &&
                    child->property("source").toUrl().scheme() == QLatin1String("image") &&
                    child->property("status").toInt() == 1)
                    pictured = true;
            if (pictured)
                drawn.emplace(row, clock.elapsed());
        }
    });

    QObject* panel = window->property("panel").value<QObject*>();
    const qint64 openAt = clock.elapsed();
    panel->setProperty("open", true);
    pump(3000);                                     // the first screen's thumbnails
    const qint64 scrollStart = clock.elapsed();

    // A steady brisk scroll through every row, 25 px per 16 ms (about 24 rows a second), with
    // the event loop's lateness sampled by the same timer.
    std::vector<double> lateness;
    QElapsedTimer tick;
    tick.start();
    QTimer scroll;
    scroll.setInterval(16);
    double target = 0;
    const double end = std::max(0.0, list ? list->property("contentHeight").toDouble() - list->height() : 0.0);
    QObject::connect(&scroll, &QTimer::timeout, [&] {
        lateness.push_back(std::max<qint64>(0, tick.restart() - 16));
        target = std::min(end, target + 25);
        list->setProperty("contentY", target);
    });
    scroll.start();
    while (target < end)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    scroll.stop();
    pump(3000);                                     // the last screen's thumbnails

    // Cards of the first screen count from the opening request, the others from their first
    // frame on screen.
    std::vector<double> opened, scrolled;
    for (const auto& [row, at] : drawn) {
        if (!shown.count(row))
            continue;
        if (shown[row] < scrollStart)
            opened.push_back(static_cast<double>(at - openAt));
        else
            scrolled.push_back(static_cast<double>(at - shown[row]));
    }
    const auto late = std::count_if(lateness.begin(), lateness.end(), [](double v) { return v > 50; });
    std::printf("history rows %lld | opening: %zu cards, thumbnail drawn after median %.0f ms, max %.0f ms | "
                "scrolling: %zu cards on screen, %zu drawn while on screen, after median %.0f ms, p90 %.0f ms | "
                "event loop late by median %.0f ms, max %.0f ms, %lld of %zu ticks over 50 ms\n",
                static_cast<long long>(paths.size()), opened.size(), median(opened),
                opened.empty() ? 0.0 : *std::max_element(opened.begin(), opened.end()),
                shown.size() - opened.size(), scrolled.size(), median(scrolled), percentile(scrolled, 0.9),
                median(lateness), lateness.empty() ? 0.0 : *std::max_element(lateness.begin(), lateness.end()),
                static_cast<long long>(late), lateness.size());
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    const QString mode = args.value(0);
    if (mode == QLatin1String("startup") && args.size() >= 2)
        return startup(args.at(1), args.mid(2));
    if (mode == QLatin1String("hover") && args.size() == 3)
        return hover(args.at(1), args.at(2));
    if (mode == QLatin1String("history") && args.size() == 2)
        return history(args.at(1));
    std::fprintf(stderr, "usage: mainwindow_bench startup PROGRAM [ARG...] | hover PROGRAM FILE | history FOLDER\n");
    return 2;
}
