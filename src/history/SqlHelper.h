#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

struct sqlite3;

// The playback history: one row per played URL in "video_history.db" (in the folder start-up
// chose, see AppPaths). A process-wide singleton that owns one SQLite connection.
// GUI thread only: there is no lock, and no worker may call it.
class SqlHelper : public QObject
{
    Q_OBJECT
public:
    // Opens (and creates or migrates) the database on first call.
    static SqlHelper* instance();

    // Opens the given file; the program uses instance(). A failed open leaves an object
    // whose operations fail quietly (false, 0.0, empty list).
    explicit SqlHelper(const QString& databasePath, QObject* parent = nullptr);
    ~SqlHelper() override;

    Q_INVOKABLE bool saveVideoInfo(const QString& url, const QString& filename, double duration,
                                   double position, const QByteArray& thumbnail, int thumbnailWidth,
                                   int thumbnailHeight);
    Q_INVOKABLE bool deleteVideoByUrl(const QString& url);
    Q_INVOKABLE bool setVideoTop(const QString& url, bool top);
    Q_INVOKABLE double getLastPosition(const QString& url);
    // The stored duration in seconds; 0.0 when there is no row.
    double getDuration(const QString& url);
    Q_INVOKABLE QList<QVariantMap> getVideoHistory(int limit);
    Q_INVOKABLE bool clearHistory();

    // The open connection (null when opening failed).
    sqlite3* connection() const { return m_db; }

signals:
    void dataChanged();
    void databaseError(QString error);

private:
    // Creates the table and adds the columns that older databases lack.
    void createSchema();

    sqlite3* m_db = nullptr; // owned; null when the open failed
};
