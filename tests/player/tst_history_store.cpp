#include "SqlHelper.h"
#include "TestMedia.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>
#include <sqlite3.h>
#include <unistd.h>

namespace {

// Runs raw SQL on a database file outside the store (old schemas, forged timestamps).
bool rawExec(const QString& path, const char* sql)
{
    sqlite3* db = nullptr;
    bool ok = sqlite3_open(path.toUtf8().constData(), &db) == SQLITE_OK &&
              sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok;
}

QStringList columnsOf(const QString& path)
{
    QStringList names;
    sqlite3* db = nullptr;
    sqlite3_open(path.toUtf8().constData(), &db);
    sqlite3_stmt* stmt = nullptr;
    sqlite3_prepare_v2(db, "PRAGMA table_info(video_history)", -1, &stmt, nullptr);
    while (sqlite3_step(stmt) == SQLITE_ROW)
        names << QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(stmt, 1)));
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return names;
}

QStringList urlsOf(const QList<QVariantMap>& rows)
{
    QStringList urls;
    for (const QVariantMap& row : rows)
        urls << row.value("url").toString();
    return urls;
}

} // namespace

class TestHistoryStore : public QObject
{
    Q_OBJECT

private:
    QString m_dir;
    QString freshPath(const QString& name) { return m_dir + "/" + name; }

private slots:
    void initTestCase() { m_dir = TestMedia::scratchDir("history"); }

    void upsertKeepsRowAndPlaceAndCountsSaves()
    {
        const QString path = freshPath("upsert.db");
        SqlHelper store(path);
        QSignalSpy changed(&store, &SqlHelper::dataChanged);

        QVERIFY(store.saveVideoInfo("file:///v/a.mp4", "a.mp4", 60.0, 10.0, QByteArray("png"), 4, 3));
        QVERIFY(store.saveVideoInfo("file:///v/b.mp4", "b.mp4", 30.0, 5.0, QByteArray(), 0, 0));
        QCOMPARE(changed.count(), 2);
        QVERIFY(rawExec(path, "UPDATE video_history SET last_played = '2000-01-01 00:00:00'"));

        QVERIFY(store.saveVideoInfo("file:///v/a.mp4", "视频 a.mp4", 61.5, 20.0, QByteArray(), 0, 0));
        const QList<QVariantMap> rows = store.getVideoHistory(-1);
        QCOMPARE(urlsOf(rows), (QStringList{"file:///v/a.mp4", "file:///v/b.mp4"}));
        const QVariantMap a = rows.at(0);
        QCOMPARE(a.value("play_count").toInt(), 2);
        QCOMPARE(a.value("filename").toString(), QString("视频 a.mp4"));
        QCOMPARE(a.value("last_position").toDouble(), 20.0);
        QCOMPARE(a.value("duration").toDouble(), 61.5);
        QVERIFY(a.value("last_played").toString() > QString("2000-01-01 00:00:00"));
        QCOMPARE(rows.at(1).value("play_count").toInt(), 1);
        QCOMPARE(store.getLastPosition("file:///v/a.mp4"), 20.0);
        QCOMPARE(store.getDuration("file:///v/a.mp4"), 61.5);
        QCOMPARE(store.getLastPosition("file:///v/unknown.mp4"), 0.0);
        QCOMPARE(store.getDuration("file:///v/unknown.mp4"), 0.0);

        // Every key the UI reads is present with its type.
        const QStringList keys{"url",        "filename",        "last_position",    "duration",
                               "thumbnail",  "thumbnail_width", "thumbnail_height", "last_played",
                               "play_count", "is_top"};
        for (const QString& key : keys)
            QVERIFY2(a.contains(key), qPrintable(key));
        QCOMPARE(a.value("thumbnail").userType(), int(QMetaType::QByteArray));
        QCOMPARE(a.value("is_top").userType(), int(QMetaType::Int));
    }

    void negativePositionKeepsStoredResumePoint()
    {
        SqlHelper store(freshPath("negative.db"));
        QVERIFY(store.saveVideoInfo("u1", "one", 100.0, 42.5, QByteArray(), 0, 0));
        QVERIFY(store.saveVideoInfo("u1", "one", 100.0, -1.0, QByteArray(), 0, 0));
        QCOMPARE(store.getLastPosition("u1"), 42.5);
        // A new row takes the value as given.
        QVERIFY(store.saveVideoInfo("u2", "two", 0.0, -1.0, QByteArray(), 0, 0));
        QCOMPARE(store.getLastPosition("u2"), -1.0);
        // Zero is a real position (played to the end): it overwrites.
        QVERIFY(store.saveVideoInfo("u1", "one", 100.0, 0.0, QByteArray(), 0, 0));
        QCOMPARE(store.getLastPosition("u1"), 0.0);
    }

    void nullThumbnailKeepsBlobEmptyClearsIt()
    {
        SqlHelper store(freshPath("thumbs.db"));
        const QByteArray png("\x89PNG\r\n\x1a\n\0\1\2", 11);
        QVERIFY(store.saveVideoInfo("u", "f", 1.0, 0.0, png, 160, 90));
        QCOMPARE(store.getVideoHistory(1).at(0).value("thumbnail").toByteArray(), png);

        QVERIFY(store.saveVideoInfo("u", "f", 1.0, 0.0, QByteArray(), 0, 0));
        QVariantMap row = store.getVideoHistory(1).at(0);
        QCOMPARE(row.value("thumbnail").toByteArray(), png);
        QCOMPARE(row.value("thumbnail_width").toInt(), 0);
        QCOMPARE(row.value("thumbnail_height").toInt(), 0);

        QVERIFY(store.saveVideoInfo("u", "f", 1.0, 0.0, QByteArray(""), 7, 8));
        row = store.getVideoHistory(1).at(0);
        QVERIFY(row.value("thumbnail").toByteArray().isEmpty());
        QCOMPARE(row.value("thumbnail_width").toInt(), 7);
    }

    void pinningIsExclusiveAndOrdersTheList()
    {
        SqlHelper store(freshPath("pin.db"));
        for (const char* url : {"a", "b", "c"})
            QVERIFY(store.saveVideoInfo(url, url, 1.0, 0.0, QByteArray(), 0, 0));
        QSignalSpy changed(&store, &SqlHelper::dataChanged);

        QVERIFY(store.setVideoTop("c", true));
        QCOMPARE(urlsOf(store.getVideoHistory(-1)), (QStringList{"c", "a", "b"}));
        QVERIFY(store.setVideoTop("b", true));
        const QList<QVariantMap> rows = store.getVideoHistory(-1);
        QCOMPARE(urlsOf(rows), (QStringList{"b", "a", "c"}));
        QCOMPARE(rows.at(0).value("is_top").toInt(), 1);
        QCOMPARE(rows.at(2).value("is_top").toInt(), 0);

        QVERIFY(store.setVideoTop("b", false));
        QCOMPARE(urlsOf(store.getVideoHistory(-1)), (QStringList{"a", "b", "c"}));
        QCOMPARE(changed.count(), 3);
        // Pinning an unknown URL still clears the pin and succeeds (no row matched).
        QVERIFY(store.setVideoTop("c", true));
        QVERIFY(store.setVideoTop("zzz", true));
        QCOMPARE(urlsOf(store.getVideoHistory(-1)), (QStringList{"a", "b", "c"}));
    }

    void limitZeroIsEmptyNegativeIsAll()
    {
        SqlHelper store(freshPath("limit.db"));
        for (int i = 0; i < 5; ++i)
            QVERIFY(store.saveVideoInfo(QString::number(i), "f", 1.0, 0.0, QByteArray(), 0, 0));
        QVERIFY(store.getVideoHistory(0).isEmpty());
        QCOMPARE(store.getVideoHistory(-1).size(), 5);
        QCOMPARE(store.getVideoHistory(-100).size(), 5);
        QCOMPARE(urlsOf(store.getVideoHistory(2)), (QStringList{"0", "1"}));
    }

    void deleteAndClear()
    {
        SqlHelper store(freshPath("delete.db"));
        QVERIFY(store.saveVideoInfo("a", "a", 1.0, 0.0, QByteArray(), 0, 0));
        QVERIFY(store.saveVideoInfo("b", "b", 1.0, 0.0, QByteArray(), 0, 0));
        QSignalSpy changed(&store, &SqlHelper::dataChanged);
        // The flag never reports success; the change signal comes even for unknown URLs.
        QVERIFY(!store.deleteVideoByUrl("a"));
        QVERIFY(!store.deleteVideoByUrl("unknown"));
        QCOMPARE(changed.count(), 2);
        QCOMPARE(urlsOf(store.getVideoHistory(-1)), QStringList{"b"});
        QVERIFY(store.clearHistory());
        QCOMPARE(changed.count(), 3);
        QVERIFY(store.getVideoHistory(-1).isEmpty());
    }

    void oldSchemaIsMigratedOnOpen()
    {
        const QString path = freshPath("old.db");
        QVERIFY(rawExec(path,
                        "CREATE TABLE video_history (url TEXT PRIMARY KEY,filename TEXT NOT NULL,"
                        "last_position REAL DEFAULT 0,duration REAL DEFAULT 0,thumbnail BLOB,"
                        "last_played DATETIME DEFAULT CURRENT_TIMESTAMP,play_count INTEGER DEFAULT 0);"
                        "INSERT INTO video_history (url, filename, last_position, duration, play_count) "
                        "VALUES ('old', 'old.mp4', 12.0, 90.0, 3);"));
        {
            SqlHelper store(path);
            const QList<QVariantMap> rows = store.getVideoHistory(-1);
            QCOMPARE(rows.size(), 1);
            QCOMPARE(rows.at(0).value("is_top").toInt(), 0);
            QCOMPARE(rows.at(0).value("thumbnail_width").toInt(), 0);
            QCOMPARE(rows.at(0).value("play_count").toInt(), 3);
            QVERIFY(store.setVideoTop("old", true));
            QVERIFY(store.saveVideoInfo("old", "old.mp4", 90.0, 13.0, QByteArray(), 0, 0));
        }
        const QStringList columns = columnsOf(path);
        QCOMPARE(columns.size(), 10);
        QVERIFY(columns.contains("thumbnail_height"));
        // Reopening an up-to-date database changes nothing.
        SqlHelper again(path);
        QCOMPARE(columnsOf(path), columns);
        QCOMPARE(again.getVideoHistory(-1).at(0).value("play_count").toInt(), 4);
        QCOMPARE(again.getVideoHistory(-1).at(0).value("is_top").toInt(), 1);
    }

    void unusableDatabasesFailQuietly_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("cannot open") << "missing-folder";
        QTest::newRow("not sqlite") << "garbage";
        QTest::newRow("directory") << "directory";
    }

    void unusableDatabasesFailQuietly()
    {
        QFETCH(QString, kind);
        QString path;
        if (kind == "missing-folder") {
            path = m_dir + "/no/such/folder/x.db";
        } else if (kind == "garbage") {
            path = freshPath("garbage.db");
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray(4096, 'x'));
        } else {
            path = freshPath("a-directory.db");
            QVERIFY(QDir().mkpath(path));
        }
        SqlHelper store(path);
        QSignalSpy changed(&store, &SqlHelper::dataChanged);
        QVERIFY(!store.saveVideoInfo("u", "f", 1.0, 1.0, QByteArray("x"), 1, 1));
        QVERIFY(!store.setVideoTop("u", true));
        QVERIFY(!store.setVideoTop("u", false));
        QVERIFY(!store.deleteVideoByUrl("u"));
        QVERIFY(!store.clearHistory());
        QCOMPARE(store.getLastPosition("u"), 0.0);
        QVERIFY(store.getVideoHistory(-1).isEmpty());
        QCOMPARE(changed.count(), 0);
    }

    void readOnlyDatabaseReadsButRefusesWrites()
    {
        const QString path = freshPath("readonly.db");
        {
            SqlHelper store(path);
            QVERIFY(store.saveVideoInfo("u", "f", 8.0, 3.0, QByteArray(), 0, 0));
        }
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadUser));
        // Root ignores file permissions; SQLite's read-only URI form gives the same connection.
        SqlHelper store(geteuid() == 0 ? "file:" + path + "?mode=ro" : path);
        if (sqlite3_db_readonly(store.connection(), "main") != 1)
            QSKIP("cannot get a read-only connection here");
        QSignalSpy changed(&store, &SqlHelper::dataChanged);
        QCOMPARE(store.getLastPosition("u"), 3.0);
        QVERIFY(!store.saveVideoInfo("u", "f", 8.0, 4.0, QByteArray(), 0, 0));
        QVERIFY(!store.clearHistory());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(store.getVideoHistory(-1).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestHistoryStore)
#include "tst_history_store.moc"
