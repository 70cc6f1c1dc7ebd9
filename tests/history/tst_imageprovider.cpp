#include "ImageProvider.h"
#include "LogCapture.h"
#include "TestMedia.h"
#include "YuvToRgb.h"

#include <QFile>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QUrl>
#include <atomic>
#include <thread>

namespace {

// Records imageLoaded on the test's thread (the signal comes from pool threads; a queued
// connection keeps the list single-threaded).
class LoadedKeys : public QObject
{
public:
    explicit LoadedKeys(ImageProvider* provider)
    {
        connect(
            provider, &ImageProvider::imageLoaded, this,
            [this](int index, const QString& key) {
                indexes << index;
                keys << key;
            },
            Qt::QueuedConnection);
    }
    QList<int> indexes;
    QStringList keys;
};

QColor centre(const QImage& image)
{
    return image.pixelColor(image.width() / 2, image.height() / 2);
}

bool near(const QColor& actual, const QColor& expected, int tolerance = 3)
{
    return std::abs(actual.red() - expected.red()) <= tolerance &&
           std::abs(actual.green() - expected.green()) <= tolerance &&
           std::abs(actual.blue() - expected.blue()) <= tolerance;
}

} // namespace

class ImageProviderTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tagsWithTheSameIndexKeepSeparatePictures();
    void limitedRangeBlackAndWhite();
    void unknownIdGivesANullImage();
    void reloadingAKeyReplacesItsPicture();
    void badInputLeavesThePreviousPicture_data();
    void badInputLeavesThePreviousPicture();
    void concurrentLoadsAndReadsDoNotRace();
    void jobsFinishingAfterTheProviderIsGoneDropTheirPicture();
    void qmlImagesLoadByKeyThroughTheEngine();

private:
    // A one-second clip of one solid colour, stored losslessly so colours are exact.
    QString solid(const QString& name, const QString& colour)
    {
        const QString path = m_dir + "/" + name + ".mkv";
        if (!QFile::exists(path))
            TestMedia::ffmpeg({"-f", "lavfi", "-i", QStringLiteral("color=c=%1:s=64x48:r=5:d=1").arg(colour),
                               "-pix_fmt", "yuv420p", "-c:v", "ffv1", path});
        return path;
    }

    LogCapture m_log;
    QString m_dir;
    QString m_red;
    QString m_blue;
};

void ImageProviderTest::initTestCase()
{
    m_dir = TestMedia::scratchDir("provider");
    m_red = solid("red", "red");
    m_blue = solid("blue", "blue");
    QVERIFY(QFile::exists(m_red));
    QVERIFY(QFile::exists(m_blue));
}

void ImageProviderTest::tagsWithTheSameIndexKeepSeparatePictures()
{
    ImageProvider provider;
    LoadedKeys loaded(&provider);
    provider.loadThumbnail(0, m_red, 0.0, "CVideoCard");
    provider.loadThumbnailFromUrl(0, QUrl::fromLocalFile(m_blue).toString(), 0.0, "CImageListView");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), 2, 20000);

    QCOMPARE(QSet<QString>(loaded.keys.begin(), loaded.keys.end()),
             QSet<QString>({"CVideoCard0.png", "CImageListView0.png"}));
    QCOMPARE(loaded.indexes, QList<int>({0, 0}));

    QSize size(-1, -1);
    const QImage red = provider.requestImage("CVideoCard0.png", &size, QSize(10, 10));
    QCOMPARE(size, QSize(64, 48));
    QCOMPARE(red.size(), QSize(64, 48));
    QVERIFY2(near(centre(red), Qt::red), qPrintable(centre(red).name()));
    const QImage blue = provider.requestImage("CImageListView0.png", nullptr, QSize());
    QVERIFY2(near(centre(blue), Qt::blue), qPrintable(centre(blue).name()));
}

void ImageProviderTest::limitedRangeBlackAndWhite()
{
    // The formula itself, on a 2x2 frame: Y 16 is black and Y 235 white with neutral chroma.
    const uint8_t black[6] = {16, 16, 16, 16, 128, 128};
    const uint8_t white[6] = {235, 235, 235, 235, 128, 128};
    QCOMPARE(yuv420ToImage(black, 2, 2).pixel(1, 1), qRgb(0, 0, 0));
    QCOMPARE(yuv420ToImage(white, 2, 2).pixel(1, 1), qRgb(255, 255, 255));

    // And end to end from decoded video.
    ImageProvider provider;
    LoadedKeys loaded(&provider);
    provider.loadThumbnail(1, solid("black", "black"), 0.0, "CVideoCard");
    provider.loadThumbnail(2, solid("white", "white"), 0.0, "CVideoCard");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), 2, 20000);
    QCOMPARE(centre(provider.requestImage("CVideoCard1.png", nullptr, QSize())), QColor(0, 0, 0));
    QCOMPARE(centre(provider.requestImage("CVideoCard2.png", nullptr, QSize())), QColor(255, 255, 255));
}

void ImageProviderTest::unknownIdGivesANullImage()
{
    ImageProvider provider;
    QSize size(7, 7);
    QVERIFY(provider.requestImage("CVideoCard0.png", &size, QSize()).isNull());
    QVERIFY(provider.requestImage(QString(), nullptr, QSize()).isNull());
    QCOMPARE(size, QSize(7, 7));
}

void ImageProviderTest::reloadingAKeyReplacesItsPicture()
{
    ImageProvider provider;
    LoadedKeys loaded(&provider);
    provider.loadThumbnail(5, m_red, 0.0, "CVideoCard");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), 1, 20000);
    QVERIFY(near(centre(provider.requestImage("CVideoCard5.png", nullptr, QSize())), Qt::red));
    provider.loadThumbnail(5, m_blue, 0.0, "CVideoCard");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), 2, 20000);
    QCOMPARE(loaded.keys.at(1), QString("CVideoCard5.png"));
    QVERIFY(near(centre(provider.requestImage("CVideoCard5.png", nullptr, QSize())), Qt::blue));
}

void ImageProviderTest::badInputLeavesThePreviousPicture_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("audio only") << "audio";
    QTest::newRow("empty file") << "empty";
    QTest::newRow("corrupt file") << "corrupt";
    QTest::newRow("deleted after listing") << "deleted";
}

void ImageProviderTest::badInputLeavesThePreviousPicture()
{
    QFETCH(QString, kind);
    QString path = m_dir + "/bad-" + kind;
    if (kind == "audio") {
        path += ".m4a";
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:duration=1", path}));
    } else if (kind == "empty") {
        path += ".mp4";
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (kind == "corrupt") {
        path += ".mp4";
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QByteArray junk(64 * 1024, '\0');
        for (int i = 0; i < junk.size(); ++i)
            junk[i] = static_cast<char>((i * 7919) ^ (i >> 3));
        file.write(junk);
    } else {
        path += ".mkv";
        QVERIFY(QFile::copy(m_red, path));
        QVERIFY(QFile::remove(path));
    }

    ImageProvider provider;
    LoadedKeys loaded(&provider);
    provider.loadThumbnail(9, m_red, 0.0, "CImageListView");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), 1, 20000);

    const QString failure = "Failed to load thumbnail for file: " + path;
    const int failuresBefore = m_log.count(failure);
    provider.loadThumbnail(9, path, 0.0, "CImageListView");
    QVERIFY(m_log.waitFor(failure, failuresBefore + 1));
    QTest::qWait(50); // a wrongly emitted key would arrive queued by now
    QCOMPARE(loaded.keys.size(), 1);
    QVERIFY(near(centre(provider.requestImage("CImageListView9.png", nullptr, QSize())), Qt::red));
}

void ImageProviderTest::concurrentLoadsAndReadsDoNotRace()
{
    ImageProvider provider;
    LoadedKeys loaded(&provider);
    std::atomic<bool> stop{false};
    std::atomic<int> hits{0};
    // Plays the engine's image thread: reads while the pool writes.
    std::thread reader([&]() {
        while (!stop.load()) {
            for (int i = 0; i < 4; ++i) {
                QSize size;
                if (!provider.requestImage(ImageProvider::keyFor("CVideoCard", i), &size, QSize()).isNull())
                    ++hits;
            }
        }
    });
    const int loads = 16;
    for (int i = 0; i < loads; ++i)
        provider.loadThumbnail(i % 4, i % 2 ? m_blue : m_red, 0.0, "CVideoCard");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), loads, 60000);
    stop = true;
    reader.join();
    QVERIFY(hits.load() > 0);
    for (int i = 0; i < 4; ++i)
        QVERIFY(!provider.requestImage(ImageProvider::keyFor("CVideoCard", i), nullptr, QSize()).isNull());
}

void ImageProviderTest::jobsFinishingAfterTheProviderIsGoneDropTheirPicture()
{
    const QString done = "Setting image for index 77";
    const int before = m_log.count(done);
    auto* provider = new ImageProvider;
    for (int i = 0; i < 4; ++i)
        provider->loadThumbnail(77, m_red, 0.0, "CVideoCard");
    delete provider;
    // Every job still converts and reaches the point of storing; none may touch the
    // deleted provider (the sanitizer builds catch it if one does).
    QVERIFY(m_log.waitFor(done, before + 4));
    QTest::qWait(50);
}

void ImageProviderTest::qmlImagesLoadByKeyThroughTheEngine()
{
    auto engine = std::make_unique<QQmlEngine>();
    auto* provider = new ImageProvider;
    engine->addImageProvider("ImageProvider", provider); // the engine owns it from here
    LoadedKeys loaded(provider);
    provider->loadThumbnail(3, m_blue, 0.0, "CVideoCard");
    QTRY_COMPARE_WITH_TIMEOUT(loaded.keys.size(), 1, 20000);

    // As a delegate does it: the key from the signal behind the provider's URL, loaded on the
    // engine's image thread.
    QQmlComponent component(engine.get());
    component.setData(
        "import QtQuick 2.15\n"
        "Item {\n"
        "  property alias known: known\n"
        "  property alias unknown: unknown\n"
        "  Image { id: known; asynchronous: true; source: 'image://ImageProvider/" +
            loaded.keys.at(0).toUtf8() +
            "' }\n"
            "  Image { id: unknown; asynchronous: true; source: 'image://ImageProvider/CVideoCard4.png' }\n"
            "}\n",
        QUrl());
    std::unique_ptr<QObject> root(component.create());
    QVERIFY2(root, qPrintable(component.errorString()));
    auto* known = root->property("known").value<QObject*>();
    auto* unknown = root->property("unknown").value<QObject*>();
    const int ready = 1, error = 3; // QQuickImageBase::Status
    QTRY_COMPARE_WITH_TIMEOUT(known->property("status").toInt(), ready, 10000);
    QCOMPARE(known->property("sourceSize").toSize(), QSize(64, 48));
    QTRY_COMPARE_WITH_TIMEOUT(unknown->property("status").toInt(), error, 10000);
    root.reset();
    engine.reset(); // deletes the provider with it
}

QTEST_MAIN(ImageProviderTest)
#include "tst_imageprovider.moc"
