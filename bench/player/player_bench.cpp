// Playback and history figures, measured the same way for Vidora and for the mpv
// command-line player. Run by bench/player/player_bench.sh inside an X server; not a test.
//
//   player_bench ttff PLAYER FILE          time from the load request to the first frame on
//                                          the X screen (one run, milliseconds)
//   player_bench start app|mpv FILE        time from the process start, with the file on its
//                                          command line, to the first frame on the X screen
//   player_bench cpu PLAYER FILE SECONDS   CPU and frame counts while playing
//   player_bench history ROWS FILE         history writes at load and stop, GUI thread
//
// PLAYER is "app" (the real program, `vidora FILE`, its video area 1280x720: title bar,
// control bar, time label and all), "vidora" (MpvView alone in a bare QQuickWindow with the
// program's window format), "mpv" (the command-line player on the renderer libmpv gives
// Vidora: --vo=gpu, which on a software renderer needs --gpu-sw) or "mpv-auto" (the
// command-line player's own choice of video output, which on this machine is SDL's renderer).
// All show the video in 1280x720 at the screen's top-left corner, with no audio output,
// software decoding and no user config; BENCH_MPV="option=value ..." gives all of them the
// same extra options. "First frame" is the moment a watched pixel of the video turns from
// black to the picture, read from the X server by a thread with its own connection. Step
// timings, per-thread CPU and libmpv's own render pass timings go to the error stream; the
// result is the last line on stdout.
#include "MpvView.h"
#include "SqlHelper.h"
#include "VideoWindowSetup.h"

#include <QDateTime>
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
// The real program's window that gives a 1280x720 video area: 5 px of shadow on each side,
// the 40 px title bar above the video and the 120 px control bar below it.
constexpr int kAppWidth = kWidth + 10;
constexpr int kAppHeight = kHeight + 10 + 40 + 120;
constexpr int kAppVideoX = 5;
constexpr int kAppVideoY = 45;

// Watches one screen pixel from its own thread and X connection; records when it stops
// being black.
class PixelWatch
{
public:
    // The video area's top-left corner on the screen.
    explicit PixelWatch(int x = 0, int y = 0) : m_x(x + kProbeX), m_y(y + kProbeY) {}
    bool start()
    {
        m_display = XOpenDisplay(nullptr);
        if (!m_display)
            return false;
        m_thread = std::thread([this] {
            const Window root = DefaultRootWindow(m_display);
            while (!m_stop) {
                XImage* image = XGetImage(m_display, root, m_x, m_y, 1, 1, AllPlanes, ZPixmap);
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
    int m_x, m_y;
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
        if (qEnvironmentVariableIsSet("BENCH_NOCLEAR"))
            window.setClearBeforeRendering(false);
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

// libmpv's JSON IPC socket: the command line's, or the one the real program's libmpv opens
// when its option file asks for it.
struct MpvIpc
{
    QLocalSocket socket;
    int requests = 0;

    bool connect(const QString& path, int timeoutMs)
    {
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < timeoutMs) {
            socket.connectToServer(path);
            if (socket.waitForConnected(200))
                return true;
            pause(20);
        }
        return false;
    }
    void command(const QString& json)
    {
        socket.write(json.toUtf8() + "\n");
        socket.flush();
    }
    // A property's value (events and other replies are skipped).
    QVariant get(const QString& property)
    {
        const int id = ++requests;
        command(QStringLiteral("{\"command\":[\"get_property\",\"%1\"],\"request_id\":%2}").arg(property).arg(id));
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < 3000) {
            while (socket.canReadLine()) {
                const QJsonObject reply = QJsonDocument::fromJson(socket.readLine()).object();
                if (reply.value("request_id").toInt() == id)
                    return reply.value("data").toVariant();
            }
            socket.waitForReadyRead(100);
        }
        return {};
    }
    ~MpvIpc()
    {
        if (socket.state() == QLocalSocket::ConnectedState)
            socket.disconnectFromServer();
    }
};

void endProcess(QProcess& process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished(3000);
    }
}

struct MpvCli
{
    QProcess process;
    MpvIpc ipc;

    // Starts the player idle with its window drawn black, or, given FILE, playing it at once.
    bool open(const QString& player, const QString& dir, bool loop, const QString& file = {})
    {
        const QString socketPath = dir + "/mpv.sock";
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
        if (!file.isEmpty())
            args << "--log-file=" + dir + "/mpv.log" << file;
        process.start("mpv", args);
        if (!process.waitForStarted(5000))
            return false;
        if (!file.isEmpty())
            return true;
        if (!ipc.connect(socketPath, 10000))
            return false;
        pause(1500); // the window is mapped and drawn black
        return true;
    }
    void load(const QString& file)
    {
        ipc.command(QStringLiteral("{\"command\":[\"loadfile\",\"%1\"]}").arg(file));
    }
    ~MpvCli()
    {
        if (ipc.socket.state() == QLocalSocket::ConnectedState)
            ipc.command(QStringLiteral("{\"command\":[\"quit\"]}"));
        if (!process.waitForFinished(3000))
            endProcess(process);
    }
};

// The real program, started from a private copy of its build folder so that its settings and
// history stay in that copy, with runtime, config and data folders of its own and no session
// bus, so that its single-instance socket and media-key service meet no one else's instance.
// Its own mpv option file switches on libmpv's IPC server, which gives the same counters as
// the command line's; the scene graph's render-loop timing log counts the frames it renders.
struct App
{
    QProcess process;
    MpvIpc ipc;
    QString folder;
    qint64 startedAt = 0; // monotonic clock, ms
    int frames = 0;       // scene-graph frames rendered and presented
    QStringList startLog; // the first scene-graph messages, stamped in ms since the start
    QByteArray pending;

    bool start(const QString& dir, bool loop, const QString& file = {})
    {
        folder = dir + "/app";
        const QString bin = folder + "/bin";
        QDir().mkpath(bin);
        QDir().mkpath(folder + "/run");
        QFile::setPermissions(folder + "/run", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QString built = qEnvironmentVariable("BENCH_VIDORA", QCoreApplication::applicationDirPath() + "/../bin");
        for (const char* name : {"vidora", "config.json", "vidora_zh_CN.qm"})
            QFile::copy(built + "/" + name, bin + "/" + name);
        QFile conf(bin + "/mpvqt.conf");
        conf.open(QIODevice::WriteOnly);
        conf.write("ao=null\nhwdec=no\ninput-ipc-server=" + folder.toUtf8() + "/mpv.sock\n");
        if (loop)
            conf.write("loop-file=inf\n");
        if (!file.isEmpty())
            conf.write("log-file=" + dir.toUtf8() + "/mpv.log\n");
        for (const QString& option : qEnvironmentVariable("BENCH_MPV").split(' ', Qt::SkipEmptyParts))
            conf.write(option.toUtf8() + "\n");
        conf.close();

        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_RUNTIME_DIR", folder + "/run");
        env.insert("XDG_CONFIG_HOME", folder + "/config");
        env.insert("XDG_DATA_HOME", folder + "/data");
        env.insert("TMPDIR", folder);
        env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/no-bus");
        env.insert("QT_LOGGING_RULES", "qt.scenegraph.time.renderloop.debug=true\nqt.scenegraph.general.debug=true");
        env.insert("QT_MESSAGE_PATTERN", "%{time boot} %{message}");
        process.setProcessEnvironment(env);
        QObject::connect(&process, &QProcess::readyReadStandardError, &process, [this] {
            pending += process.readAllStandardError();
            int end;
            while ((end = pending.indexOf('\n')) >= 0) {
                const QByteArray line = pending.left(end).trimmed();
                pending.remove(0, end + 1);
                if (line.contains("Frame rendered"))
                    ++frames;
                const int space = line.indexOf(' ');
                bool stamped = false;
                const double at = line.left(space).toDouble(&stamped) * 1000.0 - double(startedAt);
                if (stamped && startLog.size() < 8 &&
                    (line.contains("Frame rendered") || line.contains("threaded render loop")))
                    startLog << QStringLiteral("%1 %2").arg(at, 7, 'f', 0).arg(QString::fromUtf8(line.mid(space + 1, 100)));
            }
        });
        QStringList args{"-geometry", QStringLiteral("%1x%2+0+0").arg(kAppWidth).arg(kAppHeight)};
        if (!file.isEmpty())
            args << file;
        QElapsedTimer now;
        now.start();
        startedAt = now.msecsSinceReference();
        process.start(bin + "/vidora", args);
        if (!process.waitForStarted(5000))
            return false;
        if (!file.isEmpty())
            return true;
        if (!ipc.connect(folder + "/mpv.sock", 15000))
            return false;
        pause(1500); // the window is up and its first frames are drawn
        return true;
    }
    // Opens a file the way a second "vidora FILE" does: through the single-instance socket.
    void open(const QString& file)
    {
        QLocalSocket socket;
        socket.connectToServer(folder + "/run/" + "org.vidora.vidora");
        socket.waitForConnected(1000);
        socket.write(file.toUtf8());
        socket.waitForBytesWritten(1000);
        socket.disconnectFromServer();
    }
    ~App() { endProcess(process); }
};

int timeToFirstFrame(const QString& player, const QString& file, const QString& dir)
{
    const bool app = player == "app";
    PixelWatch watch(app ? kAppVideoX : 0, app ? kAppVideoY : 0);
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
    } else if (app) {
        App vidora;
        if (!vidora.start(dir, false))
            return 2;
        watch.arm();
        vidora.open(file);
        ms = watch.waitMs(15000);
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

// Prints libmpv's log lines that mark the steps from start to the first frame, with their
// times (seconds since libmpv started), and when the log was created after the process start.
void printMpvSteps(const QString& path, const QDateTime& started)
{
    QFile log(path);
    if (!log.open(QIODevice::ReadOnly))
        return;
    std::fprintf(stderr, "libmpv log created %lld ms after the start\n",
                 started.msecsTo(QFileInfo(path).birthTime()));
    const QList<QByteArray> marks{"Run command: loadfile", "Opening done", "Selected codec", "Decoder format", "VO: [",
                                  "first video frame", "Starting playback"};
    QString text;
    int shown = 0;
    while (!log.atEnd() && shown < 12) {
        const QByteArray line = log.readLine().trimmed();
        for (const QByteArray& mark : marks)
            if (line.contains(mark)) {
                text += "\n      " + QString::fromUtf8(line.left(110));
                ++shown;
                break;
            }
    }
    std::fprintf(stderr, "steps, libmpv log (s):%s\n", qPrintable(text));
}

// From the process start with the file on the command line to its first frame on screen.
int startToFirstFrame(const QString& player, const QString& file, const QString& dir)
{
    const bool app = player == "app";
    PixelWatch watch(app ? kAppVideoX : 0, app ? kAppVideoY : 0);
    if (!watch.start() || player == "vidora")
        return 2;
    double ms = -1.0;
    watch.arm();
    const QDateTime started = QDateTime::currentDateTime();
    if (app) {
        App vidora;
        if (!vidora.start(dir, false, file))
            return 2;
        ms = watch.waitMs(20000);
        pause(300);
        std::fprintf(stderr, "steps, scene graph (ms since the start):\n      %s\n",
                     qPrintable(vidora.startLog.join("\n      ")));
    } else {
        MpvCli mpv;
        if (!mpv.open(player, dir, false, file))
            return 2;
        ms = watch.waitMs(20000);
    }
    printMpvSteps(dir + "/mpv.log", started);
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
    const bool app = player == "app";
    PixelWatch watch(app ? kAppVideoX : 0, app ? kAppVideoY : 0);
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
    } else if (app) {
        App vidora;
        watch.arm();
        if (!vidora.start(dir, true, file) || watch.waitMs(20000) < 0 ||
            !vidora.ipc.connect(vidora.folder + "/mpv.sock", 5000))
            return 1;
        // The render loop logs each frame after its swap, so rendered and presented are one count.
        QObject::connect(&vidora.process, &QProcess::readyReadStandardError, &vidora.process,
                         [&] { sceneFrames = swaps = vidora.frames; });
        measure(vidora.process.processId(), [&](const char* name) { return vidora.ipc.get(name); });
    } else {
        MpvCli mpv;
        if (!mpv.open(player, dir, true))
            return 2;
        watch.arm();
        mpv.load(file);
        if (watch.waitMs(15000) < 0)
            return 1;
        measure(mpv.process.processId(), [&](const char* name) { return mpv.ipc.get(name); });
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
        return player == "vidora" || app ? QString::number(count / wall, 'f', 1) : QStringLiteral("-");
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
    // The window format and pacing the program uses. BENCH_DEPTH=1 then brings back Qt's
    // default depth and stencil buffers, with which the player draws its picture as a textured
    // quad instead of copying it.
    prepareVideoWindows();
    if (qEnvironmentVariableIsSet("BENCH_DEPTH")) {
        QSurfaceFormat format = QSurfaceFormat::defaultFormat();
        format.setDepthBufferSize(-1);
        format.setStencilBufferSize(-1);
        format.setSamples(-1);
        QSurfaceFormat::setDefaultFormat(format);
    }
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
    if (mode == "start" && args.size() == 4)
        return startToFirstFrame(args.at(2), args.at(3), dir.path());
    if (mode == "cpu" && args.size() == 5)
        return cpuWhilePlaying(args.at(2), args.at(3), dir.path(), args.at(4).toInt());
    if (mode == "history" && args.size() == 4)
        return historyWrites(args.at(2).toInt(), args.at(3));
    std::fprintf(stderr, "usage: player_bench ttff vidora|mpv|mpv-auto FILE | cpu vidora|mpv|mpv-auto FILE SECONDS | "
                         "history ROWS FILE\n");
    return 2;
}
