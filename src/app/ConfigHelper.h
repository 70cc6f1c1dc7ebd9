#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

// Answers the UI's questions from "./config.json" (relative to the working directory, which
// start-up anchors at the executable's folder). The file is read afresh on every call; a
// missing, unreadable or invalid file gives the empty answer. GUI thread only.
class ConfigHelper : public QObject
{
    Q_OBJECT
public:
    explicit ConfigHelper(QObject* parent = nullptr);
    // Tests point it at another file; the program always uses the default.
    explicit ConfigHelper(const QString& configPath, QObject* parent = nullptr);

    Q_INVOKABLE QStringList getSupportedFormats() const;
    Q_INVOKABLE QStringList getSupportedVideoFormats() const;
    Q_INVOKABLE QStringList getSupportedAudioFormats() const;
    Q_INVOKABLE QString appIcon() const;
    Q_INVOKABLE QString appName() const;
    Q_INVOKABLE QString developer() const;
    Q_INVOKABLE QString phone() const;
    Q_INVOKABLE QString getDefaultDir() const;
    // Never creates the file: with no readable file it does nothing.
    Q_INVOKABLE void setDefaultDir(const QString& dir);

private:
    QStringList formats(const char* type) const;
    QString stringValue(const char* key) const;

    QString m_path;
};
