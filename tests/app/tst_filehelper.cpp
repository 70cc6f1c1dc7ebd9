#include "FileHelper.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

class TestFileHelper : public QObject
{
    Q_OBJECT
private slots:
    void uniqueNameSkipsTakenNumbers()
    {
        QTemporaryDir dir;
        QCOMPARE(m_helper.getUniqueFileName(dir.filePath("剪辑 1.mkv")), dir.filePath("剪辑 1.mkv"));
        touch(dir.filePath("a.mp4"));
        touch(dir.filePath("a (1).mp4"));
        QCOMPARE(m_helper.getUniqueFileName(dir.filePath("a.mp4")), dir.filePath("a (2).mp4"));
        // A file: URL is accepted as QML passes it.
        QCOMPARE(m_helper.getUniqueFileName(QUrl::fromLocalFile(dir.filePath("a.mp4")).toString()),
                 dir.filePath("a (2).mp4"));
    }

    void sizeTextIsKilobytesWithTwoDecimals_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << qint64(0) << "0.00 KB";
        QTest::newRow("one and a half") << qint64(1536) << "1.50 KB";
        QTest::newRow("megabyte") << qint64(1048576) << "1024.00 KB";
    }

    void sizeTextIsKilobytesWithTwoDecimals()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, text);
        QTemporaryDir dir;
        touch(dir.filePath("f.bin"), bytes);
        QCOMPARE(m_helper.getFileSize(dir.filePath("f.bin")), text);
        QVERIFY(m_helper.getFileSize(dir.filePath("missing.bin")).isEmpty());
    }

    void urlAndPathFormsSurviveSpacesAndNonAscii()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("我的 视频 #1.final.mp4");
        touch(path);
        const QString url = m_helper.getUrlByPath(path);
        QVERIFY(url.startsWith("file:///"));
        QCOMPARE(m_helper.getFilePath(url), path);
        QVERIFY(m_helper.isExists(url));
        QVERIFY(m_helper.fileExists(path));
        QCOMPARE(m_helper.getFileName(url), QString("我的 视频 #1.final.mp4"));
        QCOMPARE(m_helper.getFileBaseName(url), QString("我的 视频 #1"));
        QCOMPARE(m_helper.getFileSuffix(url), QString("mp4"));
        QCOMPARE(m_helper.getFileAbsolutePath(url), dir.path());
    }

    void copyFileOverwritesAndReportsFailure()
    {
        QTemporaryDir dir;
        touch(dir.filePath("src.bin"), 10);
        touch(dir.filePath("dst.bin"), 3);
        QVERIFY(m_helper.copyFile(dir.filePath("src.bin"), dir.filePath("dst.bin")));
        QCOMPARE(QFileInfo(dir.filePath("dst.bin")).size(), qint64(10));
        QVERIFY(!m_helper.copyFile(dir.filePath("missing.bin"), dir.filePath("x.bin")));
    }

    void fileListHoldsAbsolutePathsOfFilesOnly()
    {
        QTemporaryDir dir;
        touch(dir.filePath("b.mp4"));
        touch(dir.filePath("a.mp4"));
        QDir(dir.path()).mkdir("sub");
        QCOMPARE(m_helper.getFileList(dir.path()),
                 QStringList({dir.filePath("a.mp4"), dir.filePath("b.mp4")}));
        QVERIFY(m_helper.getFileList(dir.filePath("nope")).isEmpty());
    }

private:
    static void touch(const QString& path, qint64 size = 0)
    {
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(size, 'x'));
    }

    FileHelper m_helper;
};

QTEST_GUILESS_MAIN(TestFileHelper)
#include "tst_filehelper.moc"
