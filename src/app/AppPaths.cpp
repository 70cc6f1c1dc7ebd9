#include "AppPaths.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#ifndef VIDORA_DATA_FROM_BIN
#define VIDORA_DATA_FROM_BIN "../share/vidora"
#endif

namespace {

AppPaths buildFolderPaths(const QString& folder)
{
    AppPaths paths;
    const QDir dir(folder);
    paths.readOnlyFolder = folder;
    paths.config = dir.filePath(QStringLiteral("config.json"));
    paths.historyDatabase = dir.filePath(QStringLiteral("video_history.db"));
    paths.screenshotFolder = QDir::tempPath() + QStringLiteral("/screenshots");
    paths.artFolder = QDir::tempPath() + QStringLiteral("/vidora-art");
    return paths;
}

AppPaths &currentPaths()
{
    static AppPaths paths = buildFolderPaths(QStringLiteral("."));
    return paths;
}

QString userFolder(QStandardPaths::StandardLocation location, const QString& child)
{
    return QDir(QStandardPaths::writableLocation(location)).filePath(child);
}

} // namespace

AppPaths AppPaths::resolve(const QString& executableFolder)
{
    const QString dataFolder = QDir::cleanPath(QDir(executableFolder).filePath(QStringLiteral(VIDORA_DATA_FROM_BIN)));
    const bool hasDataFolder = QFileInfo::exists(QDir(dataFolder).filePath(QStringLiteral("config.json")));
    if (!hasDataFolder && QFileInfo(executableFolder).isWritable())
        return buildFolderPaths(executableFolder);

    AppPaths paths;
    paths.installed = true;
    paths.readOnlyFolder = hasDataFolder ? dataFolder : executableFolder;
    paths.defaultConfig = QDir(paths.readOnlyFolder).filePath(QStringLiteral("config.json"));
    paths.config = userFolder(QStandardPaths::GenericConfigLocation, QStringLiteral("vidora/config.json"));
    paths.historyDatabase = userFolder(QStandardPaths::GenericDataLocation, QStringLiteral("vidora/video_history.db"));
    paths.screenshotFolder = userFolder(QStandardPaths::PicturesLocation, QStringLiteral("Vidora"));
    paths.artFolder = userFolder(QStandardPaths::GenericCacheLocation, QStringLiteral("vidora/art"));
    return paths;
}

const AppPaths& AppPaths::current() { return currentPaths(); }

void AppPaths::setCurrent(const AppPaths& paths) { currentPaths() = paths; }
