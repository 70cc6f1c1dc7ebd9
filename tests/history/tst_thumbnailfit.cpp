#include "ThumbnailFit.h"

#include <QtTest>

class ThumbnailFitTest : public QObject
{
    Q_OBJECT

private slots:
    void fitsIntoTheBox_data();
    void fitsIntoTheBox();
};

void ThumbnailFitTest::fitsIntoTheBox_data()
{
    QTest::addColumn<QSize>("frame");
    QTest::addColumn<QSize>("box");
    QTest::addColumn<QSize>("expected");
    // Wider than the box: full width, height rounded after adding 0.5 (118.125 + 0.5).
    QTest::newRow("1080p in the hover box") << QSize(1920, 1080) << QSize(210, 130) << QSize(210, 119);
    // Same aspect: the else branch gives 200 + 0.5 -> 201, capped by the box.
    QTest::newRow("same aspect") << QSize(1000, 500) << QSize(200, 100) << QSize(200, 100);
    // Narrower than the box: full height.
    QTest::newRow("4:3 in the hover box") << QSize(320, 240) << QSize(210, 130) << QSize(174, 130);
    QTest::newRow("portrait") << QSize(1080, 1920) << QSize(210, 130) << QSize(74, 130);
    QTest::newRow("zero box keeps the size") << QSize(1920, 1080) << QSize(0, 0) << QSize(0, 0);
    QTest::newRow("zero height box") << QSize(1920, 1080) << QSize(210, 0) << QSize(0, 0);
    QTest::newRow("negative box") << QSize(1920, 1080) << QSize(-1, 130) << QSize(0, 0);
}

void ThumbnailFitTest::fitsIntoTheBox()
{
    QFETCH(QSize, frame);
    QFETCH(QSize, box);
    QFETCH(QSize, expected);
    QCOMPARE(fitThumbnail(frame.width(), frame.height(), box.width(), box.height()), expected);
}

QTEST_APPLESS_MAIN(ThumbnailFitTest)
#include "tst_thumbnailfit.moc"
