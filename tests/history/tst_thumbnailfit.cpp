#include "ThumbnailFit.h"

#include <QtTest>

class ThumbnailFitTest : public QObject
{
    Q_OBJECT

private slots:
    void fitsIntoTheBox_data()
    {
        QTest::addColumn<QSize>("frame");
        QTest::addColumn<QSize>("box");
        QTest::addColumn<QSize>("expected");
        // Wider than the box: full width, height rounded after adding 0.5 (118.125 + 0.5).
        QTest::newRow("1080p in the hover box") << QSize(1920, 1080) << QSize(210, 130) << QSize(210, 119);
        // Same aspect: the narrower branch gives 200 + 0.5 -> 201, capped by the box.
        QTest::newRow("same aspect") << QSize(1000, 500) << QSize(200, 100) << QSize(200, 100);
        QTest::newRow("4:3, full height") << QSize(320, 240) << QSize(210, 130) << QSize(174, 130);
        QTest::newRow("portrait") << QSize(1080, 1920) << QSize(210, 130) << QSize(74, 130);
        // (0, 0) tells the item to keep its size.
        QTest::newRow("zero box") << QSize(1920, 1080) << QSize(0, 0) << QSize(0, 0);
    }
    void fitsIntoTheBox()
    {
        QFETCH(QSize, frame);
        QFETCH(QSize, box);
        QFETCH(QSize, expected);
        QCOMPARE(fitThumbnail(frame.width(), frame.height(), box.width(), box.height()), expected);
    }
};

QTEST_APPLESS_MAIN(ThumbnailFitTest)
#include "tst_thumbnailfit.moc"
