#include "FileModel.h"

#include <QSignalSpy>
#include <QtTest>

class FileModelTest : public QObject
{
    Q_OBJECT

private slots:
    void appendKeepsOneRowPerPathAndExposesIt()
    {
        FileModel model;
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        model.append("file:///a.mp4", 1, "/out/a.mkv");
        model.append("file:///b.mp4", 0, QString());
        model.append("file:///a.mp4", 3, "/out/a.mp4");
        QCOMPARE(model.count(), 2);
        QCOMPARE(inserted.count(), 2);
        // The first entry wins; the duplicate's status and destination are not taken over.
        QCOMPARE(model.get(0), row("file:///a.mp4", 1, "/out/a.mkv"));
        // Comparison is exact: another spelling of the same file is another row.
        model.append("file:///A.mp4", 0, QString());
        QCOMPARE(model.count(), 3);

        QCOMPARE(model.roleNames(),
                 (QHash<int, QByteArray>{{257, "path"}, {258, "status"}, {259, "desPath"}}));
        const QModelIndex first = model.index(0);
        for (int role = 257; role <= 259; ++role)
            QCOMPARE(model.data(first, role), model.get(0).value(model.roleNames().value(role)));
        QVERIFY(!model.data(first, 256).isValid());
        QVERIFY(!model.data(first, 260).isValid());
        QVERIFY(!model.data(model.index(3), 257).isValid());
        QVERIFY(model.get(-1).isEmpty());
        QVERIFY(model.get(3).isEmpty());
    }

    void setPropertyChangesOnlyRealChanges()
    {
        FileModel model;
        model.append("file:///a.mp4", 0, QString());
        model.append("file:///b.mp4", 2, QString());
        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

        QVERIFY(!model.setProperty(1, "status", 2)); // equal values
        QVERIFY(!model.setProperty(0, "path", "file:///a.mp4"));
        QVERIFY(!model.setProperty(0, "desPath", QString()));
        QVERIFY(!model.setProperty(0, "name", 1)); // unknown role name
        QVERIFY(!model.setProperty(-1, "status", 5));
        QVERIFY(!model.setProperty(2, "status", 5));
        QCOMPARE(changed.count(), 0);

        QVERIFY(model.setProperty(1, "status", 3));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 1);
        QCOMPARE(changed.at(0).at(1).toModelIndex().row(), 1);
        // Values from QML arrive as variants of any type: status is read as a number.
        QVERIFY(model.setProperty(0, "status", QString("4")));
        QVERIFY(model.setProperty(0, "desPath", "/out/a.mkv"));
        QVERIFY(model.setProperty(0, "path", "file:///c.mp4"));
        QCOMPARE(model.get(0), row("file:///c.mp4", 4, "/out/a.mkv"));
        QCOMPARE(changed.count(), 4);

        model.clearStatus(); // one change over all rows
        QCOMPARE(model.get(0).value("status").toInt() + model.get(1).value("status").toInt(), 0);
        QCOMPARE(changed.count(), 5);
        QCOMPARE(changed.at(4).at(1).toModelIndex().row(), 1);
    }

    void removeAndClearIgnoreNothingToDo()
    {
        FileModel model;
        for (const char* path : {"file:///a.mp4", "file:///b.mp4", "file:///c.mp4"})
            model.append(path, 0, QString());
        QSignalSpy countChanged(&model, &FileModel::rowCountChanged);
        QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
        model.remove(model.count());
        model.remove(-1);
        QCOMPARE(model.count(), 3);
        QCOMPARE(countChanged.count(), 0);
        model.remove(1);
        QCOMPARE(countChanged.count(), 1);
        QCOMPARE(model.get(1).value("path").toString(), QString("file:///c.mp4"));
        model.append("file:///b.mp4", 0, QString()); // a removed path may come back
        QCOMPARE(model.count(), 3);

        model.clear();
        QCOMPARE(model.count(), 0);
        QCOMPARE(reset.count(), 1);
        QCOMPARE(countChanged.count(), 2); // the append's; a reset is not a count change
        model.clear();                     // an empty model resets too
        QCOMPARE(reset.count(), 2);
    }

private:
    static QVariantMap row(const QString& path, int status, const QString& desPath)
    {
        return {{"path", path}, {"status", status}, {"desPath", desPath}};
    }
};

QTEST_GUILESS_MAIN(FileModelTest)
#include "tst_filemodel.moc"
