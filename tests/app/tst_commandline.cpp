#include "CommandLine.h"
#include "FileHelper.h"
#include "SingleInstance.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

// The word classification and the hand-off decoding, in process. The two-process exchange
// is covered by tst_startup.
class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        m_a = m_dir.filePath("a clip's \"best\".mp4");
        m_b = m_dir.filePath("第二 个.mkv");
        for (const QString& p : {m_a, m_b}) {
            QFile f(p);
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
    }

    // A missing path or a folder is not a file: the last word naming one wins.
    void lastCommandAndLastExistingFileWin()
    {
        const CommandLineRequest r =
            parseCommandLineWords({"-compress", m_a, "-crop", m_b, "/no/such/file.mp4", m_dir.path()});
        QCOMPARE(r.command, QString("-crop"));
        QCOMPARE(r.fileUrl, QUrl::fromLocalFile(m_b).toString());

        QSignalSpy spy(FileHelper::instance(), &FileHelper::openFile);
        handleCommandLineWords({m_a});
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), QString());
        QCOMPARE(QUrl(spy.at(0).at(1).toString()).toLocalFile(), m_a);
    }

    void handOffDropsEmptyLinesAndKeepsUnicode()
    {
        const QByteArray message = "\n-crop\n\n" + m_b.toUtf8() + "\n";
        QCOMPARE(SingleInstance::decodeHandOff(message), QStringList({"-crop", m_b}));
        QVERIFY(SingleInstance::decodeHandOff(QByteArray()).isEmpty());
        QVERIFY(SingleInstance::decodeHandOff("\n\n\n").isEmpty());
    }

    void garbageHandOffEmitsNothing()
    {
        QSignalSpy spy(FileHelper::instance(), &FileHelper::openFile);
        QByteArray garbage("\xff\xfe\xc3\x28\n\x80\x81/tmp/\xe2\x82\n-x");
        garbage.append('\0');
        garbage.append("zz");
        handleCommandLineWords(SingleInstance::decodeHandOff(garbage));
        QCOMPARE(spy.count(), 0);
    }

private:
    QTemporaryDir m_dir;
    QString m_a;
    QString m_b;
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
