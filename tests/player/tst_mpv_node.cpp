#include "MpvNode.h"

#include <QDate>
#include <QJSEngine>
#include <QtTest>

// The QVariant <-> libmpv node conversion that every property value and command passes.
class TestMpvNode : public QObject
{
    Q_OBJECT

    static QVariant roundTrip(const QVariant& value) { return MpvNode::toVariant(MpvNode(value).node()); }

private slots:
    void valuesSurviveARoundTrip_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<int>("format");
        QTest::addColumn<QVariant>("expected");
        const auto row = [](const char* name, const QVariant& v, mpv_format f, const QVariant& e = {}) {
            QTest::newRow(name) << v << int(f) << (e.isValid() ? e : v);
        };
        row("chinese text", QString("中文字幕 ✓ abc"), MPV_FORMAT_STRING);
        row("empty text", QString(), MPV_FORMAT_STRING, QString(""));
        row("text with a comma is no list", QString("a,b"), MPV_FORMAT_STRING);
        row("true", true, MPV_FORMAT_FLAG);
        row("false", false, MPV_FORMAT_FLAG);
        row("double", 3.25, MPV_FORMAT_DOUBLE);
        // Every integer kind arrives as a 64-bit integer with its value intact.
        row("int", int(-7), MPV_FORMAT_INT64, qlonglong(-7));
        row("uint", uint(4000000000u), MPV_FORMAT_INT64, qlonglong(4000000000LL));
        row("long long", qlonglong(-9000000000000LL), MPV_FORMAT_INT64);
        row("unsigned long long", qulonglong(9000000000000ULL), MPV_FORMAT_INT64, qlonglong(9000000000000LL));
        row("short", QVariant::fromValue<short>(-3), MPV_FORMAT_INT64, qlonglong(-3));
        row("string list", QStringList{"loadfile", "/tmp/视频.mp4"}, MPV_FORMAT_NODE_ARRAY,
            QVariantList{"loadfile", "/tmp/视频.mp4"});
        const QVariantMap inner{{"名字", "值"}, {"flag", true}, {"n", qlonglong(5)}, {"x", 0.125}};
        row("nested",
            QVariantList{"command", qlonglong(1), QVariantList{inner, QVariantList{}, QVariantMap{}},
                         QVariantMap{{"list", QVariantList{false, 2.5, "s"}}, {"map", inner}}},
            MPV_FORMAT_NODE_ARRAY);
        row("empty map", QVariantMap{}, MPV_FORMAT_NODE_MAP);
        // Unknown values become nothing but keep their place inside containers.
        row("date", QDate(2024, 1, 2), MPV_FORMAT_NONE, QVariant::fromValue(nullptr));
        row("unknown inside a list", QVariantList{qlonglong(1), QDate(2024, 1, 2)}, MPV_FORMAT_NODE_ARRAY,
            QVariantList{qlonglong(1), QVariant()});
    }

    void valuesSurviveARoundTrip()
    {
        QFETCH(QVariant, value);
        QFETCH(int, format);
        QFETCH(QVariant, expected);
        MpvNode node(value);
        QCOMPARE(int(node.node().format), format);
        const QVariant back = MpvNode::toVariant(node.node());
        if (expected.userType() == QMetaType::Nullptr)
            QVERIFY(!back.isValid());
        else
            QCOMPARE(back, expected);
        if (back.isValid())
            QCOMPARE(back.userType(), expected.userType());
    }

    void scriptValuesConvertAndUnknownFormatsBecomeNothing()
    {
        // Values from QML are judged by what they hold.
        QJSEngine engine;
        const QVariant back =
            roundTrip(QVariant::fromValue(engine.evaluate("[\"show-text\", {\"a\": [1, \"二\"]}, true]")));
        QCOMPARE(back.toList().value(1).toMap().value("a").toList().value(1).toString(), QString("二"));
        QCOMPARE(back.toList().value(2), QVariant(true));

        mpv_byte_array bytes{const_cast<char*>("abc"), 3};
        mpv_node node;
        node.format = MPV_FORMAT_BYTE_ARRAY;
        node.u.ba = &bytes;
        QVERIFY(!MpvNode::toVariant(node).isValid());
    }
};

QTEST_GUILESS_MAIN(TestMpvNode)
#include "tst_mpv_node.moc"
