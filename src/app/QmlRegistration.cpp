#include "QmlRegistration.h"

#include "CommonTool.h"
#include "ConfigHelper.h"
#include "FileHelper.h"
#include "SqlHelper.h"

#include <QQmlApplicationEngine>
#include <QQmlEngine>

namespace {

constexpr const char* kUri = "CustomUtils";

// The engine must never delete a shared service, whatever it thinks it owns.
template <typename T> QObject* shared(T* instance)
{
    QQmlEngine::setObjectOwnership(instance, QQmlEngine::CppOwnership);
    return instance;
}

ConfigHelper* configHelper()
{
    static ConfigHelper helper;
    return &helper;
}

} // namespace

void registerQmlTypes()
{
    // Singletons, in table order.
    qmlRegisterSingletonType<CommonTool>(
        kUri, 1, 0, "CommonTool", [](QQmlEngine*, QJSEngine*) { return shared(CommonTool::instance()); });
    qmlRegisterSingletonType<ConfigHelper>(kUri, 1, 0, "ConfigHelper",
                                           [](QQmlEngine*, QJSEngine*) { return shared(configHelper()); });
    qmlRegisterSingletonType<FileHelper>(
        kUri, 1, 0, "FileHelper", [](QQmlEngine*, QJSEngine*) { return shared(FileHelper::instance()); });
    qmlRegisterSingletonType<SqlHelper>(kUri, 1, 0, "SqlHelper",
                                        [](QQmlEngine*, QJSEngine*) { return shared(SqlHelper::instance()); });
}

void finishEngineSetup(QQmlApplicationEngine& engine)
{
    Q_UNUSED(engine)
    QQmlEngine::setObjectOwnership(CommonTool::instance(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(FileHelper::instance(), QQmlEngine::CppOwnership);
}
