#include "ConfigHelper.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestConfigHelper : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_path = m_dir->filePath("config.json");
    }

    void missingFileGivesEmptyAnswersAndIsNeverCreated()
    {
        ConfigHelper config(m_path);
        QVERIFY(config.getSupportedFormats().isEmpty());
        QVERIFY(config.appName().isEmpty());
        config.setDefaultDir("/home/someone/Videos");
        QVERIFY(!QFile::exists(m_path));
        QVERIFY(config.getDefaultDir().isEmpty());
    }

    void formatsAreFilteredByExactType()
    {
        write(R"({"formats":[{"extension":"mp4","type":"video"},{"extension":"MKV","type":"video"},
                 {"extension":"mp3","type":"audio"},{"extension":"xyz"},{"extension":"wav","type":"Audio"}]})");
        ConfigHelper config(m_path);
        QCOMPARE(config.getSupportedFormats(), QStringList({"mp4", "MKV", "mp3", "xyz", "wav"}));
        QCOMPARE(config.getSupportedVideoFormats(), QStringList({"mp4", "MKV"}));
        QCOMPARE(config.getSupportedAudioFormats(), QStringList({"mp3"}));
    }

    void formatsObjectInsteadOfArrayGivesEmptyLists()
    {
        write(R"({"formats":{"extension":"mp4","type":"video"},"appName":"Vidora"})");
        ConfigHelper config(m_path);
        QVERIFY(config.getSupportedFormats().isEmpty());
        QVERIFY(config.getSupportedVideoFormats().isEmpty());
        QCOMPARE(config.appName(), QString("Vidora"));
    }

    void invalidJsonGivesEmptyAnswers()
    {
        write(R"({"appName":"Vidora", "formats":[)");
        ConfigHelper config(m_path);
        QVERIFY(config.getSupportedFormats().isEmpty());
        QVERIFY(config.appName().isEmpty());
        config.setDefaultDir("/tmp");
        QFile f(m_path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray(R"({"appName":"Vidora", "formats":[)")); // left alone
    }

    void singleValuesReadTheirKeys()
    {
        write(
            R"({"appIcon":"qrc:/logo.png","appName":"Vidora","Developer":"Dev","developer":"wrong","phone":null})");
        ConfigHelper config(m_path);
        QCOMPARE(config.appIcon(), QString("qrc:/logo.png"));
        QCOMPARE(config.developer(), QString("Dev"));
        QVERIFY(config.phone().isEmpty());
        QVERIFY(config.getDefaultDir().isEmpty());
    }

    void setDefaultDirRewritesOneLineKeepingEverythingElse()
    {
        write("{\n  \"appName\": \"视频播放器\",\n  \"formats\": [ {\"extension\": \"mp4\", \"type\": "
              "\"video\"} ]\n}\n");
        ConfigHelper config(m_path);
        const QString dir = QStringLiteral("/home/用户/视频 输出");
        config.setDefaultDir(dir);

        QFile f(m_path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray text = f.readAll();
        QVERIFY(!text.contains('\n'));
        QVERIFY(text.contains(QStringLiteral("视频播放器").toUtf8())); // not \u-escaped
        QVERIFY(text.contains(dir.toUtf8()));
        QCOMPARE(config.getDefaultDir(), dir);
        QCOMPARE(config.getSupportedVideoFormats(), QStringList({"mp4"}));
        QCOMPARE(config.appName(), QStringLiteral("视频播放器"));
    }

    void userCopyIsSeededFromTheDefaultOnFirstChange()
    {
        write("{\"appName\": \"Vidora\", \"formats\": [{\"extension\": \"mkv\", \"type\": \"video\"}]}");
        const QString user = m_dir->filePath("home/.config/vidora/config.json");
        ConfigHelper config(user, m_path);
        QCOMPARE(config.appName(), QStringLiteral("Vidora"));
        QVERIFY(!QFile::exists(user));

        config.setDefaultDir("/srv/out");
        QVERIFY(QFile::exists(user));
        QCOMPARE(config.getDefaultDir(), QStringLiteral("/srv/out"));
        QCOMPARE(config.getSupportedVideoFormats(), QStringList({"mkv"}));
        QVERIFY(ConfigHelper(m_path).getDefaultDir().isEmpty()); // the installed default is untouched

        // From now on the user's file answers, even where the default would say otherwise.
        write("{\"appName\": \"Other\"}");
        QCOMPARE(config.appName(), QStringLiteral("Vidora"));
    }

private:
    void write(const QByteArray& text)
    {
        QFile f(m_path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text);
    }

    QString m_path;
    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestConfigHelper)
#include "tst_confighelper.moc"
