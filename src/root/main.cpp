#include "AppPaths.h"
#include "CommandLine.h"
#include "Logging.h"
#include "QmlRegistration.h"
#include "MprisService.h"
#include "PrefetchImageProvider.h"
#include "SignalWatcher.h"
#include "SingleInstance.h"
#include "SqlHelper.h"
#include "VideoWindowSetup.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocalServer>
#include <QQmlApplicationEngine>
#include <QTimer>
#include <QTranslator>
#include <QUrl>
#include <memory>
#include <spdlog/spdlog.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

// Relative file names are made absolute against the folder the user started from: the
// working directory moves to the executable's folder below, and a hand-off reaches an
// instance that was started elsewhere.
QStringList argumentsAfterProgram(int argc, char* argv[])
{
    QStringList words;
    for (int i = 1; i < argc; ++i) {
        QString word = QString::fromLocal8Bit(argv[i]);
        if (!word.startsWith(QLatin1Char('-')) && !word.startsWith(QLatin1String("file:")) &&
            QFileInfo(word).isRelative() && QFileInfo::exists(word))
            word = QFileInfo(word).absoluteFilePath();
        words << word;
    }
    return words;
}

// The folder of the running executable, from the kernel's view of it, so the shipped files
// are found from any start folder.
QString executableFolder(const char* argv0)
{
    char buffer[4096] = {};
    const ssize_t n = readlink("/proc/self/exe", buffer, sizeof(buffer) - 1);
    QString path = n > 0 ? QString::fromLocal8Bit(buffer, static_cast<int>(n)) : QString::fromLocal8Bit(argv0);
    const int cut = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\'));
    return cut >= 0 ? path.left(cut) : QStringLiteral(".");
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    prepareVideoWindows();
    // Small images share one texture, by default as large as the window (about 4 MB with a
    // software renderer); the window's icons need a fraction of that. Its sides are not powers
    // of two, like those of every other texture the window draws (the artwork, the player's
    // framebuffer): software OpenGL builds the image shader once per such property, and a
    // 512-px atlas cost a second build (25-30 ms) in the first frame of a first start.
    if (!qEnvironmentVariableIsSet("QSG_ATLAS_WIDTH") && !qEnvironmentVariableIsSet("QSG_ATLAS_HEIGHT")) {
        qputenv("QSG_ATLAS_WIDTH", "504");
        qputenv("QSG_ATLAS_HEIGHT", "504");
    }
    QGuiApplication app(argc, argv);

    const QStringList words = argumentsAfterProgram(argc, argv);
    if (SingleInstance::handOffToRunningInstance(words))
        return 0;

    // The empty state's artwork, decoded while the scene loads so the first frame shows it:
    // the player area of a window of the default size (998 x 680, minus the 5-px shadow
    // margins, the 40-px title bar and the 120-px control bar). Other sizes decode on request.
    auto* prefetched = new PrefetchImageProvider;
    prefetched->prefetch(QStringLiteral("artwork"), QStringLiteral(":/Resources/control/default.png"), QSize(988, 510));

    for (int i = 0; i < words.size(); ++i)
        spdlog::info("Argument {}: {}", i + 1, words.at(i).toStdString());

    QCoreApplication::setOrganizationName(QStringLiteral("Vidora"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("vidora.org"));

    std::unique_ptr<QLocalServer> server(SingleInstance::listen(nullptr, handleCommandLineWords));
    // A logout or a plain kill ends the player like closing its window: the playing file's
    // resume point is saved and the history closed.
    SignalWatcher stopSignals;
    QObject::connect(&stopSignals, &SignalWatcher::interrupted, &app, [] { QCoreApplication::quit(); });

    // The shipped files (fonts, translation, mpvqt.conf) are then found by relative name.
    AppPaths::setCurrent(AppPaths::resolve(executableFolder(argv[0])));
    const QString folder = AppPaths::current().readOnlyFolder;
    QDir::setCurrent(folder);

    spdlog::set_level(spdlog::level::err);
    spdlog::info("directory:{}", folder.toStdString());
    applyLogLevel();

    auto translator = std::make_unique<QTranslator>();
    if (translator->load(QStringLiteral("vidora_zh_CN.qm"), QString(), QString(), QString()))
        QCoreApplication::installTranslator(translator.get());

    const QStringList regular =
        QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont("./fonts/HarmonyOS_SansSC_Regular.otf"));
    QFontDatabase::addApplicationFont("./fonts/HarmonyOS_SansSC_Bold.otf");
    QFontDatabase::addApplicationFont("./fonts/HarmonyOS_SansSC_Medium.otf");
#ifdef Q_OS_WIN
    const QString fallbackFamily = QStringLiteral("Microsoft YaHei");
#else
    // The CJK face a Linux desktop has (fonts-noto-cjk); fontconfig substitutes if absent.
    const QString fallbackFamily = QStringLiteral("Noto Sans CJK SC");
#endif
    auto font = std::make_unique<QFont>(regular.isEmpty() ? fallbackFamily : QStringLiteral("HarmonyOS Sans SC"));
    font->setPixelSize(14);
    QGuiApplication::setFont(*font);

    auto engine = std::make_unique<QQmlApplicationEngine>();
    registerQmlTypes();
    addModuleImportPath(*engine);
    engine->addImageProvider(QStringLiteral("prefetched"), prefetched);

    const QUrl mainUrl(QStringLiteral("qrc:/qml/main.qml"));
    QObject::connect(
        engine.get(), &QQmlApplicationEngine::objectCreated, &app,
        [mainUrl](QObject* object, const QUrl& url) {
            if (!object && url == mainUrl)
                QCoreApplication::exit(-1);
        },
        Qt::QueuedConnection);
    MprisService* mpris = MprisService::instance();
    QObject::connect(mpris, &MprisService::openUriRequested, mpris,
                     [](const QString& path) { handleCommandLineWords({path}); });
    mpris->start();

    engine->load(mainUrl);
    finishEngineSetup(*engine);

    if (!words.isEmpty())
        handleCommandLineWords(words);
#ifdef __GLIBC__
    // Building the scene frees much of what it allocates (compiling, decoding, shader builds),
    // but the allocator keeps freed pages for reuse; give them back once the window stands.
    QTimer::singleShot(3000, [] { malloc_trim(0); });
#endif

    const int code = app.exec();
    engine.reset();
    // The scene was the history's last user.
    SqlHelper::closeInstance();
    font.reset();
    translator.reset();
    server.reset();
    return code;
}
