#include "QmlRegistration.h"
#include "SqlHelper.h"
#include "TestMedia.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QUrl>

// The history and preview types as QML sees them after the program's own registration, with
// the calls the hover and tool previews make (the cards' image provider and the play list are
// driven end to end by the main window's test).
class HistoryQmlTest : public QObject
{
    Q_OBJECT

private slots:
    void historyTypesWorkFromQml();
};

void HistoryQmlTest::historyTypesWorkFromQml()
{
    const QString dir = TestMedia::scratchDir("qml");
    QVERIFY(QDir::setCurrent(dir)); // the history database goes here
    const QString video = dir + "/clip.mp4";
    QVERIFY(TestMedia::makeVideo(video, 1.0, 320, 240, 25, false));
    const QString url = QUrl::fromLocalFile(video).toString();
    QVERIFY(SqlHelper::instance()->saveVideoInfo(url, "clip.mp4", 1.0, 0.5, QByteArray(), 0, 0));

    QQmlApplicationEngine engine;
    registerQmlTypes();
    engine.loadData(R"(
import QtQuick 2.15
import QtQuick.Window 2.15
import CustomUtils 1.0
Window {
    width: 480; height: 160; visible: true
    property var items: [preview, painted]
    property alias history: history
    ThumbnailItem { id: preview; width: 100; height: 100 }
    YUVPaintedItem { id: painted; x: 190; width: 100; height: 100 }
    VideoHistoryModel { id: history }
    function start() {
        var entry = history.get(0)
        preview.loadThumbnailFromUrl(entry.url, (entry.last_position).toFixed(2))
        painted.setMaxSize(174, 130)
        painted.loadThumbnailFromUrl(entry.url, 0)
    }
}
)");
    finishEngineSetup(engine);
    QCOMPARE(engine.rootObjects().size(), 1);
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    QVERIFY(window && QTest::qWaitForWindowExposed(window));
    QCOMPARE(window->property("history").value<QObject*>()->property("count").toInt(), 1);

    QMetaObject::invokeMethod(window, "start");
    const QVariantList list = window->property("items").toList();
    auto items = [&list](int i) { return list.at(i).value<QObject*>(); };
    // Both previews took the frame's size fitted into their box.
    QTRY_COMPARE_WITH_TIMEOUT(items(0)->property("width").toInt(), 174, 20000);
    QTRY_COMPARE_WITH_TIMEOUT(items(1)->property("height").toInt(), 130, 20000);
}

QTEST_MAIN(HistoryQmlTest)
#include "tst_historyqml.moc"
