// Shows every control of the library in each of its states, the notification stack, the
// message box and both dialogs, for screenshots. As a test it checks that the whole scene
// loads and runs a moment without a single QML warning.
//   tst_gallery            quit after two seconds; exit code 1 on any warning
//   tst_gallery --stay     keep running (for screenshots); add --zh for the Chinese catalogue,
//                          --no-message to leave out the (modal) message box for hover shots
#include "QmlRegistration.h"

#include <QDir>
#include <QFont>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QTimer>
#include <QTranslator>

#include <atomic>
#include <cstdio>

namespace {

std::atomic<int> warnings{0};

// Only the scene's own complaints count: they always name the QML file they come from.
void countWarnings(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    const bool fromScene = message.contains(QLatin1String("qrc:/")) || message.contains(QLatin1String("file://"));
    if (type == QtCriticalMsg || type == QtFatalMsg || (type == QtWarningMsg && fromScene))
        ++warnings;
    std::fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

int main(int argc, char* argv[])
{
    qInstallMessageHandler(countWarnings);
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();

    // The program's folder holds config.json and the catalogue, as at start-up.
    QDir::setCurrent(qEnvironmentVariable("VIDORA_BIN_DIR", QStringLiteral(VIDORA_BIN_DIR_DEFAULT)));
    QTranslator translator;
    if (args.contains("--zh") && translator.load(QStringLiteral("vidora_zh_CN.qm")))
        QCoreApplication::installTranslator(&translator);
    QFont font(QStringLiteral("Noto Sans CJK SC"));
    font.setPixelSize(14);
    QGuiApplication::setFont(font);

    QQmlApplicationEngine engine;
    registerQmlTypes();
    addModuleImportPath(engine);
    engine.rootContext()->setContextProperty("showMessageBox", !args.contains("--no-message"));
    engine.load(QUrl::fromLocalFile(QStringLiteral(GALLERY_QML)));
    finishEngineSetup(engine);
    if (engine.rootObjects().isEmpty())
        return 1;

    if (!args.contains("--stay"))
        QTimer::singleShot(2000, &app, [] { QCoreApplication::exit(warnings > 0 ? 1 : 0); });
    const int code = app.exec();
    return code != 0 ? code : (warnings > 0 ? 1 : 0);
}
