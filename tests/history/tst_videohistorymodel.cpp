#include "SqlHelper.h"
#include "VideoHistoryModel.h"

#include <QDir>
#include <QSignalSpy>
#include <QtTest>

// The model reads the process-wide store, which opens "video_history.db" in the working
// directory: the run starts in a fresh folder of the test's own TMPDIR.
class VideoHistoryModelTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(QDir::tempPath() + "/history-model"));
        QVERIFY(QDir::setCurrent(QDir::tempPath() + "/history-model"));
    }

    void init() { QVERIFY(SqlHelper::instance()->clearHistory()); }
    void showsTenRowsWithThePinnedOneFirst()
    {
        for (int i = 1; i <= 12; ++i)
            QVERIFY(save(i));
        QVERIFY(SqlHelper::instance()->setVideoTop(url(12), true));

        VideoHistoryModel model;
        QCOMPARE(model.count(), 10);
        QCOMPARE(model.get(0).value("url").toString(), url(12));
        // The others oldest first; the two youngest unpinned rows (10, 11) are cut off.
        for (int row = 1; row < 10; ++row)
            QCOMPARE(model.get(row).value("url").toString(), url(row));
    }

    void rolesAndRowsOutsideTheListAreEmpty()
    {
        QVERIFY(save(7, 12.25, "png-bytes"));
        VideoHistoryModel model;
        const QModelIndex row = model.index(0);
        const QStringList names = QString("url filename lastPosition duration thumbnail thumbnailWidth "
                                          "thumbnailHeight lastPlayed playCount isTop")
                                      .split(' ');
        const QStringList values{url(7), "clip7.mp4", "12.25", "67", "png-bytes", "160", "90", "", "1", "0"};
        QCOMPARE(model.roleNames().size(), names.size());
        for (int i = 0; i < names.size(); ++i) {
            QCOMPARE(QString(model.roleNames().value(257 + i)), names.at(i));
            if (i != 7) // lastPlayed is the save's own time
                QCOMPARE(model.data(row, 257 + i).toString(), values.at(i));
        }
        QVERIFY(!model.data(row, VideoHistoryModel::LastPlayedRole).toString().isEmpty());
        // get() keeps the store's column names, which QML's pin action reads.
        QCOMPARE(model.get(0).value("last_position").toDouble(), 12.25);
        QCOMPARE(model.getLastPosition(url(7)), 12.25);
        QCOMPARE(model.getLastPosition(url(8)), 0.0);

        QVERIFY(model.get(-1).isEmpty());
        QVERIFY(model.get(model.count()).isEmpty());
        QVERIFY(!model.data(row, 256).isValid());
        QVERIFY(!model.data(row, 267).isValid());
    }

    void aStoreChangeResetsTheModelAtOnce()
    {
        QVERIFY(save(1, 5.0));
        VideoHistoryModel model;
        VideoHistoryModel other;
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        QSignalSpy countChanged(&model, &VideoHistoryModel::countChanged);

        // Synchronous: no event loop turn between a save and the new rows.
        QVERIFY(save(2));
        QCOMPARE(reset.count(), 1);
        QCOMPARE(countChanged.count(), 1);
        QCOMPARE(model.count(), 2);
        QVERIFY(save(1, 42.0));
        QCOMPARE(reset.count(), 2);
        QCOMPARE(model.data(model.index(0), VideoHistoryModel::LastPositionRole).toDouble(), 42.0);
        QCOMPARE(model.data(model.index(0), VideoHistoryModel::PlayCountRole).toInt(), 2);
        SqlHelper::instance()->deleteVideoByUrl(url(2));
        QCOMPARE(model.count(), 1);

        // removeVideo ignores its url: the whole history goes, and every model hears of it.
        QVERIFY(save(3));
        QVERIFY(model.removeVideo(url(3)));
        QCOMPARE(model.count() + other.count(), 0);
    }

private:
    static QString url(int i) { return QStringLiteral("file:///videos/clip%1.mp4").arg(i); }
    static bool save(int i, double position = 1.5, const QByteArray& png = QByteArray())
    {
        return SqlHelper::instance()->saveVideoInfo(url(i), QStringLiteral("clip%1.mp4").arg(i), 60.0 + i,
                                                    position, png, png.isEmpty() ? 0 : 160,
                                                    png.isEmpty() ? 0 : 90);
    }
};

QTEST_GUILESS_MAIN(VideoHistoryModelTest)
#include "tst_videohistorymodel.moc"
