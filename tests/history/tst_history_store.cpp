#include "LogCapture.h"
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

QStringList urlsOf(const QList<QVariantMap>& rows)
{
    QStringList urls;
    for (const QVariantMap& row : rows)
        urls << row.value("url").toString();
    return urls;
}

bool save(SqlHelper& store, const QString& url, double position = 0.0, const QByteArray& thumb = {},
          int w = 0)
{
    return store.saveVideoInfo(url, url, 1.0, position, thumb, w, w);
}

} // namespace

// The history store against a real database file in the test's temporary folder.
class TestHistoryStore : public QObject
{
    Q_OBJECT

    QString m_dir;
    QString path(const QString& name) { return m_dir + "/" + name; }

private slots:
    void initTestCase() { m_dir = TestMedia::scratchDir("history"); }

    void upsertKeepsRowAndPlaceAndCountsPlays()
    {
        SqlHelper store(path("upsert.db"));
        QSignalSpy changed(&store, &SqlHelper::dataChanged);
        QVERIFY(store.saveVideoInfo("file:///v/a.mp4", "a.mp4", 60.0, 10.0, QByteArray("png"), 4, 3));
        QVERIFY(store.saveVideoInfo("file:///v/b.mp4", "b.mp4", 30.0, 5.0, QByteArray(), 0, 0));
        QCOMPARE(changed.count(), 2);
        QVERIFY(rawExec(path("upsert.db"), "UPDATE video_history SET last_played = '2000-01-01 00:00:00'"));

        QVERIFY(store.saveVideoInfo("file:///v/a.mp4", "视频 a.mp4", 61.5, 20.0, QByteArray(), 0, 0));
        const QList<QVariantMap> rows = store.getVideoHistory(-1);
        QCOMPARE(urlsOf(rows), (QStringList{"file:///v/a.mp4", "file:///v/b.mp4"}));
        const QVariantMap a = rows.at(0);
        QCOMPARE(a.value("play_count").toInt(), 2);
        QCOMPARE(a.value("filename").toString(), QString("视频 a.mp4"));
        QCOMPARE(a.value("duration").toDouble(), 61.5);
        QVERIFY(a.value("last_played").toString() > QString("2000-01-01 00:00:00"));
        QCOMPARE(rows.at(1).value("play_count").toInt(), 1);
        QCOMPARE(store.getLastPosition("file:///v/a.mp4"), 20.0);
        QCOMPARE(store.getDuration("file:///v/a.mp4"), 61.5);
        QCOMPARE(store.getLastPosition("file:///v/unknown.mp4"), 0.0);
        QCOMPARE(a.value("is_top").userType(), int(QMetaType::Int));
    }

    void negativePositionsAndNullThumbnailsKeepWhatIsStored()
    {
        SqlHelper store(path("keep.db"));
        const QByteArray png("\x89PNG\r\n\x1a\n\0\1\2", 11);
        QVERIFY(save(store, "u1", 42.5, png, 160));
        QVERIFY(save(store, "u1", -1.0));
        QCOMPARE(store.getLastPosition("u1"), 42.5);
        QVariantMap row = store.getVideoHistory(1).at(0);
        QCOMPARE(row.value("thumbnail").toByteArray(), png);
        QCOMPARE(row.value("thumbnail_width").toInt(), 0);
        // An empty (not null) thumbnail clears it; zero is a real position (played to the end).
        QVERIFY(save(store, "u1", 0.0, QByteArray(""), 7));
        row = store.getVideoHistory(1).at(0);
        QVERIFY(row.value("thumbnail").toByteArray().isEmpty());
        QCOMPARE(row.value("thumbnail_width").toInt(), 7);
        QCOMPARE(store.getLastPosition("u1"), 0.0);
        // A new row takes a negative value as given.
        QVERIFY(save(store, "u2", -1.0));
        QCOMPARE(store.getLastPosition("u2"), -1.0);
    }

    void pinningIsExclusiveAndOrdersTheList()
    {
        SqlHelper store(path("pin.db"));
        for (const char* url : {"a", "b", "c"})
            QVERIFY(save(store, url));
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

    void limitsDeletesAndClearSignalEveryChange()
    {
        SqlHelper store(path("limit.db"));
        for (int i = 0; i < 5; ++i)
            QVERIFY(save(store, QString::number(i)));
        QVERIFY(store.getVideoHistory(0).isEmpty());
        QCOMPARE(store.getVideoHistory(-100).size(), 5);
        QCOMPARE(urlsOf(store.getVideoHistory(2)), (QStringList{"0", "1"}));
        QSignalSpy changed(&store, &SqlHelper::dataChanged);
        // The flag never reports success; the change signal comes even for unknown URLs.
        QVERIFY(!store.deleteVideoByUrl("0"));
        QVERIFY(!store.deleteVideoByUrl("unknown"));
        QCOMPARE(urlsOf(store.getVideoHistory(1)), QStringList{"1"});
        QVERIFY(store.clearHistory());
        QCOMPARE(changed.count(), 3);
        QVERIFY(store.getVideoHistory(-1).isEmpty());
    }

    void oldSchemaIsMigratedOnOpen()
    {
        const QString old = path("old.db");
        QVERIFY(rawExec(old, "CREATE TABLE video_history (url TEXT PRIMARY KEY,filename TEXT NOT NULL,"
                             "last_position REAL DEFAULT 0,duration REAL DEFAULT 0,thumbnail BLOB,"
                             "last_played DATETIME DEFAULT CURRENT_TIMESTAMP,play_count INTEGER DEFAULT 0);"
                             "INSERT INTO video_history (url, filename, last_position, duration, play_count) "
                             "VALUES ('old', 'old.mp4', 12.0, 90.0, 3);"));
        {
            SqlHelper store(old);
            const QVariantMap row = store.getVideoHistory(-1).value(0);
            QCOMPARE(row.size(), 10);
            QCOMPARE(row.value("is_top").toInt(), 0);
            QCOMPARE(row.value("play_count").toInt(), 3);
            QVERIFY(store.setVideoTop("old", true));
            QVERIFY(store.saveVideoInfo("old", "old.mp4", 90.0, 13.0, QByteArray(), 0, 0));
        }
        // Reopening an up-to-date database changes nothing.
        SqlHelper again(old);
        const QVariantMap row = again.getVideoHistory(-1).value(0);
        QCOMPARE(row.size(), 10);
        QCOMPARE(row.value("play_count").toInt(), 4);
        QCOMPARE(row.value("is_top").toInt(), 1);
        QCOMPARE(row.value("last_position").toDouble(), 13.0);
    }

    // Whatever makes the file unusable, the store says so once and keeps no history, rather
    // than failing save after save later.
    void unusableDatabasesTurnHistoryOffWithOneLine_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"missing folder", "not sqlite", "read-only file", "unwritable folder"})
            QTest::newRow(kind) << QString(kind);
    }

    void unusableDatabasesTurnHistoryOffWithOneLine()
    {
        QFETCH(QString, kind);
        const QString folder = path(QString(kind).replace(' ', '-'));
        QVERIFY(QDir().mkpath(folder));
        QString file = folder + "/video_history.db";
        if (kind == "missing folder") {
            file = folder + "/no/such/folder/x.db";
        } else if (kind == "not sqlite") {
            QVERIFY(TestMedia::writeFile(file, TestMedia::noise(4096)));
        } else {
            {
                SqlHelper store(file);
                QVERIFY(save(store, "u", 3.0));
            }
            if (kind == "read-only file") {
                QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadUser));
                // Root ignores file permissions; SQLite's read-only URI form gives the same connection.
                if (geteuid() == 0)
                    file = "file:" + file + "?mode=ro";
            } else {
                QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
                // Root writes into any folder; folders in the places of the journal files
                // fail SQLite's writes there just as a read-only folder does.
                if (geteuid() == 0)
                    for (const char* suffix : {"-journal", "-wal", "-shm"})
                        QVERIFY(QDir().mkpath(file + suffix));
            }
        }
        LogCapture log(spdlog::level::debug);
        SqlHelper store(file);
        QCOMPARE(log.lines(spdlog::level::err).size(), 1);
        QVERIFY(log.lines(spdlog::level::err).at(0).startsWith("Playback history is off: cannot write"));
        QCOMPARE(store.connection(), nullptr);
        QSignalSpy changed(&store, &SqlHelper::dataChanged);
        QVERIFY(!save(store, "u", 4.0, QByteArray("x"), 1));
        QVERIFY(!store.setVideoTop("u", true));
        QVERIFY(!store.clearHistory());
        QCOMPARE(store.getLastPosition("u"), 0.0);
        QVERIFY(store.getVideoHistory(-1).isEmpty());
        QCOMPARE(changed.count(), 0);
        QCOMPARE(log.lines(spdlog::level::err).size(), 1);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    // Closing releases the file (the last connection to a write-ahead-logged database removes
    // its log) and leaves a store whose calls fail quietly; the rows are all in the file.
    void closeReleasesTheFileAndLaterCallsFailQuietly()
    {
        const QString file = path("close.db");
        SqlHelper store(file);
        QVERIFY(save(store, "u", 7.0));
        QVERIFY(QFile::exists(file + "-wal"));
        store.close();
        QVERIFY(!QFile::exists(file + "-wal"));
        QVERIFY(!save(store, "u", 8.0));
        QVERIFY(store.getVideoHistory(-1).isEmpty());
        QCOMPARE(SqlHelper(file).getLastPosition("u"), 7.0);
    }
};

QTEST_GUILESS_MAIN(TestHistoryStore)
#include "tst_history_store.moc"
