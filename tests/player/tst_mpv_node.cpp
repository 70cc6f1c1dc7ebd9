#include "MpvNode.h"

#include <QDate>
#include <QJSEngine>
#include <QtTest>

// The QVariant <-> libmpv node conversion that every property value and command passes.
class TestMpvNode : public QObject
{
    Q_OBJECT

private:
    static QVariant roundTrip(const QVariant& value)
    {
        MpvNode node(value);
        return MpvNode::toVariant(node.node());
    }

private slots:
    void scalarsSurviveARoundTrip()
    {
        QCOMPARE(roundTrip(QString("中文字幕 ✓ abc")), QVariant(QString("中文字幕 ✓ abc")));
        QCOMPARE(roundTrip(QString()), QVariant(QString("")));
        QCOMPARE(roundTrip(true), QVariant(true));
        QCOMPARE(roundTrip(false), QVariant(false));
        QCOMPARE(roundTrip(3.25), QVariant(3.25));
        QCOMPARE(roundTrip(-0.5f).toDouble(), -0.5);

        // Every integer kind arrives as a 64-bit integer with its value intact.
        const QList<QVariant> integers{QVariant(int(-7)),
                                       QVariant(uint(4000000000u)),
                                       QVariant(qlonglong(-9000000000000LL)),
                                       QVariant(qulonglong(9000000000000ULL)),
                                       QVariant::fromValue<long>(-123456789L),
                                       QVariant::fromValue<short>(short(-3))};
        for (const QVariant& value : integers) {
            MpvNode node(value);
            QCOMPARE(node.node().format, MPV_FORMAT_INT64);
            const QVariant back = MpvNode::toVariant(node.node());
            QCOMPARE(back.userType(), int(QMetaType::LongLong));
            QCOMPARE(back.toLongLong(), value.toLongLong());
        }
    }

    void theStringTestComesBeforeTheListTest()
    {
        MpvNode text(QString("a,b"));
        QCOMPARE(text.node().format, MPV_FORMAT_STRING);
        MpvNode list(QStringList{"loadfile", "/tmp/视频.mp4"});
        QCOMPARE(list.node().format, MPV_FORMAT_NODE_ARRAY);
        QCOMPARE(MpvNode::toVariant(list.node()), QVariant(QVariantList{"loadfile", "/tmp/视频.mp4"}));
        MpvNode map(QVariantMap{{"k", 1}});
        QCOMPARE(map.node().format, MPV_FORMAT_NODE_MAP);
    }

    void nestedListsAndMapsSurvive()
    {
        const QVariantMap inner{{"名字", "值"}, {"flag", true}, {"n", qlonglong(5)}, {"x", 0.125}};
        const QVariantList value{"command", qlonglong(1), QVariantList{inner, QVariantList{}, QVariantMap{}},
                                 QVariantMap{{"list", QVariantList{false, 2.5, "s"}}, {"map", inner}}};
        QCOMPARE(roundTrip(value), QVariant(value));
        QCOMPARE(roundTrip(QVariantList{}), QVariant(QVariantList{}));
        QCOMPARE(roundTrip(QVariantMap{}), QVariant(QVariantMap{}));
    }

    void scriptValuesFromQmlAreJudgedByWhatTheyHold()
    {
        QJSEngine engine;
        const QJSValue script = engine.evaluate("[\"show-text\", {\"a\": [1, \"二\"]}, true]");
        const QVariant back = roundTrip(QVariant::fromValue(script));
        const QVariantList list = back.toList();
        QCOMPARE(list.size(), 3);
        QCOMPARE(list.at(0).toString(), QString("show-text"));
        QCOMPARE(list.at(1).toMap().value("a").toList().at(1).toString(), QString("二"));
        QCOMPARE(list.at(2), QVariant(true));
    }

    void unknownValuesAndFormatsBecomeNothing()
    {
        MpvNode date(QDate(2024, 1, 2));
        QCOMPARE(date.node().format, MPV_FORMAT_NONE);
        QVERIFY(!MpvNode::toVariant(date.node()).isValid());
        MpvNode invalid{QVariant()};
        QCOMPARE(invalid.node().format, MPV_FORMAT_NONE);

        mpv_byte_array bytes{const_cast<char*>("abc"), 3};
        mpv_node node;
        node.format = MPV_FORMAT_BYTE_ARRAY;
        node.u.ba = &bytes;
        QVERIFY(!MpvNode::toVariant(node).isValid());
        // Unknown elements keep their place inside containers.
        const QVariantList back = roundTrip(QVariantList{1, QDate(2024, 1, 2), "x"}).toList();
        QCOMPARE(back.size(), 3);
        QVERIFY(!back.at(1).isValid());
    }
};

QTEST_GUILESS_MAIN(TestMpvNode)
#include "tst_mpv_node.moc"
