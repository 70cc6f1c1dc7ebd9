#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

// Small file-system and desktop services for the UI, plus the openFile signal through
// which start-up hands a command-line file to the main window. Stateless; GUI thread.
//
// Paths may be local paths or file: URLs, as QML passes them. Forms chosen here:
// - getFileList(dir): absolute paths of the regular files directly in dir (no recursion,
//   hidden files excluded), sorted by name; empty when dir does not exist.
// - getAppPath(): the executable's folder, without trailing separator.
// - copyFile(in, out): overwrites an existing target (the user picked it in a save dialog,
//   which already asked); returns false instead of throwing and logs the library's text.
class FileHelper : public QObject
{
    Q_OBJECT
public:
    explicit FileHelper(QObject* parent = nullptr);

    static FileHelper* instance();

    // Turns a QML-style reference (file: URL or local path) into a local path.
    static QString toLocalPath(const QString& filePath);

    Q_INVOKABLE QString getFileName(const QString& filePath) const;
    // The tools pass a second argument with the output path of a save dialog; the answer is
    // the same local path either way, so the flag is accepted and has no effect.
    Q_INVOKABLE QString getFilePath(const QString& filePath, bool = false) const;
    Q_INVOKABLE bool isExists(const QString& filePath) const;
    Q_INVOKABLE bool fileExists(const QString& filePath) const;
    Q_INVOKABLE QString getFileSize(const QString& filePath) const;
    Q_INVOKABLE QString getAppPath() const;
    Q_INVOKABLE QString getUniqueFileName(const QString& filePath) const;
    Q_INVOKABLE QString getFileBaseName(const QString& filePath) const;
    Q_INVOKABLE QString getFileSuffix(const QString& filePath) const;
    Q_INVOKABLE QString getFileAbsolutePath(const QString& filePath) const;
    Q_INVOKABLE QStringList getFileList(const QString& directoryPath) const;
    Q_INVOKABLE QVariantMap getImageResolution(const QString& imagePath) const;
    Q_INVOKABLE QString getUrlByPath(const QString& filePath) const;
    Q_INVOKABLE void copyToClipboard(const QString& fileUrl) const;
    Q_INVOKABLE bool copyFile(const QString& inputPath, const QString& outputPath) const;
    // Shows the file selected in the desktop's file manager (freedesktop FileManager1 over
    // D-Bus); falls back to opening its folder with the default handler. Silent on failure.
    Q_INVOKABLE void openDirectoryByFile(const QString& filePath) const;

signals:
    // The parameter name is part of the QML interface and is spelled so on purpose.
    void openFile(QString commamd, QString filePath);
};
