#include "MpvNode.h"

#include <QJSValue>
#include <QVariantList>
#include <QVariantMap>
#include <cstdlib>
#include <cstring>

namespace {

mpv_node noneNode()
{
    mpv_node node;
    std::memset(&node, 0, sizeof(node));
    node.format = MPV_FORMAT_NONE;
    return node;
}

char* copyUtf8(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    auto* copy = static_cast<char*>(std::malloc(static_cast<size_t>(utf8.size()) + 1));
    if (copy)
        std::memcpy(copy, utf8.constData(), static_cast<size_t>(utf8.size()) + 1);
    return copy;
}

bool isInteger(int type)
{
    switch (type) {
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

} // namespace

MpvNode::MpvNode(const QVariant& value) : m_node(build(value)) {}

MpvNode::~MpvNode()
{
    release(m_node);
}

mpv_node MpvNode::build(const QVariant& value)
{
    const int type = value.userType();
    // Values from QML scripts arrive wrapped; judge what they hold.
    if (type == qMetaTypeId<QJSValue>())
        return build(value.value<QJSValue>().toVariant());

    mpv_node node = noneNode();
    if (type == QMetaType::QString) {
        char* text = copyUtf8(value.toString());
        if (text) {
            node.format = MPV_FORMAT_STRING;
            node.u.string = text;
        }
    } else if (type == QMetaType::Bool) {
        node.format = MPV_FORMAT_FLAG;
        node.u.flag = value.toBool() ? 1 : 0;
    } else if (isInteger(type)) {
        node.format = MPV_FORMAT_INT64;
        node.u.int64 = value.toLongLong();
    } else if (type == QMetaType::Double || type == QMetaType::Float) {
        node.format = MPV_FORMAT_DOUBLE;
        node.u.double_ = value.toDouble();
    } else if (value.canConvert<QVariantList>()) {
        const QVariantList items = value.value<QVariantList>();
        auto* list = static_cast<mpv_node_list*>(std::calloc(1, sizeof(mpv_node_list)));
        if (!list)
            return node;
        if (!items.isEmpty()) {
            list->values =
                static_cast<mpv_node*>(std::calloc(static_cast<size_t>(items.size()), sizeof(mpv_node)));
            if (!list->values) {
                std::free(list);
                return node;
            }
        }
        for (const QVariant& item : items)
            list->values[list->num++] = build(item);
        node.format = MPV_FORMAT_NODE_ARRAY;
        node.u.list = list;
    } else if (value.canConvert<QVariantMap>()) {
        const QVariantMap items = value.value<QVariantMap>();
        auto* list = static_cast<mpv_node_list*>(std::calloc(1, sizeof(mpv_node_list)));
        if (!list)
            return node;
        if (!items.isEmpty()) {
            const auto count = static_cast<size_t>(items.size());
            list->values = static_cast<mpv_node*>(std::calloc(count, sizeof(mpv_node)));
            list->keys = static_cast<char**>(std::calloc(count, sizeof(char*)));
            if (!list->values || !list->keys) {
                std::free(list->values);
                std::free(list->keys);
                std::free(list);
                return node;
            }
        }
        for (auto it = items.cbegin(); it != items.cend(); ++it) {
            char* key = copyUtf8(it.key());
            if (!key)
                continue;
            list->keys[list->num] = key;
            list->values[list->num] = build(it.value());
            ++list->num;
        }
        node.format = MPV_FORMAT_NODE_MAP;
        node.u.list = list;
    }
    return node;
}

void MpvNode::release(mpv_node& node)
{
    switch (node.format) {
    case MPV_FORMAT_STRING:
        std::free(node.u.string);
        break;
    case MPV_FORMAT_NODE_ARRAY:
    case MPV_FORMAT_NODE_MAP:
        if (node.u.list) {
            for (int i = 0; i < node.u.list->num; ++i) {
                release(node.u.list->values[i]);
                if (node.u.list->keys)
                    std::free(node.u.list->keys[i]);
            }
            std::free(node.u.list->values);
            std::free(node.u.list->keys);
            std::free(node.u.list);
        }
        break;
    default:
        break;
    }
    node = noneNode();
}

QVariant MpvNode::toVariant(const mpv_node& node)
{
    switch (node.format) {
    case MPV_FORMAT_STRING:
        return QString::fromUtf8(node.u.string);
    case MPV_FORMAT_FLAG:
        return node.u.flag != 0;
    case MPV_FORMAT_INT64:
        return static_cast<qlonglong>(node.u.int64);
    case MPV_FORMAT_DOUBLE:
        return node.u.double_;
    case MPV_FORMAT_NODE_ARRAY: {
        QVariantList items;
        if (node.u.list) {
            items.reserve(node.u.list->num);
            for (int i = 0; i < node.u.list->num; ++i)
                items.append(toVariant(node.u.list->values[i]));
        }
        return items;
    }
    case MPV_FORMAT_NODE_MAP: {
        QVariantMap items;
        if (node.u.list) {
            for (int i = 0; i < node.u.list->num; ++i)
                items.insert(QString::fromUtf8(node.u.list->keys[i]), toVariant(node.u.list->values[i]));
        }
        return items;
    }
    default:
        return QVariant();
    }
}
