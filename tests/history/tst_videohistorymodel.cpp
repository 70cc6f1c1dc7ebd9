#include "SqlHelper.h"
#include "VideoHistoryModel.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

// The model reads the process-wide store, which opens "video_history.db" in the working
// directory: every run starts in a fresh folder of the test's own TMPDIR.
class VideoHistoryModelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void showsTenRowsWithThePinnedOneFirst();
    void outOfRangeRowsAndRolesAreEmpty();
    void rolesReadTheRowMap();
    void aStoreChangeResetsTheModelAtOnce();
    void removeVideoEmptiesTheWholeHistory();

private:
    static QString url(int i) { return QStringLiteral("file:///videos/clip%1.mp4").arg(i); }
    static void save(int i, double position = 1.5)
    {
        QVERIFY(SqlHelper::instance()->saveVideoInfo(url(i), QStringLiteral("clip%1.mp4").arg(i), 60.0 + i,
                                                     position, QByteArray(), 0, 0));
    }
};

void VideoHistoryModelTest::initTestCase()
{
    const QString dir = QDir::tempPath() + "/history-model";
    QDir(dir).removeRecursively();
    QVERIFY(QDir().mkpath(dir));
    QVERIFY(QDir::setCurrent(dir));
    QVERIFY(SqlHelper::instance()->connection());
}

void VideoHistoryModelTest::init()
{
    QVERIFY(SqlHelper::instance()->clearHistory());
}

void VideoHistoryModelTest::showsTenRowsWithThePinnedOneFirst()
{
    for (int i = 1; i <= 12; ++i)
        save(i);
    QVERIFY(SqlHelper::instance()->setVideoTop(url(12), true));

    VideoHistoryModel model;
    QCOMPARE(model.count(), 10);
    QCOMPARE(model.rowCount(), 10);
    QCOMPARE(model.get(0).value("url").toString(), url(12));
    QCOMPARE(model.get(0).value("is_top").toInt(), 1);
    // The others oldest first; the two youngest unpinned rows (10, 11) are cut off.
    for (int row = 1; row < 10; ++row)
        QCOMPARE(model.get(row).value("url").toString(), url(row));
}

void VideoHistoryModelTest::outOfRangeRowsAndRolesAreEmpty()
{
    save(1);
    save(2);
    VideoHistoryModel model;
    QCOMPARE(model.count(), 2);
    QVERIFY(model.get(-1).isEmpty());
    QVERIFY(model.get(model.count()).isEmpty());

    const QModelIndex first = model.index(0);
    QVERIFY(!model.data(first, 256).isValid());
    QVERIFY(!model.data(first, 267).isValid());
    QVERIFY(!model.data(first, Qt::DisplayRole).isValid());
    QVERIFY(!model.data(QModelIndex(), 257).isValid());
    QCOMPARE(model.rowCount(first), 0);
}

void VideoHistoryModelTest::rolesReadTheRowMap()
{
    QVERIFY(SqlHelper::instance()->saveVideoInfo(url(7), "clip7.mp4", 95.5, 12.25, QByteArray("png-bytes"),
                                                 160, 90));
    VideoHistoryModel model;
    const QHash<int, QByteArray> names = model.roleNames();
    const QList<QByteArray> expectedNames{"url",       "filename",       "lastPosition",    "duration",
                                          "thumbnail", "thumbnailWidth", "thumbnailHeight", "lastPlayed",
                                          "playCount", "isTop"};
    QCOMPARE(names.size(), expectedNames.size());
    for (int i = 0; i < expectedNames.size(); ++i)
        QCOMPARE(names.value(257 + i), expectedNames.at(i));

    const QModelIndex row = model.index(0);
    QCOMPARE(model.data(row, VideoHistoryModel::UrlRole).toString(), url(7));
    QCOMPARE(model.data(row, VideoHistoryModel::FileNameRole).toString(), QString("clip7.mp4"));
    QCOMPARE(model.data(row, VideoHistoryModel::LastPositionRole).toDouble(), 12.25);
    QCOMPARE(model.data(row, VideoHistoryModel::DurationRole).toDouble(), 95.5);
    QCOMPARE(model.data(row, VideoHistoryModel::ThumbnailRole).toByteArray(), QByteArray("png-bytes"));
    QCOMPARE(model.data(row, VideoHistoryModel::ThumbnailWidthRole).toInt(), 160);
    QCOMPARE(model.data(row, VideoHistoryModel::ThumbnailHeightRole).toInt(), 90);
    QVERIFY(!model.data(row, VideoHistoryModel::LastPlayedRole).toString().isEmpty());
    QCOMPARE(model.data(row, VideoHistoryModel::PlayCountRole).toInt(), 1);
    QCOMPARE(model.data(row, VideoHistoryModel::IsTopRole).toInt(), 0);
    // get() keeps the store's column names, which QML's pin action reads.
    QCOMPARE(model.get(0).value("last_position").toDouble(), 12.25);
    QVERIFY(!model.get(0).contains("lastPosition"));
    QCOMPARE(model.getLastPosition(url(7)), 12.25);
    QCOMPARE(model.getLastPosition(url(8)), 0.0);
}

void VideoHistoryModelTest::aStoreChangeResetsTheModelAtOnce()
{
    save(1, 5.0);
    VideoHistoryModel model;
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy countChanged(&model, &VideoHistoryModel::countChanged);

    save(2);
    // Synchronous: no event loop turn between the save and the new rows.
    QCOMPARE(reset.count(), 1);
    QCOMPARE(countChanged.count(), 1);
    QCOMPARE(model.count(), 2);

    QVERIFY(SqlHelper::instance()->saveVideoInfo(url(1), "clip1.mp4", 61.0, 42.0, QByteArray(), 0, 0));
    QCOMPARE(reset.count(), 2);
    QCOMPARE(model.data(model.index(0), VideoHistoryModel::LastPositionRole).toDouble(), 42.0);
    QCOMPARE(model.data(model.index(0), VideoHistoryModel::PlayCountRole).toInt(), 2);

    SqlHelper::instance()->deleteVideoByUrl(url(2));
    QCOMPARE(reset.count(), 3);
    QCOMPARE(model.count(), 1);
}

void VideoHistoryModelTest::removeVideoEmptiesTheWholeHistory()
{
    for (int i = 1; i <= 4; ++i)
        save(i);
    VideoHistoryModel model;
    VideoHistoryModel other;
    QSignalSpy storeChanged(SqlHelper::instance(), &SqlHelper::dataChanged);
    QCOMPARE(model.count(), 4);

    // The url is not used: every row goes.
    QVERIFY(model.removeVideo(url(2)));
    QCOMPARE(model.count(), 0);
    QCOMPARE(storeChanged.count(), 1);
    QVERIFY(SqlHelper::instance()->getVideoHistory(-1).isEmpty());
    // Every model on the store hears about it.
    QCOMPARE(other.count(), 0);
}

QTEST_GUILESS_MAIN(VideoHistoryModelTest)
#include "tst_videohistorymodel.moc"
