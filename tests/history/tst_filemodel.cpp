#include "FileModel.h"

#include <QSignalSpy>
#include <QtTest>

class FileModelTest : public QObject
{
    Q_OBJECT

private slots:
    void appendingAnExistingPathKeepsOneRow();
    void rowsExposeRolesAndMaps();
    void setPropertyChangesOnlyRealChanges();
    void removeIgnoresIndexesOutsideTheList();
    void clearResetsEvenWhenEmpty();
    void clearStatusZeroesEveryRow();
};

void FileModelTest::appendingAnExistingPathKeepsOneRow()
{
    FileModel model;
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy countChanged(&model, &FileModel::rowCountChanged);
    model.append("file:///a.mp4", 0, QString());
    model.append("file:///b.mp4", 0, QString());
    model.append("file:///a.mp4", 3, "/out/a.mp4");
    QCOMPARE(model.count(), 2);
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(inserted.count(), 2);
    QCOMPARE(countChanged.count(), 2);
    // The first entry wins; the duplicate's status and destination are not taken over.
    QCOMPARE(model.get(0).value("status").toInt(), 0);
    QCOMPARE(model.get(0).value("desPath").toString(), QString());
    // Comparison is exact: another spelling of the same file is another row.
    model.append("file:///A.mp4", 0, QString());
    QCOMPARE(model.count(), 3);
}

void FileModelTest::rowsExposeRolesAndMaps()
{
    FileModel model;
    model.append("file:///a.mp4", 1, "/out/a.mkv");
    const QHash<int, QByteArray> names = model.roleNames();
    QCOMPARE(names.value(257), QByteArray("path"));
    QCOMPARE(names.value(258), QByteArray("status"));
    QCOMPARE(names.value(259), QByteArray("desPath"));
    QCOMPARE(names.size(), 3);

    const QModelIndex row = model.index(0);
    QCOMPARE(model.data(row, 257).toString(), QString("file:///a.mp4"));
    QCOMPARE(model.data(row, 258).toInt(), 1);
    QCOMPARE(model.data(row, 259).toString(), QString("/out/a.mkv"));
    QVERIFY(!model.data(row, 256).isValid());
    QVERIFY(!model.data(row, 260).isValid());
    QVERIFY(!model.data(model.index(1), 257).isValid());
    QCOMPARE(model.rowCount(row), 0);

    const QVariantMap map = model.get(0);
    QCOMPARE(map.value("path").toString(), QString("file:///a.mp4"));
    QCOMPARE(map.value("status").toInt(), 1);
    QCOMPARE(map.value("desPath").toString(), QString("/out/a.mkv"));
    QVERIFY(model.get(-1).isEmpty());
    QVERIFY(model.get(1).isEmpty());
}

void FileModelTest::setPropertyChangesOnlyRealChanges()
{
    FileModel model;
    model.append("file:///a.mp4", 0, QString());
    model.append("file:///b.mp4", 2, QString());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

    QVERIFY(!model.setProperty(1, "status", 2));
    QVERIFY(!model.setProperty(0, "path", "file:///a.mp4"));
    QVERIFY(!model.setProperty(0, "desPath", QString()));
    QVERIFY(!model.setProperty(0, "name", 1));
    QVERIFY(!model.setProperty(-1, "status", 5));
    QVERIFY(!model.setProperty(2, "status", 5));
    QCOMPARE(changed.count(), 0);

    QVERIFY(model.setProperty(1, "status", 3));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 1);
    QCOMPARE(changed.at(0).at(1).toModelIndex().row(), 1);
    QCOMPARE(model.get(1).value("status").toInt(), 3);

    // Values from QML arrive as variants of any type: status is read as a number.
    QVERIFY(model.setProperty(0, "status", QString("4")));
    QCOMPARE(model.get(0).value("status").toInt(), 4);
    QVERIFY(model.setProperty(0, "desPath", "/out/a.mkv"));
    QVERIFY(model.setProperty(0, "path", "file:///c.mp4"));
    QCOMPARE(model.get(0).value("path").toString(), QString("file:///c.mp4"));
    QCOMPARE(model.get(0).value("desPath").toString(), QString("/out/a.mkv"));
    QCOMPARE(changed.count(), 4);
}

void FileModelTest::removeIgnoresIndexesOutsideTheList()
{
    FileModel model;
    model.append("file:///a.mp4", 0, QString());
    model.append("file:///b.mp4", 0, QString());
    model.append("file:///c.mp4", 0, QString());
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy countChanged(&model, &FileModel::rowCountChanged);

    model.remove(model.count());
    model.remove(-1);
    QCOMPARE(model.count(), 3);
    QCOMPARE(removed.count(), 0);
    QCOMPARE(countChanged.count(), 0);

    model.remove(1);
    QCOMPARE(model.count(), 2);
    QCOMPARE(removed.count(), 1);
    QCOMPARE(countChanged.count(), 1);
    QCOMPARE(model.get(0).value("path").toString(), QString("file:///a.mp4"));
    QCOMPARE(model.get(1).value("path").toString(), QString("file:///c.mp4"));
    // A removed path may be added again.
    model.append("file:///b.mp4", 0, QString());
    QCOMPARE(model.count(), 3);
}

void FileModelTest::clearResetsEvenWhenEmpty()
{
    FileModel model;
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    QSignalSpy countChanged(&model, &FileModel::rowCountChanged);
    model.clear();
    QCOMPARE(reset.count(), 1);

    model.append("file:///a.mp4", 0, QString());
    model.append("file:///b.mp4", 0, QString());
    countChanged.clear();
    model.clear();
    QCOMPARE(reset.count(), 2);
    QCOMPARE(model.count(), 0);
    QCOMPARE(countChanged.count(), 0);
    model.append("file:///a.mp4", 0, QString());
    QCOMPARE(model.count(), 1);
}

void FileModelTest::clearStatusZeroesEveryRow()
{
    FileModel model;
    model.append("file:///a.mp4", 2, QString());
    model.append("file:///b.mp4", 5, QString());
    model.append("file:///c.mp4", 0, QString());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.clearStatus();
    for (int i = 0; i < model.count(); ++i)
        QCOMPARE(model.get(i).value("status").toInt(), 0);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 0);
    QCOMPARE(changed.at(0).at(1).toModelIndex().row(), 2);
}

QTEST_GUILESS_MAIN(FileModelTest)
#include "tst_filemodel.moc"
