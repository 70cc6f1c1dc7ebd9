#include "QmlRegistration.h"

#include <QQmlEngine>
#include <QtQuickTest>

// Loads the program's own CustomUtils module (native types and the qrc half) into every
// engine the test runner creates, the way start-up does.
class Setup : public QObject
{
    Q_OBJECT
public slots:
    void qmlEngineAvailable(QQmlEngine* engine)
    {
        static const bool registered = (registerQmlTypes(), true);
        Q_UNUSED(registered)
        addModuleImportPath(*engine);
    }
};

QUICK_TEST_MAIN_WITH_SETUP(tst_qml, Setup)

#include "tst_qml.moc"
