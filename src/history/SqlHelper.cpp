#include "SqlHelper.h"

#include "AppPaths.h"
#include "ProcessWide.h"
#include "SqlStatement.h"

#include <QDir>
#include <QFileInfo>
#include <spdlog/spdlog.h>
#include <sqlite3.h>

namespace {

constexpr const char* kCreateTable = "CREATE TABLE IF NOT EXISTS video_history (url TEXT PRIMARY "
                                     "KEY,filename TEXT NOT NULL,last_position REAL "
                                     "DEFAULT 0,duration REAL DEFAULT 0,thumbnail BLOB,thumbnail_width "
                                     "INTEGER DEFAULT 0,thumbnail_height INTEGER "
                                     "DEFAULT 0,last_played DATETIME DEFAULT CURRENT_TIMESTAMP,play_count "
                                     "INTEGER DEFAULT 0,is_top INTEGER DEFAULT 0)";

// Columns added after the first release; databases of older versions gain them on open.
constexpr const char* kMigrations[] = {
    "ALTER TABLE video_history ADD COLUMN is_top INTEGER DEFAULT 0",
    "ALTER TABLE video_history ADD COLUMN thumbnail_width INTEGER DEFAULT 0",
    "ALTER TABLE video_history ADD COLUMN thumbnail_height INTEGER DEFAULT 0",
};

// Runs a statement without results. The error text is freed here; it is only written at
// debug level, since every caller reports failure through its result alone.
bool execute(sqlite3* db, const char* sql, std::string* error = nullptr)
{
    if (!db)
        return false;
    char* message = nullptr;
    const int rc = sqlite3_exec(db, sql, nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        const std::string text = message ? message : sqlite3_errstr(rc);
        spdlog::debug("history store: \"{}\" failed: {}", sql, text);
        if (error)
            *error = text;
    }
    sqlite3_free(message);
    return rc == SQLITE_OK;
}

// Whether the database takes writes: a change inside a transaction that is rolled back. It
// fails where the file or its folder cannot be written (the journal lives beside the file)
// and on a file that is not a database. Another connection writing at this moment (busy,
// locked) says nothing against the file.
bool acceptsWrites(sqlite3* db, std::string* reason)
{
    if (!execute(db, "BEGIN IMMEDIATE")) {
        const int code = sqlite3_errcode(db);
        *reason = sqlite3_errmsg(db);
        return code == SQLITE_BUSY || code == SQLITE_LOCKED;
    }
    const bool written = execute(db, "CREATE TABLE video_history_write_check (x)", reason);
    execute(db, "ROLLBACK");
    return written;
}

// Whether the process-wide store was ever made, so that closing it at exit does not open it.
bool g_made = false;

} // namespace

void SqliteCloser::operator()(sqlite3* db) const
{
    // Every statement is finalized by its holder, so nothing keeps the connection busy.
    sqlite3_close(db);
}

SqlHelper* SqlHelper::makeProcessWide()
{
    const QString path = AppPaths::current().historyDatabase;
    QDir().mkpath(QFileInfo(path).absolutePath());
    g_made = true;
    return new SqlHelper(path);
}

SqlHelper* SqlHelper::instance()
{
    // The QML engine never owns it; closeInstance() closes its connection at exit.
    return &processWide<SqlHelper>();
}

void SqlHelper::closeInstance()
{
    if (g_made)
        instance()->close();
}

SqlHelper::SqlHelper(const QString& databasePath, QObject* parent) : QObject(parent)
{
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open(databasePath.toUtf8().constData(), &raw);
    // Even a failed open hands back a handle that must be closed.
    m_db.reset(raw);
    std::string reason;
    if (rc != SQLITE_OK) {
        reason = raw ? sqlite3_errmsg(raw) : sqlite3_errstr(rc);
    } else {
        execute(m_db.get(), "PRAGMA encoding = 'UTF-8'");
        // Saves happen on the GUI thread at every load and stop. A write-ahead log synced only
        // at checkpoints keeps them to a fraction of a millisecond instead of a disk flush
        // each; after a power cut the newest saves may be lost, the database stays consistent.
        execute(m_db.get(), "PRAGMA journal_mode = WAL");
        execute(m_db.get(), "PRAGMA synchronous = NORMAL");
        createSchema();
        if (acceptsWrites(m_db.get(), &reason))
            return;
    }
    // Playback does not depend on the history: carry on without it, and say so once.
    spdlog::error("Playback history is off: cannot write {}: {}",
                  QFileInfo(databasePath).absoluteFilePath().toStdString(), reason);
    m_db.reset();
}

void SqlHelper::close()
{
    m_db.reset();
}

void SqlHelper::createSchema()
{
    if (!execute(m_db.get(), kCreateTable))
        return;
    for (const char* migration : kMigrations) {
        std::string error;
        // "duplicate column name" is the normal answer of an up-to-date table; any other
        // failure is tolerated as well, and the next migration still runs.
        if (!execute(m_db.get(), migration, &error) && error.find("duplicate column name") == std::string::npos)
            spdlog::debug("history store: migration left undone: {}", error);
    }
}

bool SqlHelper::saveVideoInfo(const QString& url, const QString& filename, double duration, double position,
                              const QByteArray& thumbnail, int thumbnailWidth, int thumbnailHeight)
{
    std::string sql =
        "INSERT INTO video_history (url, filename, last_position, duration, thumbnail, "
        "thumbnail_width, thumbnail_height, last_played, play_count) VALUES (?, ?, ?, ?, ?, ?, ?, "
        "CURRENT_TIMESTAMP, 1) ON CONFLICT(url) DO UPDATE SET filename=excluded.filename, ";
    // A negative position means "no new resume point": the stored one stays.
    if (position >= 0.0)
        sql += "last_position=excluded.last_position, ";
    sql += "duration=excluded.duration, ";
    // A null array keeps the stored thumbnail; an empty non-null one clears it.
    if (!thumbnail.isNull())
        sql += "thumbnail=excluded.thumbnail, ";
    // Width and height follow every save, even when the thumbnail itself is kept.
    sql += "thumbnail_width=excluded.thumbnail_width, thumbnail_height=excluded.thumbnail_height, ";
    sql += "last_played=CURRENT_TIMESTAMP, play_count=play_count+1";

    SqlStatement statement(m_db.get(), sql.c_str());
    if (!statement.isValid())
        return false;
    statement.bindText(1, url);
    statement.bindText(2, filename);
    statement.bindDouble(3, position);
    statement.bindDouble(4, duration);
    if (thumbnail.size() >= 1)
        statement.bindBlob(5, thumbnail);
    else
        statement.bindNull(5);
    statement.bindInt(6, thumbnailWidth);
    statement.bindInt(7, thumbnailHeight);
    if (statement.step() != SQLITE_DONE) {
        spdlog::debug("history store: save of {} failed: {}", url.toStdString(), sqlite3_errmsg(m_db.get()));
        return false;
    }
    emit dataChanged();
    return true;
}

bool SqlHelper::deleteVideoByUrl(const QString& url)
{
    SqlStatement statement(m_db.get(), "DELETE FROM video_history WHERE url = ?");
    if (!statement.isValid())
        return false;
    statement.bindText(1, url);
    // A DELETE yields no row, so the result is false in practice; callers ignore it.
    const bool result = statement.step() == SQLITE_ROW && statement.columnInt(0) != 0;
    emit dataChanged();
    return result;
}

bool SqlHelper::setVideoTop(const QString& url, bool top)
{
    // At most one row is pinned: pinning first unpins every row.
    if (top && !execute(m_db.get(), "UPDATE video_history SET is_top = 0"))
        return false;
    SqlStatement statement(m_db.get(), "UPDATE video_history SET is_top = ? WHERE url = ?");
    if (!statement.isValid())
        return false;
    statement.bindInt(1, top ? 1 : 0);
    statement.bindText(2, url);
    if (statement.step() != SQLITE_DONE)
        return false;
    emit dataChanged();
    return true;
}

double SqlHelper::getLastPosition(const QString& url)
{
    SqlStatement statement(m_db.get(), "SELECT last_position FROM video_history WHERE url = ?");
    if (!statement.isValid())
        return 0.0;
    statement.bindText(1, url);
    return statement.step() == SQLITE_ROW ? statement.columnDouble(0) : 0.0;
}

double SqlHelper::getDuration(const QString& url)
{
    SqlStatement statement(m_db.get(), "SELECT duration FROM video_history WHERE url = ?");
    if (!statement.isValid())
        return 0.0;
    statement.bindText(1, url);
    return statement.step() == SQLITE_ROW ? statement.columnDouble(0) : 0.0;
}

QList<QVariantMap> SqlHelper::getVideoHistory(int limit)
{
    SqlStatement statement(m_db.get(),
                           "SELECT url, filename, last_position, duration, thumbnail, thumbnail_width, "
                           "thumbnail_height, last_played, play_count, is_top FROM video_history ORDER BY "
                           "is_top DESC, rowid ASC LIMIT ?");
    QList<QVariantMap> rows;
    if (!statement.isValid())
        return rows;
    statement.bindInt(1, limit);
    while (statement.step() == SQLITE_ROW) {
        QVariantMap row;
        row.insert(QStringLiteral("url"), statement.columnText(0));
        row.insert(QStringLiteral("filename"), statement.columnText(1));
        row.insert(QStringLiteral("last_position"), statement.columnDouble(2));
        row.insert(QStringLiteral("duration"), statement.columnDouble(3));
        row.insert(QStringLiteral("thumbnail"), statement.columnBlob(4));
        row.insert(QStringLiteral("thumbnail_width"), statement.columnInt(5));
        row.insert(QStringLiteral("thumbnail_height"), statement.columnInt(6));
        row.insert(QStringLiteral("last_played"), statement.columnText(7));
        row.insert(QStringLiteral("play_count"), statement.columnInt(8));
        row.insert(QStringLiteral("is_top"), statement.columnInt(9));
        rows.append(row);
    }
    return rows;
}

bool SqlHelper::clearHistory()
{
    if (!execute(m_db.get(), "DELETE FROM video_history"))
        return false;
    emit dataChanged();
    return true;
}
