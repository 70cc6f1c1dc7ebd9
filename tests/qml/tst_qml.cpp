#include "QmlRegistration.h"
#include "TestMedia.h"

#include <QDir>
#include <QFile>
#include <QQmlContext>
#include <QQmlEngine>
#include <QUrl>
#include <QtQuickTest>

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
    }

private:
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
