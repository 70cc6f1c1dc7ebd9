#include "FileModel.h"
#include "QmlRegistration.h"
#include "SqlHelper.h"
#include "TestMedia.h"

#include <QDir>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QUrl>

// The history and image types as QML sees them after the program's own registration: the
// element and singleton names, the image provider id, and the calls the UI makes.
class HistoryQmlTest : public QObject
{
    Q_OBJECT

private slots:
    void typesWorkFromQml();
};

void HistoryQmlTest::typesWorkFromQml()
{
    const QString dir = TestMedia::scratchDir("qml");
    QVERIFY(QDir::setCurrent(dir)); // the history database goes here
    const QString video = dir + "/quadrants.mp4";
    QVERIFY(TestMedia::ffmpeg({"-filter_complex",
                               "color=c=red:s=160x120:d=1[a];color=c=lime:s=160x120:d=1[b];"
                               "color=c=blue:s=160x120:d=1[c];color=c=yellow:s=160x120:d=1[d];"
                               "[a][b]hstack[t];[c][d]hstack[u];[t][u]vstack",
                               "-pix_fmt", "yuv420p", "-c:v", "libx264", video}));
    const QString url = QUrl::fromLocalFile(video).toString();
    QVERIFY(SqlHelper::instance()->saveVideoInfo(url, "quadrants.mp4", 1.0, 0.5, QByteArray(), 0, 0));

    QQmlApplicationEngine engine;
    registerQmlTypes();
    engine.loadData(R"(
import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0
Window {
    width: 480; height: 160; visible: true; color: "gray"
    property alias preview: preview
    property alias painted: painted
    property alias card: card
    property alias history: history
    ThumbnailItem { id: preview; width: 174; height: 130 }
    YUVPaintedItem { id: painted; x: 190; width: 174; height: 130 }
    Image { id: card; x: 380; width: 64; height: 48 }
    VideoHistoryModel { id: history }
    Connections {
        target: ImageProvider
        function onImageLoaded(index, filePath) {
            if (filePath.length === 0 || filePath.indexOf("CVideoCard") < 0)
                return
            card.source = "image://ImageProvider/" + filePath
        }
    }
    function start() {
        var entry = history.get(0)
        preview.loadThumbnailFromUrl(entry.url, (entry.last_position).toFixed(2))
        painted.setMaxSize(174, 130)
        painted.loadThumbnailFromUrl(entry.url, 0)
        ImageProvider.loadThumbnailFromUrl(0, entry.url, history.getLastPosition(entry.url), "CVideoCard")
        FileModel.append(entry.url, 0, "")
        FileModel.append(entry.url, 0, "")
    }
}
)");
    finishEngineSetup(engine);
    QCOMPARE(engine.rootObjects().size(), 1);
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    QVERIFY(window);
    QVERIFY(QTest::qWaitForWindowExposed(window));
    QCOMPARE(window->property("history").value<QObject*>()->property("count").toInt(), 1);

    QMetaObject::invokeMethod(window, "start");
    auto* card = window->property("card").value<QObject*>();
    QTRY_COMPARE_WITH_TIMEOUT(card->property("status").toInt(), 1 /* Ready */, 20000);
    QCOMPARE(card->property("sourceSize").toSize(), QSize(320, 240));
    QCOMPARE(FileModel::instance()->count(), 1);

    // Both previews show the red quadrant top left and the yellow one bottom right.
    auto shows = [window](const QQuickItem* item) {
        const QImage shot = window->grabWindow();
        const QRect r = item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toRect();
        const QColor topLeft = shot.pixelColor(r.left() + r.width() / 4, r.top() + r.height() / 4);
        const QColor bottomRight =
            shot.pixelColor(r.left() + 3 * r.width() / 4, r.top() + 3 * r.height() / 4);
        return topLeft.red() > 200 && topLeft.green() < 60 && topLeft.blue() < 60 &&
               bottomRight.red() > 200 && bottomRight.green() > 200 && bottomRight.blue() < 60;
    };
    auto* preview = window->property("preview").value<QQuickItem*>();
    auto* painted = window->property("painted").value<QQuickItem*>();
    QTRY_VERIFY_WITH_TIMEOUT(shows(preview), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(shows(painted), 20000);
}

QTEST_MAIN(HistoryQmlTest)
#include "tst_historyqml.moc"
