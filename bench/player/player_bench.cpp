// Playback and history figures, measured the same way for Vidora's player view and for the
// mpv command-line player. Run by bench/player/player_bench.sh inside an X server; not a test.
//
//   player_bench ttff PLAYER FILE          time from the load request to the first frame on
//                                          the X screen (one run, milliseconds)
//   player_bench cpu PLAYER FILE SECONDS   CPU and frame counts while playing
//   player_bench history ROWS FILE         history writes at load and stop, GUI thread
//
// PLAYER is "vidora" (MpvView alone in a bare QQuickWindow with the program's window format),
// "mpv" (the command-line player on the renderer libmpv gives Vidora: --vo=gpu, which on a
// software renderer needs --gpu-sw) or "mpv-auto" (the command-line player's own choice of
// video output, which on this machine is SDL's renderer). All get a 1280x720 window at the
// screen's top-left corner, no audio output, software decoding and no user config;
// BENCH_MPV="option=value ..." gives all of them the same extra options. "First frame" is the
// moment a watched pixel of the window turns from black to the picture, read from the X
// server by a thread with its own connection. Step timings, per-thread CPU and libmpv's own
// render pass timings go to the error stream; the result is the last line on stdout.
#include "MpvView.h"
#include "SqlHelper.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QMutex>
#include <QOpenGLContext>
#include <QProcess>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QSurfaceFormat>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <sqlite3.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kWidth = 1280;
constexpr int kHeight = 720;
// Inside the first colour bar of a testsrc2 picture, clear of the time stamp.
constexpr int kProbeX = 100;
constexpr int kProbeY = 150;

// Watches one screen pixel from its own thread and X connection; records when it stops
// being black.
class PixelWatch
{
public:
    bool start()
    {
        m_display = XOpenDisplay(nullptr);
        if (!m_display)
            return false;
        m_thread = std::thread([this] {
            const Window root = DefaultRootWindow(m_display);
            while (!m_stop) {
                XImage* image = XGetImage(m_display, root, kProbeX, kProbeY, 1, 1, AllPlanes, ZPixmap);
                if (image) {
                    const unsigned long pixel = XGetPixel(image, 0, 0);
                    XDestroyImage(image);
                    const int sum = int((pixel >> 16) & 0xff) + int((pixel >> 8) & 0xff) + int(pixel & 0xff);
                    if (sum > 150 && m_armed && m_seenAt < 0)
                        m_seenAt = m_clock.nsecsElapsed();
                }
                std::this_thread::sleep_for(std::chrono::microseconds(500));
            }
        });
        return true;
    }
    ~PixelWatch()
    {
        stop();
        if (m_display)
            XCloseDisplay(m_display);
    }
    void arm()
    {
        m_clock.start();
        m_seenAt = -1;
        m_armed = true;
    }
    // Milliseconds from arm() to the first non-black reading, or -1. The watch thread ends
    // here, so it costs nothing during later measurements.
    double waitMs(int timeoutMs)
    {
        QEventLoop loop;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
            if (m_seenAt >= 0)
                loop.quit();
        });
        QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
        poll.start(1);
        loop.exec();
        stop();
        return m_seenAt < 0 ? -1.0 : double(m_seenAt) / 1e6;
    }
    void stop()
    {
        m_stop = true;
        if (m_thread.joinable())
            m_thread.join();
    }

private:
    Display* m_display = nullptr;
    std::thread m_thread;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_armed{false};
    std::atomic<qint64> m_seenAt{-1};
    QElapsedTimer m_clock;
};

// User plus system CPU time of a process, in seconds.
double cpuSeconds(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return 0.0;
    const QByteArray text = stat.readAll();
    const QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    // Fields after the name: state is index 0, utime 11, stime 12.
    return (fields.value(11).toDouble() + fields.value(12).toDouble()) / double(sysconf(_SC_CLK_TCK));
}

// CPU seconds per thread name of a process (threads of one name summed), to show where the
// time goes.
QMap<QString, double> cpuByThread(qint64 pid)
{
    QMap<QString, double> byName;
    const QStringList tasks =
        QDir(QStringLiteral("/proc/%1/task").arg(pid)).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& task : tasks) {
        QFile stat(QStringLiteral("/proc/%1/task/%2/stat").arg(pid).arg(task));
        if (!stat.open(QIODevice::ReadOnly))
            continue;
        const QByteArray text = stat.readAll();
        const int open = text.indexOf('('), close = text.lastIndexOf(')');
        const QString name = QString::fromUtf8(text.mid(open + 1, close - open - 1));
        const QList<QByteArray> fields = text.mid(close + 2).split(' ');
        byName[name] +=
            (fields.value(11).toDouble() + fields.value(12).toDouble()) / double(sysconf(_SC_CLK_TCK));
    }
    return byName;
}

// Waits without spinning, so the bench itself adds no CPU to the player it measures.
void pause(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Vidora
{
    QQuickWindow window;
    MpvView* view = nullptr;

    bool open()
    {
        window.setFlags(Qt::FramelessWindowHint);
        window.setGeometry(0, 0, kWidth, kHeight);
        window.setColor(Qt::black);
        view = new MpvView(window.contentItem());
        view->setSize(QSizeF(kWidth, kHeight));
        QSignalSpy ready(view, &MpvView::initCompleted);
        window.show();
        if (!ready.wait(15000))
            return false;
        pause(500);
        return true;
    }
};

struct MpvCli
{
    QProcess process;
    QLocalSocket ipc;
    QString socketPath;

    bool open(const QString& player, const QString& dir, bool loop)
    {
        socketPath = dir + "/mpv.sock";
        QStringList args{"--no-config",
                         "--idle=yes",
                         "--force-window=immediate",
                         "--no-border",
                         QStringLiteral("--geometry=%1x%2+0+0").arg(kWidth).arg(kHeight),
                         "--ao=null",
                         "--hwdec=no",
                         "--osc=no",
                         "--really-quiet",
                         "--input-ipc-server=" + socketPath};
        if (loop)
            args << "--loop-file=inf";
        if (player == "mpv")
            args << "--vo=gpu" << "--gpu-sw=yes";
        for (const QString& option : qEnvironmentVariable("BENCH_MPV").split(' ', Qt::SkipEmptyParts))
            args << "--" + option;
        process.start("mpv", args);
        if (!process.waitForStarted(5000))
            return false;
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 10000) {
            ipc.connectToServer(socketPath);
            if (ipc.waitForConnected(200))
                break;
            pause(50);
        }
        if (ipc.state() != QLocalSocket::ConnectedState)
            return false;
        pause(1500); // the window is mapped and drawn black
        return true;
    }
    void load(const QString& file)
    {
        ipc.write(QStringLiteral("{\"command\":[\"loadfile\",\"%1\"]}\n").arg(file).toUtf8());
        ipc.flush();
    }
    // A property's value over the IPC socket (events and other replies are skipped).
    QVariant get(const QString& property)
    {
        const int id = ++m_requests;
        ipc.write(QStringLiteral("{\"command\":[\"get_property\",\"%1\"],\"request_id\":%2}\n")
                      .arg(property)
                      .arg(id)
                      .toUtf8());
        ipc.flush();
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 3000) {
            while (ipc.canReadLine()) {
                const QJsonObject reply = QJsonDocument::fromJson(ipc.readLine()).object();
                if (reply.value("request_id").toInt() == id)
                    return reply.value("data").toVariant();
            }
            ipc.waitForReadyRead(100);
        }
        return {};
    }
    int m_requests = 0;
    ~MpvCli()
    {
        if (ipc.state() == QLocalSocket::ConnectedState) {
            ipc.write("{\"command\":[\"quit\"]}\n");
            ipc.flush();
            ipc.waitForBytesWritten(1000);
        }
        if (!process.waitForFinished(3000)) {
            process.kill();
            process.waitForFinished(3000);
        }
    }
};

int timeToFirstFrame(const QString& player, const QString& file, const QString& dir)
{
    PixelWatch watch;
    if (!watch.start()) {
        std::fprintf(stderr, "no X display\n");
        return 2;
    }
    double ms = -1.0;
    if (player == "vidora") {
        Vidora vidora;
        if (!vidora.open())
            return 2;
        // Where the time goes: the controller's events as the GUI thread sees them, and the
        // scene graph's first frame presented after the video was configured.
        QElapsedTimer clock;
        double started = -1, loaded = -1, reconfig = -1;
        std::atomic<qint64> firstSwap{-1};
        std::atomic<bool> configured{false};
        MpvView* view = vidora.view;
        QObject scope; // ends the connections below before the locals they use
        QObject::connect(view, &MpvView::fileStarted, &scope, [&] { started = clock.nsecsElapsed() / 1e6; });
        QObject::connect(view, &MpvView::fileLoaded, &scope, [&] { loaded = clock.nsecsElapsed() / 1e6; });
        QObject::connect(view, &MpvView::videoReconfig, &scope, [&] {
            reconfig = clock.nsecsElapsed() / 1e6;
            configured = true;
        });
        QObject::connect(
            &vidora.window, &QQuickWindow::frameSwapped, &scope,
            [&] {
                qint64 none = -1;
                if (configured)
                    firstSwap.compare_exchange_strong(none, clock.nsecsElapsed());
            },
            Qt::DirectConnection);
        // Scene-graph frames after the load: [start, end of rendering] in ms.
        QVector<QPair<double, double>> passes;
        QMutex passLock;
        double passStart = 0;
        QObject::connect(
            &vidora.window, &QQuickWindow::beforeRendering, &scope,
            [&] { passStart = clock.nsecsElapsed() / 1e6; }, Qt::DirectConnection);
        QObject::connect(
            &vidora.window, &QQuickWindow::afterRendering, &scope,
            [&] {
                QMutexLocker lock(&passLock);
                passes << qMakePair(passStart, clock.nsecsElapsed() / 1e6);
            },
            Qt::DirectConnection);
        watch.arm();
        clock.start();
        vidora.view->loadFile(file);
        ms = watch.waitMs(15000);
        {
            QMutexLocker lock(&passLock);
            QString text;
            for (const auto& pass : passes)
                text += QStringLiteral(" [%1-%2]").arg(pass.first, 0, 'f', 1).arg(pass.second, 0, 'f', 1);
            std::fprintf(stderr, "frames rendered:%s\n", qPrintable(text));
        }
        std::fprintf(stderr,
                     "steps, ms: fileStarted %.1f, fileLoaded %.1f, videoReconfig %.1f, first swap %.1f, on "
                     "screen %.1f\n",
                     started, loaded, reconfig, double(firstSwap) / 1e6, ms);
        vidora.view->stop();
    } else {
        MpvCli mpv;
        if (!mpv.open(player, dir, false))
            return 2;
        watch.arm();
        mpv.load(file);
        ms = watch.waitMs(15000);
    }
    std::printf("%.1f\n", ms);
    return ms < 0 ? 1 : 0;
}

// What one player did over the measured span: CPU time, per thread, and libmpv's frame counts.
struct Sample
{
    double cpu = 0.0;
    QMap<QString, double> threads;
    qint64 frame = 0;          // estimated-frame-number: frames due so far, shown or not
    qint64 dropped = 0;        // frame-drop-count: frames the video output skipped
    qint64 decoderDropped = 0; // decoder-frame-drop-count
    qint64 delayed = 0;        // vo-delayed-frame-count: frames shown late
    int sceneFrames = 0;       // scene-graph frames rendered (Vidora)
    int swaps = 0;             // of which presented on screen (Vidora)

    template <typename Get>
    static Sample take(qint64 pid, Get get, int sceneFrames, int swaps)
    {
        Sample s;
        s.cpu = cpuSeconds(pid);
        s.threads = cpuByThread(pid);
        s.frame = get("estimated-frame-number").toLongLong();
        s.dropped = get("frame-drop-count").toLongLong();
        s.decoderDropped = get("decoder-frame-drop-count").toLongLong();
        s.delayed = get("vo-delayed-frame-count").toLongLong();
        s.sceneFrames = sceneFrames;
        s.swaps = swaps;
        return s;
    }
};

// libmpv's own timings of its render passes (average per frame), from "vo-passes".
QString passTimings(const QVariant& passes)
{
    QString text;
    for (const QVariant& pass : passes.toMap().value("fresh").toList()) {
        const QVariantMap map = pass.toMap();
        text += QStringLiteral(" [%1] %2 ms;")
                    .arg(map.value("desc").toString())
                    .arg(map.value("avg").toDouble() / 1e6, 0, 'f', 2);
    }
    return text;
}

int cpuWhilePlaying(const QString& player, const QString& file, const QString& dir, int seconds)
{
    PixelWatch watch;
    watch.start();
    std::atomic<int> sceneFrames{0}, swaps{0};
    Sample before, after;
    double wall = 0.0;
    QString passes;
    const auto measure = [&](qint64 pid, auto get) {
        pause(4000); // past start-up, the first shaders and the first seconds of decoding
        before = Sample::take(pid, get, sceneFrames, swaps);
        QElapsedTimer timer;
        timer.start();
        pause(seconds * 1000);
        after = Sample::take(pid, get, sceneFrames, swaps);
        wall = double(timer.elapsed()) / 1000.0;
        passes = passTimings(get("vo-passes"));
    };
    if (player == "vidora") {
        Vidora vidora;
        if (!vidora.open())
            return 2;
        vidora.view->setPropertyBlocking("loop-file", "inf");
        QObject::connect(
            &vidora.window, &QQuickWindow::beforeRendering, vidora.view, [&] { ++sceneFrames; },
            Qt::DirectConnection);
        QObject::connect(
            &vidora.window, &QQuickWindow::frameSwapped, vidora.view, [&] { ++swaps; }, Qt::DirectConnection);
        watch.arm();
        vidora.view->loadFile(file);
        if (watch.waitMs(15000) < 0)
            return 1;
        measure(QCoreApplication::applicationPid(), [&](const char* name) { return vidora.view->getProperty(name); });
        vidora.view->stop();
    } else {
        MpvCli mpv;
        if (!mpv.open(player, dir, true))
            return 2;
        watch.arm();
        mpv.load(file);
        if (watch.waitMs(15000) < 0)
            return 1;
        measure(mpv.process.processId(), [&](const char* name) { return mpv.get(name); });
    }

    QString threads;
    for (auto it = after.threads.cbegin(); it != after.threads.cend(); ++it) {
        const double share = 100.0 * (it.value() - before.threads.value(it.key())) / wall;
        if (share >= 0.5)
            threads += QStringLiteral(" %1 %2").arg(it.key()).arg(share, 0, 'f', 1);
    }
    std::fprintf(stderr, "threads, %% of a core:%s\n", qPrintable(threads));
    std::fprintf(stderr, "libmpv passes:%s\n", qPrintable(passes));

    const qint64 dropped = after.dropped - before.dropped;
    const qint64 decoderDropped = after.decoderDropped - before.decoderDropped;
    const double shown = double(after.frame - before.frame - dropped - decoderDropped);
    const double cpu = after.cpu - before.cpu;
    const auto rate = [&](int count) {
        return player == "vidora" ? QString::number(count / wall, 'f', 1) : QStringLiteral("-");
    };
    // One line: CPU in % of a core, frames per second, frame counts over the span, and CPU
    // milliseconds per frame shown (the figure that least depends on the machine's load).
    std::printf("cpu %.1f shown/s %.1f presented/s %s scene-frames/s %s dropped %lld delayed %lld "
                "decoder-dropped %lld cpu-ms/frame %.2f\n",
                100.0 * cpu / wall, shown / wall, qPrintable(rate(after.swaps - before.swaps)),
                qPrintable(rate(after.sceneFrames - before.sceneFrames)), dropped, after.delayed - before.delayed,
                decoderDropped, shown > 0 ? 1000.0 * cpu / shown : 0.0);
    return 0;
}

// Median and maximum of a list of milliseconds.
QString summary(QVector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    return QStringLiteral("median %1 ms, max %2 ms")
        .arg(ms.at(ms.size() / 2), 0, 'f', 3)
        .arg(ms.last(), 0, 'f', 3);
}

int historyWrites(int rows, const QString& file)
{
    // The store under test is the one the view uses: video_history.db in the current folder.
    SqlHelper* store = SqlHelper::instance();
    store->clearHistory();
    sqlite3_exec(store->connection(), "BEGIN", nullptr, nullptr, nullptr);
    for (int i = 0; i < rows; ++i)
        store->saveVideoInfo(QStringLiteral("file:///media/video-%1.mp4").arg(i),
                             QStringLiteral("video-%1.mp4").arg(i), 3600.0, i, QByteArray(2048, 'x'), 160,
                             90);
    sqlite3_exec(store->connection(), "COMMIT", nullptr, nullptr, nullptr);
    std::printf("history table: %d rows\n", int(store->getVideoHistory(-1).size()));

    QVector<double> update, insert, read;
    QElapsedTimer timer;
    for (int i = 0; i < 50; ++i) {
        timer.start();
        store->saveVideoInfo(QStringLiteral("file:///media/video-%1.mp4").arg(i * 97 % rows), "v.mp4", 3600.0,
                             12.5, QByteArray(), 0, 0);
        update << timer.nsecsElapsed() / 1e6;
        timer.start();
        store->saveVideoInfo(QStringLiteral("file:///media/new-%1.mp4").arg(i), "n.mp4", 10.0, -1.0,
                             QByteArray(), 0, 0);
        insert << timer.nsecsElapsed() / 1e6;
        timer.start();
        store->getLastPosition(QStringLiteral("file:///media/video-%1.mp4").arg(i * 31 % rows));
        read << timer.nsecsElapsed() / 1e6;
    }
    std::printf("save of an existing row: %s\n", qPrintable(summary(update)));
    std::printf("save of a new row:       %s\n", qPrintable(summary(insert)));
    std::printf("resume position read:    %s\n", qPrintable(summary(read)));

    // The calls the GUI thread makes when the user opens and stops a file.
    Vidora vidora;
    if (!vidora.open())
        return 2;
    QVector<double> load, stop;
    for (int i = 0; i < 10; ++i) {
        QSignalSpy loaded(vidora.view, &MpvView::fileLoaded);
        timer.start();
        vidora.view->loadFile(file);
        load << timer.nsecsElapsed() / 1e6;
        loaded.wait(10000);
        pause(300);
        timer.start();
        vidora.view->stop();
        stop << timer.nsecsElapsed() / 1e6;
        pause(100);
    }
    std::printf("MpvView::loadFile on the GUI thread: %s\n", qPrintable(summary(load)));
    std::printf("MpvView::stop on the GUI thread:     %s\n", qPrintable(summary(stop)));
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    // The window format the program uses. BENCH_DEPTH=1 keeps Qt's default depth and stencil
    // buffers, with which the player draws its picture as a textured quad instead of copying it.
    if (!qEnvironmentVariableIsSet("BENCH_DEPTH")) {
        QSurfaceFormat format = QSurfaceFormat::defaultFormat();
        format.setDepthBufferSize(0);
        format.setStencilBufferSize(0);
        format.setSamples(0);
        QSurfaceFormat::setDefaultFormat(format);
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_UPDATE_IDLE_TIME"))
        qputenv("QT_QPA_UPDATE_IDLE_TIME", "0"); // as the program does
    QGuiApplication app(argc, argv);
    QStringList args = app.arguments();
    // Media paths are taken relative to the folder the bench was started from.
    for (int i = 3; i < args.size(); ++i)
        if (QFileInfo::exists(args.at(i)))
            args[i] = QFileInfo(args.at(i)).absoluteFilePath();
    QTemporaryDir dir;
    QDir::setCurrent(dir.path());
    QFile conf("mpvqt.conf");
    conf.open(QIODevice::WriteOnly);
    conf.write("ao=null\nhwdec=no\n");
    // BENCH_MPV="opt=value ..." gives both players the same extra options.
    const QStringList extra = qEnvironmentVariable("BENCH_MPV").split(' ', Qt::SkipEmptyParts);
    for (const QString& option : extra)
        conf.write(option.toUtf8() + "\n");
    conf.close();

    const QString mode = args.value(1);
    if (mode == "ttff" && args.size() == 4)
        return timeToFirstFrame(args.at(2), args.at(3), dir.path());
    if (mode == "cpu" && args.size() == 5)
        return cpuWhilePlaying(args.at(2), args.at(3), dir.path(), args.at(4).toInt());
    if (mode == "history" && args.size() == 4)
        return historyWrites(args.at(2).toInt(), args.at(3));
    std::fprintf(stderr, "usage: player_bench ttff vidora|mpv|mpv-auto FILE | cpu vidora|mpv|mpv-auto FILE SECONDS | "
                         "history ROWS FILE\n");
    return 2;
}
