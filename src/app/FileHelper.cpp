#include "FileHelper.h"

#include "ProcessWide.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QUrl>
#include <filesystem>
#include <spdlog/spdlog.h>

#ifdef Q_OS_WIN
#include <shlobj.h>
#else
#include <QDBusConnection>
#include <QDBusMessage>
#endif

FileHelper::FileHelper(QObject* parent) : QObject(parent) {}

FileHelper* FileHelper::instance()
{
    return &processWide<FileHelper>();
}

QString FileHelper::toLocalPath(const QString& filePath)
{
    if (filePath.startsWith(QLatin1String("file:")))
        return QUrl(filePath).toLocalFile();
    return filePath;
}

QString FileHelper::getFileName(const QString& filePath) const { return QFileInfo(toLocalPath(filePath)).fileName(); }

QString FileHelper::getFilePath(const QString& filePath, bool) const { return toLocalPath(filePath); }

bool FileHelper::isExists(const QString& filePath) const { return QFileInfo::exists(toLocalPath(filePath)); }

bool FileHelper::fileExists(const QString& filePath) const { return isExists(filePath); }

QString FileHelper::getFileSize(const QString& filePath) const
{
    const QFileInfo info(toLocalPath(filePath));
    if (!info.exists())
        return {};
    return QStringLiteral("%1 KB").arg(static_cast<double>(info.size()) * (1.0 / 1024.0), 0, 'f', 2);
}

QString FileHelper::getAppPath() const { return QCoreApplication::applicationDirPath(); }

QString FileHelper::getUniqueFileName(const QString& filePath) const
{
    const QFileInfo info(toLocalPath(filePath));
    const QString dir = info.absolutePath();
    const QString base = info.baseName();
    const QString suffix = info.suffix();
    QString candidate = dir + "/" + base + "." + suffix;
    if (!QFileInfo::exists(candidate))
        return candidate;
    for (qint64 n = 1;; ++n) {
        candidate = dir + "/" + base + QStringLiteral(" (%1).%2").arg(n).arg(suffix);
        if (!QFileInfo::exists(candidate))
            return candidate;
    }
}

QString FileHelper::getFileBaseName(const QString& filePath) const
{
    return QFileInfo(toLocalPath(filePath)).baseName();
}

QString FileHelper::getFileSuffix(const QString& filePath) const { return QFileInfo(toLocalPath(filePath)).suffix(); }

QString FileHelper::getFileAbsolutePath(const QString& filePath) const
{
    return QFileInfo(toLocalPath(filePath)).absolutePath();
}

QStringList FileHelper::getFileList(const QString& directoryPath) const
{
    QStringList result;
    const QDir dir(toLocalPath(directoryPath));
    if (!dir.exists())
        return result;
    for (const QFileInfo& info : dir.entryInfoList(QDir::Files, QDir::Name))
        result << info.absoluteFilePath();
    return result;
}

QVariantMap FileHelper::getImageResolution(const QString& imagePath) const
{
    const QSize size = QImageReader(toLocalPath(imagePath)).size();
    return {{QStringLiteral("width"), size.isValid() ? size.width() : 0},
            {QStringLiteral("height"), size.isValid() ? size.height() : 0}};
}

QString FileHelper::getUrlByPath(const QString& filePath) const
{
    return QUrl::fromLocalFile(toLocalPath(filePath)).toString();
}

void FileHelper::copyToClipboard(const QString& fileUrl) const
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return;
    auto* mime = new QMimeData; // the clipboard takes ownership
    mime->setUrls({QUrl::fromLocalFile(toLocalPath(fileUrl))});
    clipboard->setMimeData(mime);
}

bool FileHelper::copyFile(const QString& inputPath, const QString& outputPath) const
{
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::copy_file(fs::u8path(toLocalPath(inputPath).toStdString()), fs::u8path(toLocalPath(outputPath).toStdString()),
                  fs::copy_options::overwrite_existing, ec);
    if (ec) {
        spdlog::error("copy_file: {}", ec.message());
        return false;
    }
    return true;
}

void FileHelper::openDirectoryByFile(const QString& filePath) const
{
    const QString local = QFileInfo(toLocalPath(filePath)).absoluteFilePath();
#ifdef Q_OS_WIN
    CoInitialize(nullptr);
    PIDLIST_ABSOLUTE pidl = nullptr;
    if (SUCCEEDED(SHParseDisplayName(reinterpret_cast<LPCWSTR>(QDir::toNativeSeparators(local).utf16()), nullptr,
                                     &pidl, 0, nullptr))) {
        SHOpenFolderAndSelectItems(pidl, 0, nullptr, 0);
        CoTaskMemFree(pidl);
    }
    CoUninitialize();
#else
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(local).toString()} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 2000);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return;
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(local).absolutePath()));
#endif
}
