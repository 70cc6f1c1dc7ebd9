#include "CommonTool.h"
#include "LogCapture.h"
#include "TestMedia.h"
#include "ThumbnailItem.h"
#include "YUVPaintedItem.h"

#include <QFile>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QUrl>
#include <algorithm>
#include <cmath>

extern "C" {
#include <libavutil/mem.h>
}

namespace {

// Records signalUpdate on the test's thread (it is emitted from pool threads).
template <typename Item> class Updates : public QObject
{
public:
    explicit Updates(Item* item)
    {
        connect(
            item, &Item::signalUpdate, this, [this](int w, int h) { sizes << QSize(w, h); },
            Qt::QueuedConnection);
    }
    QList<QSize> sizes;
};

// The colour the preview shader gives a limited-range YUV triple (full-range coefficients
// applied to the raw values, as the items do).
QColor shaderColour(int y, int u, int v)
{
    const double fy = y / 255.0;
    const double fu = u / 255.0 - 0.5;
    const double fv = v / 255.0 - 0.5;
    auto channel = [](double c) { return std::clamp(static_cast<int>(std::lround(c * 255.0)), 0, 255); };
    return QColor(channel(fy + 1.402 * fv), channel(fy - 0.344 * fu - 0.714 * fv), channel(fy + 1.772 * fu));
}

QColor average(const QImage& image, const QPoint& centre)
{
    int r = 0, g = 0, b = 0, n = 0;
    for (int dy = -3; dy <= 3; ++dy) {
        for (int dx = -3; dx <= 3; ++dx) {
            const QColor c = image.pixelColor(centre + QPoint(dx, dy));
            r += c.red();
            g += c.green();
            b += c.blue();
            ++n;
        }
    }
    return QColor(r / n, g / n, b / n);
}

bool near(const QColor& a, const QColor& b, int tolerance = 8)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

QString describe(const QColor& c)
{
    return QStringLiteral("(%1,%2,%3)").arg(c.red()).arg(c.green()).arg(c.blue());
}

} // namespace

class ThumbnailItemsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void framebufferItemDrawsTheFrameUpright();
    void framebufferItemTakesTheFittedSize();
    void paintedItemDrawsTheFrameUpright();
    void failedDecodesLeaveThePreviousPicture_data();
    void failedDecodesLeaveThePreviousPicture();
    void zeroBoxKeepsTheItemSize();
    void itemDestroyedDuringALoad();

private:
    // True when each quadrant of the item shows the pattern's colour there, as the shader
    // draws it: upright, not mirrored.
    bool showsPattern(const QQuickItem* item, QString* why = nullptr) const;
    bool showsBlack(const QQuickItem* item) const;
    QString failingFile(const QString& kind);

    LogCapture m_log;
    QString m_dir;
    QString m_pattern;    // 320x240 H.264 in quadrants: red, green over blue, yellow
    QColor m_expected[4]; // top left, top right, bottom left, bottom right
    std::unique_ptr<QQuickWindow> m_window;
};

void ThumbnailItemsTest::initTestCase()
{
    m_dir = TestMedia::scratchDir("items");
    m_pattern = m_dir + "/pattern.mp4";
    const QString quadrants = "color=c=red:s=160x120:r=25:d=2[a];color=c=lime:s=160x120:r=25:d=2[b];"
                              "color=c=blue:s=160x120:r=25:d=2[c];color=c=yellow:s=160x120:r=25:d=2[d];"
                              "[a][b]hstack[top];[c][d]hstack[bottom];[top][bottom]vstack";
    QVERIFY(TestMedia::ffmpeg(
        {"-filter_complex", quadrants, "-pix_fmt", "yuv420p", "-c:v", "libx264", m_pattern}));

    // Expected colours from the very planes the items receive.
    uint8_t* buffer = nullptr;
    int w = 0, h = 0;
    CommonTool::instance()->getVideoThumbnail(m_pattern, 0.0, &buffer, &w, &h);
    QVERIFY(buffer);
    QCOMPARE(QSize(w, h), QSize(320, 240));
    auto sample = [&](int x, int y) {
        const uint8_t* u = buffer + w * h;
        const uint8_t* v = u + (w / 2) * (h / 2);
        return shaderColour(buffer[y * w + x], u[(y / 2) * (w / 2) + x / 2], v[(y / 2) * (w / 2) + x / 2]);
    };
    for (int i = 0; i < 4; ++i)
        m_expected[i] = sample(80 + 160 * (i % 2), 60 + 120 * (i / 2));
    av_free(buffer);
    // Four clearly different colours, or the orientation checks mean nothing.
    QVERIFY(m_expected[0].red() > 200 && m_expected[1].green() > 200 && m_expected[2].blue() > 200 &&
            m_expected[3].red() > 200 && m_expected[3].green() > 200);
}

void ThumbnailItemsTest::init()
{
    m_window = std::make_unique<QQuickWindow>();
    m_window->setColor(Qt::gray);
    m_window->resize(420, 200);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void ThumbnailItemsTest::cleanup()
{
    m_window.reset();
}

bool ThumbnailItemsTest::showsPattern(const QQuickItem* item, QString* why) const
{
    const QImage shot = m_window->grabWindow();
    // For looking at what the items drew: VIDORA_TEST_SHOTS=folder.
    if (qEnvironmentVariableIsSet("VIDORA_TEST_SHOTS"))
        shot.save(qEnvironmentVariable("VIDORA_TEST_SHOTS") + "/" + QTest::currentTestFunction() + ".png");
    const QRect r = item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toRect();
    bool all = true;
    if (why)
        why->clear();
    for (int i = 0; i < 4; ++i) {
        const QPoint centre(r.left() + r.width() * (1 + 2 * (i % 2)) / 4,
                            r.top() + r.height() * (1 + 2 * (i / 2)) / 4);
        const QColor seen = average(shot, centre);
        all = all && near(seen, m_expected[i]);
        if (why)
            *why += QStringLiteral("[%1 want %2] ").arg(describe(seen), describe(m_expected[i]));
    }
    return all;
}

bool ThumbnailItemsTest::showsBlack(const QQuickItem* item) const
{
    const QImage shot = m_window->grabWindow();
    const QRect r = item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toRect();
    return near(average(shot, r.center()), Qt::black, 2) &&
           near(average(shot, QPoint(r.center().x(), r.top() + r.height() / 4)), Qt::black, 2);
}

QString ThumbnailItemsTest::failingFile(const QString& kind)
{
    QString file = m_dir + "/bad-" + kind;
    if (kind == "corrupt") {
        file += ".mp4";
        QFile out(file);
        out.open(QIODevice::WriteOnly);
        out.write(QByteArray(32 * 1024, '\x5a'));
    } else if (kind == "audio") {
        file += ".m4a";
        TestMedia::ffmpeg({"-f", "lavfi", "-i", "sine=frequency=440:duration=1", file});
    } else {
        file += ".mp4";
        QFile::copy(m_pattern, file);
        QFile::remove(file);
    }
    return file;
}

void ThumbnailItemsTest::framebufferItemDrawsTheFrameUpright()
{
    auto* item = new ThumbnailItem(m_window->contentItem());
    item->setSize(QSizeF(174, 130)); // 320x240 fitted into the default 210x130 box
    Updates<ThumbnailItem> updates(item);
    QTRY_VERIFY(showsBlack(item)); // nothing loaded yet

    item->loadThumbnailFromUrl(QUrl::fromLocalFile(m_pattern).toString(), 0.5);
    QTRY_COMPARE_WITH_TIMEOUT(updates.sizes.size(), 1, 20000);
    QCOMPARE(updates.sizes.at(0), QSize(0, 0)); // already the right size
    QString why;
    QTRY_VERIFY2_WITH_TIMEOUT(showsPattern(item, &why), qPrintable(why), 10000);
}

void ThumbnailItemsTest::framebufferItemTakesTheFittedSize()
{
    auto* item = new ThumbnailItem(m_window->contentItem());
    item->setSize(QSizeF(100, 100));
    Updates<ThumbnailItem> updates(item);
    QTRY_VERIFY(showsBlack(item)); // the renderer exists from here on

    item->loadThumbnail(m_pattern, 0.0);
    QTRY_COMPARE_WITH_TIMEOUT(updates.sizes.size(), 1, 20000);
    QCOMPARE(updates.sizes.at(0), QSize(174, 130));
    QCOMPARE(item->size(), QSizeF(174, 130));
    // Whether the frame that caused the resize is shown depends on whether the render thread
    // uploaded it before the resize dropped it; the next load at the fitted size always is.
    item->loadThumbnail(m_pattern, 0.0);
    QTRY_COMPARE_WITH_TIMEOUT(updates.sizes.size(), 2, 20000);
    QCOMPARE(updates.sizes.at(1), QSize(0, 0));
    QString why;
    QTRY_VERIFY2_WITH_TIMEOUT(showsPattern(item, &why), qPrintable(why), 10000);
}

void ThumbnailItemsTest::paintedItemDrawsTheFrameUpright()
{
    auto* item = new YUVPaintedItem(m_window->contentItem());
    item->setPosition(QPointF(200, 10));
    item->setSize(QSizeF(100, 100));
    Updates<YUVPaintedItem> updates(item);
    QTRY_VERIFY(showsBlack(item));

    item->loadThumbnailFromUrl(QUrl::fromLocalFile(m_pattern).toString(), 0.0);
    QTRY_COMPARE_WITH_TIMEOUT(updates.sizes.size(), 1, 20000);
    QCOMPARE(updates.sizes.at(0), QSize(174, 130));
    // The painted item keeps the frame through its resize.
    QTRY_COMPARE(item->size(), QSizeF(174, 130));
    QString why;
    QTRY_VERIFY2_WITH_TIMEOUT(showsPattern(item, &why), qPrintable(why), 10000);
}

void ThumbnailItemsTest::failedDecodesLeaveThePreviousPicture_data()
{
    QTest::addColumn<bool>("painted");
    QTest::addColumn<QString>("kind");
    for (const bool painted : {false, true}) {
        for (const char* kind : {"corrupt", "audio", "deleted"}) {
            QTest::addRow("%s, %s", painted ? "painted" : "framebuffer", kind) << painted << QString(kind);
        }
    }
}

void ThumbnailItemsTest::failedDecodesLeaveThePreviousPicture()
{
    QFETCH(bool, painted);
    QFETCH(QString, kind);
    QQuickItem* item = nullptr;
    std::function<void(const QString&)> load;
    if (painted) {
        auto* p = new YUVPaintedItem(m_window->contentItem());
        load = [p](const QString& file) { p->loadThumbnail(file, 0.0); };
        item = p;
    } else {
        auto* f = new ThumbnailItem(m_window->contentItem());
        load = [f](const QString& file) { f->loadThumbnail(file, 0.0); };
        item = f;
    }
    item->setSize(QSizeF(174, 130));
    QTRY_VERIFY(showsBlack(item));
    load(m_pattern);
    QString why;
    QTRY_VERIFY2_WITH_TIMEOUT(showsPattern(item, &why), qPrintable(why), 20000);

    const QString file = failingFile(kind);
    const QString failure = "Failed to load thumbnail for file: " + file;
    const int before = m_log.count(failure);
    load(file);
    QVERIFY(m_log.waitFor(failure, before + 1));
    QTest::qWait(200);
    QVERIFY2(showsPattern(item, &why), qPrintable(why));
    QCOMPARE(item->size(), QSizeF(174, 130));
}

void ThumbnailItemsTest::zeroBoxKeepsTheItemSize()
{
    auto* item = new YUVPaintedItem(m_window->contentItem());
    item->setSize(QSizeF(120, 60));
    item->setMaxSize(0, 0);
    Updates<YUVPaintedItem> updates(item);
    item->loadThumbnail(m_pattern, 0.0);
    QTRY_COMPARE_WITH_TIMEOUT(updates.sizes.size(), 1, 20000);
    QCOMPARE(updates.sizes.at(0), QSize(0, 0));
    QString why;
    QTRY_VERIFY2_WITH_TIMEOUT(showsPattern(item, &why), qPrintable(why), 10000);
    QCOMPARE(item->size(), QSizeF(120, 60));
}

void ThumbnailItemsTest::itemDestroyedDuringALoad()
{
    const QString loaded = "Thumbnail loaded: width=320";
    const int before = m_log.count(loaded);
    auto* thumbnail = new ThumbnailItem(m_window->contentItem());
    thumbnail->setSize(QSizeF(174, 130));
    auto* painted = new YUVPaintedItem(m_window->contentItem());
    painted->setSize(QSizeF(174, 130));
    QTRY_VERIFY(showsBlack(thumbnail));
    thumbnail->loadThumbnail(m_pattern, 0.0);
    painted->loadThumbnail(m_pattern, 0.0);
    delete thumbnail;
    delete painted;
    // The jobs finish against a link whose item is gone and drop their frames.
    QVERIFY(m_log.waitFor(loaded, before + 2));
    QTest::qWait(100);
    // A window torn down with a pending job is survived too.
    auto* again = new ThumbnailItem(m_window->contentItem());
    again->setSize(QSizeF(174, 130));
    QTRY_VERIFY(showsBlack(again));
    again->loadThumbnail(m_pattern, 0.0);
    m_window.reset();
    QVERIFY(m_log.waitFor(loaded, before + 3));
    QTest::qWait(100);
}

QTEST_MAIN(ThumbnailItemsTest)
#include "tst_thumbnailitems.moc"
