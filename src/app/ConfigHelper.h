#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

// Answers the UI's questions from the configuration file start-up chose ("./config.json"
// beside the executable in a build folder). The file is read afresh on every call; a
// missing, unreadable or invalid file gives the empty answer. GUI thread only.
//
// An installed copy reads the user's own file and, until the user has one, the installed
// default; the first change writes the user's file, seeded from that default.
class ConfigHelper : public QObject
{
    Q_OBJECT
public:
    // The file start-up chose (AppPaths).
    explicit ConfigHelper(QObject* parent = nullptr);
    // seedPath, when given, answers while configPath does not exist yet.
    explicit ConfigHelper(const QString& configPath, const QString& seedPath = QString(), QObject* parent = nullptr);

    Q_INVOKABLE QStringList getSupportedFormats() const;
    Q_INVOKABLE QStringList getSupportedVideoFormats() const;
    Q_INVOKABLE QStringList getSupportedAudioFormats() const;
    Q_INVOKABLE QString appIcon() const;
    Q_INVOKABLE QString appName() const;
    Q_INVOKABLE QString developer() const;
    Q_INVOKABLE QString phone() const;
    Q_INVOKABLE QString getDefaultDir() const;
    // Never creates a configuration from nothing: with no readable file it does nothing.
    Q_INVOKABLE void setDefaultDir(const QString& dir);

private:
    QStringList formats(const char* type) const;
    QString stringValue(const char* key) const;

    QString readPath() const;

    QString m_path;
    QString m_seedPath;
};
