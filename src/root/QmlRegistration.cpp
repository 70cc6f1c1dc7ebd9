#include "QmlRegistration.h"

#include "CommonTool.h"
#include "ConfigHelper.h"
#include "FileHelper.h"
#include "FileModel.h"
#include "ImageProvider.h"
#include "MprisService.h"
#include "MpvView.h"
#include "ProcessWide.h"
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

// The engine deletes its image providers with itself, so it gets a stand-in that asks the
// process-wide provider, which outlives every engine. Runs on the engine's image thread; the
// provider's cache takes its own lock. An item that gives a source size gets the picture
// scaled down to fit it here, off the GUI thread, rather than a full video frame to upload and
// keep as a texture for a box a few dozen pixels wide.
class SharedImageProvider : public QQuickImageProvider
{
public:
    SharedImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override
    {
        const QImage image = ImageProvider::instance()->requestImage(id, size, requestedSize);
        const QSize bound(requestedSize.width() > 0 ? requestedSize.width() : image.width(),
                          requestedSize.height() > 0 ? requestedSize.height() : image.height());
        if (image.isNull() || (image.width() <= bound.width() && image.height() <= bound.height()))
            return image;
        return image.scaled(bound, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
};

} // namespace

void registerQmlTypes()
{
    // Singletons, in table order.
    qmlRegisterSingletonType<CommonTool>(
        kUri, 1, 0, "CommonTool", [](QQmlEngine*, QJSEngine*) { return shared(CommonTool::instance()); });
    qmlRegisterSingletonType<FileModel>(kUri, 1, 0, "FileModel",
                                        [](QQmlEngine*, QJSEngine*) { return shared(FileModel::instance()); });
    qmlRegisterSingletonType<ConfigHelper>(kUri, 1, 0, "ConfigHelper",
                                           [](QQmlEngine*, QJSEngine*) { return shared(&processWide<ConfigHelper>()); });
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
    engine.addImageProvider(QStringLiteral("ImageProvider"), new SharedImageProvider);
    QQmlEngine::setObjectOwnership(CommonTool::instance(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(ImageProvider::instance(), QQmlEngine::CppOwnership);
    QQmlEngine::setObjectOwnership(FileHelper::instance(), QQmlEngine::CppOwnership);
}
