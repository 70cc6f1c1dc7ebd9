#include "HistoryTestSupport.h"
#include "ImageProvider.h"

#include <QUrl>
#include <atomic>
#include <thread>

class ImageProviderTest : public QObject
{
    Q_OBJECT

protected slots:
    // imageLoaded comes from pool threads; a queued connection records it here.
    void onImageLoaded(int index, const QString& key) { m_loaded << QString::number(index) + ' ' + key; }

private slots:
    void init() { m_loaded.clear(); }
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("provider");
        QVERIFY(QFile::exists(solid("red")) && QFile::exists(solid("blue")));
    }

    void picturesAreKeptPerTagAndIndexInTrueColours()
    {
        ImageProvider provider;
        listen(&provider);
        QSize size(7, 7);
        QVERIFY(provider.requestImage("CVideoCard0.png", &size, QSize()).isNull()); // unknown id
        QCOMPARE(size, QSize(7, 7));

        provider.loadThumbnail(0, solid("red"), 0.0, "CVideoCard");
        provider.loadThumbnailFromUrl(0, QUrl::fromLocalFile(solid("blue")).toString(), 0.0,
                                      "CImageListView");
        provider.loadThumbnail(1, solid("black"), 0.0, "CVideoCard");
        provider.loadThumbnail(2, solid("white"), 0.0, "CVideoCard");
        QTRY_COMPARE_WITH_TIMEOUT(m_loaded.size(), 4, 20000);
        QCOMPARE(QSet<QString>(m_loaded.begin(), m_loaded.end()),
                 QSet<QString>({"0 CVideoCard0.png", "0 CImageListView0.png", "1 CVideoCard1.png",
                                "2 CVideoCard2.png"}));
        // Decoded black and white are Y 16 and 235 with neutral chroma: exactly black and white.
        QCOMPARE(centreOf(provider, "CVideoCard1.png"), QColor(0, 0, 0));
        QCOMPARE(centreOf(provider, "CVideoCard2.png"), QColor(255, 255, 255));
        const QImage red = provider.requestImage("CVideoCard0.png", &size, QSize(10, 10));
        QCOMPARE(size, QSize(64, 48));
        QCOMPARE(red.size(), QSize(64, 48));
        QVERIFY(near(centreOf(provider, "CVideoCard0.png"), Qt::red, 3));
        QVERIFY(near(centreOf(provider, "CImageListView0.png"), Qt::blue, 3));

        // A new load of the same tag and index replaces that picture only.
        provider.loadThumbnail(0, solid("blue"), 0.0, "CVideoCard");
        QTRY_COMPARE_WITH_TIMEOUT(m_loaded.size(), 5, 20000);
        QCOMPARE(m_loaded.at(4), QString("0 CVideoCard0.png"));
        QVERIFY(near(centreOf(provider, "CVideoCard0.png"), Qt::blue, 3));

        // A portrait phone video (landscape-coded, turned for display) gives a portrait picture.
        const QString landscape = m_dir + "/landscape.mp4", portrait = m_dir + "/portrait.mp4";
        QVERIFY(TestMedia::makeVideo(landscape, 1, 64, 48, 5, false) &&
                TestMedia::makeTurned(landscape, portrait, 270));
        provider.loadThumbnail(3, portrait, 0.0, "CVideoCard");
        QTRY_COMPARE_WITH_TIMEOUT(m_loaded.size(), 6, 20000);
        QCOMPARE(provider.requestImage("CVideoCard3.png", &size, QSize()).size(), QSize(48, 64));
    }

    void badInputLeavesThePreviousPicture()
    {
        // How the decode fails is the grabber's concern; a file without video stands for all.
        const QString path = TestMedia::badInputs(m_dir).value("audio only");
        QVERIFY(!path.isEmpty());
        ImageProvider provider;
        listen(&provider);
        provider.loadThumbnail(9, solid("red"), 0.0, "CImageListView");
        QTRY_COMPARE_WITH_TIMEOUT(m_loaded.size(), 1, 20000);

        const QString failure = "Failed to load thumbnail for file: " + path;
        const int failuresBefore = m_log.count(failure);
        provider.loadThumbnail(9, path, 0.0, "CImageListView");
        QTRY_VERIFY_WITH_TIMEOUT(m_log.count(failure) >= failuresBefore + 1, 20000);
        QTest::qWait(50); // a wrongly emitted key would arrive queued by now
        QCOMPARE(m_loaded.size(), 1);
        QVERIFY(near(centreOf(provider, "CImageListView9.png"), Qt::red, 3));
    }

    void concurrentLoadsAndReadsDoNotRace()
    {
        ImageProvider provider;
        listen(&provider);
        std::atomic<bool> stop{false};
        std::atomic<int> hits{0};
        // Plays the engine's image thread: reads while the pool writes.
        std::thread reader([&]() {
            while (!stop.load()) {
                for (int i = 0; i < 4; ++i)
                    if (!provider.requestImage(ImageProvider::keyFor("CVideoCard", i), nullptr, QSize())
                             .isNull())
                        ++hits;
            }
        });
        for (int i = 0; i < 16; ++i)
            provider.loadThumbnail(i % 4, solid(i % 2 ? "blue" : "red"), 0.0, "CVideoCard");
        QTRY_COMPARE_WITH_TIMEOUT(m_loaded.size(), 16, 60000);
        stop = true;
        reader.join();
        QVERIFY(hits.load() > 0);
    }

    void jobsFinishingAfterTheProviderIsGoneDropTheirPicture()
    {
        const QString done = "Setting image for index 77";
        const int before = m_log.count(done);
        auto* provider = new ImageProvider;
        for (int i = 0; i < 4; ++i)
            provider->loadThumbnail(77, solid("red"), 0.0, "CVideoCard");
        delete provider;
        // Every job still reaches the point of storing; none may touch the deleted provider
        // (the sanitizer builds catch it if one does).
        QTRY_VERIFY_WITH_TIMEOUT(m_log.count(done) >= before + 4, 20000);
        QTest::qWait(50);
    }

private:
    // A one-second 64x48 clip of one colour, stored losslessly so colours are exact.
    QString solid(const QString& colour)
    {
        const QString path = m_dir + "/" + colour + ".mkv";
        if (!QFile::exists(path))
            TestMedia::ffmpeg({"-f", "lavfi", "-i", QStringLiteral("color=c=%1:s=64x48:r=5:d=1").arg(colour),
                               "-pix_fmt", "yuv420p", "-c:v", "ffv1", path});
        return path;
    }

    static QColor centreOf(ImageProvider& provider, const QString& key)
    {
        const QImage image = provider.requestImage(key, nullptr, QSize());
        return image.isNull() ? QColor() : image.pixelColor(image.width() / 2, image.height() / 2);
    }

    void listen(ImageProvider* provider)
    {
        connect(provider, &ImageProvider::imageLoaded, this, &ImageProviderTest::onImageLoaded,
                Qt::QueuedConnection);
    }

    LogCapture m_log;
    QString m_dir;
    QStringList m_loaded; // "index key"
};

QTEST_MAIN(ImageProviderTest)
#include "tst_imageprovider.moc"
