#include "QmlRegistration.h"
#include "TestMedia.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QQmlContext>
#include <QQmlEngine>
#include <QUrl>
#include <QtQuickTest>

// Counts the scene's own warnings (they name the QML file they come from) between start() and
// stop(), passing every message on to the test log. A test installs it while it runs, after the
// test log has installed its own handler, so ignored warnings are still ignored by the log.
class WarningCounter : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE void start()
    {
        count = 0;
        previous = qInstallMessageHandler(handle);
    }
    Q_INVOKABLE int stop()
    {
        qInstallMessageHandler(previous);
        return count;
    }

    // The module's types as its qmldir lists them: [kind, name, file], kind "" for a plain type.
    Q_INVOKABLE static QVariantList moduleTypes()
    {
        QFile qmldir(QStringLiteral(":/CustomUtils/qmldir"));
        qmldir.open(QIODevice::ReadOnly);
        QVariantList types;
        for (const QString& line : QString::fromUtf8(qmldir.readAll()).split('\n')) {
            QStringList words = line.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
            if (words.size() == 3 && words[0] != QLatin1String("internal"))
                words.prepend(QString());
            if (words.size() >= 3)
                types.append(QStringList{words[0], words[1], words.last()});
        }
        return types;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (type != QtDebugMsg && type != QtInfoMsg
            && (message.contains(QLatin1String("qrc:/")) || message.contains(QLatin1String("file://"))))
            ++count;
        if (previous)
            previous(type, context, message);
    }
    static inline int count = 0;
    static inline QtMessageHandler previous = nullptr;
};

// Loads the program's own CustomUtils module (native types and the qrc half) into every
// engine the test runner creates, the way start-up does.
class Setup : public QObject
{
    Q_OBJECT
public slots:
    // The program runs beside its config.json; the tests run in their private temporary
    // folder with a copy of it, so anything written to the working folder stays there.
    void applicationAvailable()
    {
        const QString dir = QDir::tempPath();
        QDir::setCurrent(dir);
        QFile::remove(dir + "/config.json");
        QFile::copy(qEnvironmentVariable("VIDORA_SOURCE_DIR") + "/config.json", dir + "/config.json");
        // Qt's own dialogs keep their settings under the program's name, as in the program.
        QCoreApplication::setOrganizationName(QStringLiteral("Vidora"));
        QCoreApplication::setOrganizationDomain(QStringLiteral("vidora.org"));
    }

    void qmlEngineAvailable(QQmlEngine* engine)
    {
        static const bool registered = (registerQmlTypes(), true);
        Q_UNUSED(registered)
        addModuleImportPath(*engine);
        engine->rootContext()->setContextProperty(QStringLiteral("toolMediaUrl"), toolMedia());
        engine->rootContext()->setContextProperty(QStringLiteral("qmlWarnings"), &warnings);
    }

private:
    WarningCounter warnings;

    // A short 1280 x 720 clip with sound for the tool pages, made once per run.
    static QUrl toolMedia()
    {
        static const QUrl url = [] {
            const QString path = QDir::temp().filePath(QStringLiteral("tool 720p.mp4"));
            return TestMedia::makeVideo(path, 3, 1280, 720) ? QUrl::fromLocalFile(path) : QUrl();
        }();
        return url;
    }
};

QUICK_TEST_MAIN_WITH_SETUP(tst_qml, Setup)

#include "tst_qml.moc"
