#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "HistoryTestSupport.h"
#include "ThumbnailFit.h"
#include "ThumbnailItem.h"
#include "TsanAnnotations.h"
#include "YUVPaintedItem.h"

#include <QQuickWindow>
#include <QUrl>
#include <cmath>

class ThumbnailItemsTest : public QObject
{
    Q_OBJECT

protected slots:
    // signalUpdate comes from pool threads; a queued connection records it here.
    void onSignalUpdate(int width, int height) { m_updates << QSize(width, height); }

private slots:
    void initTestCase()
    {
        m_dir = TestMedia::scratchDir("items");
        m_pattern = m_dir + "/pattern.mp4";
        m_bad = TestMedia::badInputs(m_dir);
        QVERIFY(!m_bad.isEmpty());
        QVERIFY(TestMedia::ffmpeg({"-f", "lavfi", "-i",
                                   "color=red:320x240:r=25:d=2,drawbox=160:0:160:120:lime:fill,"
                                   "drawbox=0:120:160:120:blue:fill,drawbox=160:120:160:120:yellow:fill",
                                   "-pix_fmt", "yuv420p", "-c:v", "libx264", m_pattern}));

        // Expected colours from the very planes the items receive.
        uint8_t* yuv = nullptr;
        int w = 0, h = 0;
        CommonTool::instance()->getVideoThumbnail(m_pattern, 0.0, &yuv, &w, &h);
        const ff::AvBufferPtr owner(yuv);
        QVERIFY(yuv);
        QCOMPARE(QSize(w, h), QSize(320, 240));
        for (int i = 0; i < 4; ++i) {
            const int x = 80 + 160 * (i % 2), y = 60 + 120 * (i / 2), c = (y / 2) * (w / 2) + x / 2;
            m_expected[i] = shaderColour(yuv[y * w + x], yuv[w * h + c], yuv[w * h * 5 / 4 + c]);
        }
        // Four clearly different colours, or the orientation checks mean nothing.
        QVERIFY(m_expected[0].red() > 200 && m_expected[1].green() > 200 && m_expected[2].blue() > 200 &&
                m_expected[3].red() > 200 && m_expected[3].green() > 200);
    }

    void init()
    {
        m_window = std::make_unique<QQuickWindow>();
        m_window->setColor(Qt::gray);
        m_window->resize(420, 200);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_updates.clear();
    }

    void cleanup() { m_window.reset(); }

    void itemsDrawTheFrameUprightAndKeepItOnBadInput_data()
    {
        QTest::addColumn<bool>("painted");
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<QSize>("box");       // empty: the default 210x130
        QTest::addColumn<QSize>("announced"); // (0, 0): keep the size
        QTest::addColumn<QString>("bad");     // loaded after the pattern
        // 320x240 fits the default box as 174x130.
        const QSizeF fitted(174, 130), other(100, 100);
        for (const QString& bad : kUnreadableKinds) {
            const bool first = bad == kUnreadableKinds[0] || bad == kUnreadableKinds[1];
            QTest::addRow("framebuffer, %s, %s", first ? "fitted already" : "resized", qPrintable(bad))
                << false << (first ? fitted : other) << QSize() << (first ? QSize(0, 0) : fitted.toSize())
                << bad;
            QTest::addRow("painted, %s, %s", first ? "resized" : "zero box keeps the size", qPrintable(bad))
                << true << (first ? other : QSizeF(120, 60)) << (first ? QSize() : QSize(0, 0))
                << (first ? fitted.toSize() : QSize(0, 0)) << bad;
        }
    }

    void itemsDrawTheFrameUprightAndKeepItOnBadInput()
    {
        QFETCH(bool, painted);
        QFETCH(QSizeF, size);
        QFETCH(QSize, box);
        QFETCH(QSize, announced);
        QFETCH(QString, bad);
        QQuickItem* item = makeItem(painted, size);
        if (box.isValid())
            QMetaObject::invokeMethod(item, "setMaxSize", Q_ARG(int, box.width()), Q_ARG(int, box.height()));
        QTRY_VERIFY(
            shows(item, kBlack)); // nothing loaded yet; for the framebuffer item the renderer exists now

        load(item, m_pattern);
        QTRY_COMPARE_WITH_TIMEOUT(m_updates.size(), 1, 20000);
        QCOMPARE(m_updates.at(0), announced);
        const QSizeF shown = announced.isEmpty() ? size : QSizeF(announced);
        QTRY_COMPARE(item->size(), shown);
        if (!painted && !announced.isEmpty()) {
            // The framebuffer item drops the frame that caused its resize unless the render thread
            // uploaded it first; the next load at the fitted size always shows.
            load(item, m_pattern);
            QTRY_COMPARE_WITH_TIMEOUT(m_updates.size(), 2, 20000);
            QCOMPARE(m_updates.at(1), QSize(0, 0));
        }
        QString why;
        QTRY_VERIFY2_WITH_TIMEOUT(shows(item, m_expected, &why), qPrintable(why), 10000);

        // A failed decode is logged and changes nothing.
        const QString file = m_bad.value(bad);
        const QString failure = "Failed to load thumbnail for file: " + file;
        const int before = m_log.count(failure);
        load(item, file);
        QTRY_VERIFY_WITH_TIMEOUT(m_log.count(failure) > before, 20000);
        QTest::qWait(200);
        QVERIFY2(shows(item, m_expected, &why), qPrintable(why));
        QCOMPARE(item->size(), shown);
    }

    // A portrait phone video's frame arrives turned, width and height swapped, and both items draw
    // it as it came: in a portrait box, its quadrants where the ffmpeg tool shows them.
    void portraitFramesStandUpright()
    {
        const QString portrait = m_dir + "/portrait.mp4";
        QVERIFY(TestMedia::makeTurned(m_pattern, portrait, 90));
        // A quarter turn counterclockwise brings the right column to the top.
        const QColor turned[4] = {m_expected[1], m_expected[3], m_expected[0], m_expected[2]};
        for (const bool painted : {false, true}) {
            m_updates.clear();
            QQuickItem* item = makeItem(painted, QSizeF(fitThumbnail(240, 320, 210, 130)));
            QTRY_VERIFY(shows(item, kBlack));
            load(item, portrait);
            QTRY_COMPARE_WITH_TIMEOUT(m_updates.size(), 1, 20000);
            QCOMPARE(m_updates.at(0), QSize(0, 0)); // the box already has the portrait size
            QString why;
            QTRY_VERIFY2_WITH_TIMEOUT(shows(item, turned, &why), qPrintable(why), 10000);
            delete item;
        }
    }

    void itemDestroyedDuringALoadDropsItsFrame()
    {
        const QString loaded = "Thumbnail loaded: width=320";
        const int before = m_log.count(loaded);
        QQuickItem* items[2] = {makeItem(false, QSizeF(174, 130)), makeItem(true, QSizeF(174, 130))};
        QTRY_VERIFY(shows(items[0], kBlack));
        for (QQuickItem* item : items) {
            load(item, m_pattern);
            delete item;
        }
        // The jobs finish against a link whose item is gone and drop their frames.
        QTRY_VERIFY_WITH_TIMEOUT(m_log.count(loaded) >= before + 2, 20000);
        // A window torn down with a pending job is survived too.
        QQuickItem* again = makeItem(false, QSizeF(174, 130));
        QTRY_VERIFY(shows(again, kBlack));
        load(again, m_pattern);
        m_window.reset();
        QTRY_VERIFY_WITH_TIMEOUT(m_log.count(loaded) >= before + 3, 20000);
        QTest::qWait(100);
    }

private:
    // The colour the preview shaders give a limited-range YUV triple (full-range coefficients
    // applied to the raw values, as the items do).
    static QColor shaderColour(int y, int u, int v)
    {
        const double fy = y / 255.0, fu = u / 255.0 - 0.5, fv = v / 255.0 - 0.5;
        auto channel = [](double c) { return std::clamp(int(std::lround(c * 255.0)), 0, 255); };
        return QColor(channel(fy + 1.402 * fv), channel(fy - 0.344 * fu - 0.714 * fv),
                      channel(fy + 1.772 * fu));
    }

    const QColor kBlack[4] = {Qt::black, Qt::black, Qt::black, Qt::black};
    QQuickItem* makeItem(bool painted, const QSizeF& size)
    {
        QQuickItem* item = painted ? static_cast<QQuickItem*>(new YUVPaintedItem(m_window->contentItem()))
                                   : new ThumbnailItem(m_window->contentItem());
        item->setSize(size);
        connect(item, SIGNAL(signalUpdate(int, int)), this, SLOT(onSignalUpdate(int, int)),
                Qt::QueuedConnection);
        return item;
    }

    static void load(QQuickItem* item, const QString& file)
    {
        QMetaObject::invokeMethod(item, "loadThumbnailFromUrl",
                                  Q_ARG(QString, QUrl::fromLocalFile(file).toString()), Q_ARG(double, 0.0));
    }

    // True when the centre of each quadrant of the item (top left, top right, bottom left,
    // bottom right) shows `want` there; with m_expected: the frame upright, not mirrored.
    bool shows(const QQuickItem* item, const QColor (&want)[4], QString* seen = nullptr) const
    {
        // The grab blocks this thread while the render thread syncs, draws and reads back.
        VIDORA_TSAN_RELEASE(m_window.get());
        const QImage shot = m_window->grabWindow();
        VIDORA_TSAN_ACQUIRE(m_window.get());
        // For looking at what the items drew: VIDORA_TEST_SHOTS=folder.
        if (qEnvironmentVariableIsSet("VIDORA_TEST_SHOTS"))
            shot.save(qEnvironmentVariable("VIDORA_TEST_SHOTS") + "/" + QTest::currentDataTag() + ".png");
        const QRect r = item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toRect();
        bool all = true;
        if (seen)
            seen->clear();
        for (int i = 0; i < 4; ++i) {
            const QPoint centre(r.left() + r.width() * (1 + 2 * (i % 2)) / 4,
                                r.top() + r.height() * (1 + 2 * (i / 2)) / 4);
            // The mean of a 7x7 square.
            const QColor colour = shot.copy(QRect(centre - QPoint(3, 3), QSize(7, 7)))
                                      .scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                      .pixelColor(0, 0);
            all = all && near(colour, want[i], 8);
            if (seen)
                *seen += QStringLiteral("[%1 want %2] ").arg(colour.name(), want[i].name());
        }
        return all;
    }

    LogCapture m_log;
    QString m_dir;
    QMap<QString, QString> m_bad; // TestMedia::badInputs
    QString m_pattern;            // 320x240 H.264 in quadrants: red, green over blue, yellow
    QColor m_expected[4];         // top left, top right, bottom left, bottom right
    std::unique_ptr<QQuickWindow> m_window;
    QList<QSize> m_updates;
};

QTEST_MAIN(ThumbnailItemsTest)
#include "tst_thumbnailitems.moc"
