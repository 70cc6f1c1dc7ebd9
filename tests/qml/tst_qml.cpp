#include "QmlRegistration.h"

#include <QDir>
#include <QFile>
#include <QQmlEngine>
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
    }

    void qmlEngineAvailable(QQmlEngine* engine)
    {
        static const bool registered = (registerQmlTypes(), true);
        Q_UNUSED(registered)
        addModuleImportPath(*engine);
    }
};

QUICK_TEST_MAIN_WITH_SETUP(tst_qml, Setup)

#include "tst_qml.moc"
