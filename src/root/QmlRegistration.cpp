#include "QmlRegistration.h"

#include "CommonTool.h"
#include "ConfigHelper.h"
#include "FileHelper.h"
#include "FileModel.h"
#include "ImageProvider.h"
#include "MprisService.h"
#include "MpvView.h"
#include "SqlHelper.h"
#include "ThumbnailItem.h"
#include "VideoHistoryModel.h"
#include "YUVPaintedItem.h"

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
    qmlRegisterSingletonType<FileModel>(kUri, 1, 0, "FileModel",
                                        [](QQmlEngine*, QJSEngine*) { return shared(FileModel::instance()); });
    qmlRegisterSingletonType<ConfigHelper>(kUri, 1, 0, "ConfigHelper",
                                           [](QQmlEngine*, QJSEngine*) { return shared(configHelper()); });
    qmlRegisterSingletonType<FileHelper>(
        kUri, 1, 0, "FileHelper", [](QQmlEngine*, QJSEngine*) { return shared(FileHelper::instance()); });
    qmlRegisterSingletonType<SqlHelper>(kUri, 1, 0, "SqlHelper",
                                        [](QQmlEngine*, QJSEngine*) { return shared(SqlHelper::instance()); });
    qmlRegisterSingletonType<ImageProvider>(
        kUri, 1, 0, "ImageProvider", [](QQmlEngine*, QJSEngine*) { return shared(ImageProvider::instance()); });

    // The desktop's media controls: the window answers their Next and Previous.
    qmlRegisterSingletonType<MprisService>(
        kUri, 1, 0, "MprisService", [](QQmlEngine*, QJSEngine*) { return shared(MprisService::instance()); });

    // Creatable types, in table order.
    MpvController::registerMetaTypes();
    qmlRegisterType<MpvView>(kUri, 1, 0, "MpvView");
    qmlRegisterType<ThumbnailItem>(kUri, 1, 0, "ThumbnailItem");
    qmlRegisterType<YUVPaintedItem>(kUri, 1, 0, "YUVPaintedItem");
    qmlRegisterType<VideoHistoryModel>(kUri, 1, 0, "VideoHistoryModel");
}

void addModuleImportPath(QQmlEngine& engine)
{
    engine.addImportPath(QStringLiteral("qrc:/"));
}

void finishEngineSetup(QQmlApplicationEngine& engine)
{
    // The engine owns its image providers from here on and deletes this one with itself.
    engine.addImageProvider(QStringLiteral("ImageProvider"), ImageProvider::instance());
    QQmlEngine::setObjectOwnership(CommonTool::instance(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(ImageProvider::instance(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(FileHelper::instance(), QQmlEngine::CppOwnership);
}
