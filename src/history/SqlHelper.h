#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>
#include <memory>

struct sqlite3;

// Closes an SQLite connection; the store holds its connection through it.
struct SqliteCloser
{
    void operator()(sqlite3* db) const;
};

// The playback history: one row per played URL in "video_history.db" (in the folder start-up
// chose, see AppPaths). A process-wide singleton that owns one SQLite connection.
// GUI thread only: there is no lock, and no worker may call it.
class SqlHelper : public QObject
{
    Q_OBJECT
public:
    // Opens (and creates or migrates) the database on first call.
    static SqlHelper* instance();

    // Closes the singleton's connection if it was ever opened. The program calls it once the
    // scene, the last user of the history, is gone; instance() stays valid, without history.
    static void closeInstance();

    // Makes the instance on the file start-up chose; only processWide() calls it.
    static SqlHelper* makeProcessWide();

    // Opens the given file; the program uses instance(). A database that cannot be opened
    // or written (a read-only folder, a file that is not a database) is closed again at once
    // with one error line, leaving an object whose operations fail quietly (false, 0.0,
    // empty list): no history rather than saves that fail one by one later.
    explicit SqlHelper(const QString& databasePath, QObject* parent = nullptr);

    // Closes the connection; every later call fails quietly as after a failed open.
    void close();

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

    // The open connection (null when opening failed or after close()).
    sqlite3* connection() const { return m_db.get(); }

signals:
    void dataChanged();
    void databaseError(QString error);

private:
    // Creates the table and adds the columns that older databases lack.
    void createSchema();

    std::unique_ptr<sqlite3, SqliteCloser> m_db; // null when unusable or closed
};
