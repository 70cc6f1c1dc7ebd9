#include "MpvController.h"

#include "MpvNode.h"

#include <QMetaObject>
#include <clocale>

namespace {

QVariant propertyValue(const mpv_event_property& property)
{
    switch (property.format) {
    case MPV_FORMAT_STRING:
        return QString::fromUtf8(*static_cast<char**>(property.data));
    case MPV_FORMAT_FLAG:
        return *static_cast<int*>(property.data) != 0;
    case MPV_FORMAT_INT64:
        return static_cast<qlonglong>(*static_cast<int64_t*>(property.data));
    case MPV_FORMAT_DOUBLE:
        return *static_cast<double*>(property.data);
    case MPV_FORMAT_NODE:
        return MpvNode::toVariant(*static_cast<mpv_node*>(property.data));
    default:
        // MPV_FORMAT_NONE: the property is unavailable right now.
        return QVariant();
    }
}

} // namespace

MpvController::MpvController(QObject* parent) : QObject(parent)
{
    registerMetaTypes();
}

void MpvController::registerMetaTypes()
{
    qRegisterMetaType<ErrorReturn>("ErrorReturn");
    qRegisterMetaType<mpv_event>("mpv_event");
    qRegisterMetaType<mpv_format>("mpv_format");
    qRegisterMetaType<uint64_t>("uint64_t");
}

void MpvController::init()
{
    // libmpv parses and prints numbers with the C locale only.
    std::setlocale(LC_NUMERIC, "C");

    m_mpv = mpv_create();
    if (!m_mpv)
        qFatal("could not create mpv context");
    // The window draws its own controls and takes no key bindings from the core, so the core's
    // own scripts (statistics page, console, online-stream hook) could never be reached; each
    // would run a script interpreter on a thread of its own.
    for (const char* option : {"load-stats-overlay", "load-osd-console", "ytdl", "load-auto-profiles"})
        mpv_set_option_string(m_mpv, option, "no");
    if (mpv_initialize(m_mpv) < 0)
        qFatal("could not initialize mpv context");
    mpv_set_wakeup_callback(m_mpv, &MpvController::wakeup, this);

    // The user's own options beside the executable; a missing or broken file is not an error.
    setProperty(QStringLiteral("include"), QStringLiteral("./mpvqt.conf"));
    setProperty(QStringLiteral("vo"), QStringLiteral("libmpv"));
}

void MpvController::wakeup(void* context)
{
    // Called on one of libmpv's threads: never touch libmpv here, only post.
    QMetaObject::invokeMethod(static_cast<MpvController*>(context), "eventHandler", Qt::QueuedConnection);
}

void MpvController::eventHandler()
{
    while (m_mpv) {
        mpv_event* event = mpv_wait_event(m_mpv, 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        switch (event->event_id) {
        case MPV_EVENT_COMMAND_REPLY: {
            const auto* reply = static_cast<mpv_event_command*>(event->data);
            emit asyncReply(reply ? MpvNode::toVariant(reply->result) : QVariant(), *event);
            break;
        }
        case MPV_EVENT_SET_PROPERTY_REPLY:
            emit asyncReply(QVariant(), *event);
            break;
        case MPV_EVENT_GET_PROPERTY_REPLY: {
            const auto* property = static_cast<mpv_event_property*>(event->data);
            emit asyncReply(property ? propertyValue(*property) : QVariant(), *event);
            break;
        }
        case MPV_EVENT_START_FILE:
            emit fileStarted(static_cast<mpv_event_start_file*>(event->data)->playlist_entry_id);
            break;
        case MPV_EVENT_END_FILE: {
            const auto* end = static_cast<mpv_event_end_file*>(event->data);
            if (end->reason == MPV_END_FILE_REASON_EOF)
                emit endFile(QStringLiteral("eof"), end->playlist_entry_id);
            else if (end->reason == MPV_END_FILE_REASON_ERROR)
                emit endFile(QStringLiteral("error"), end->playlist_entry_id);
            else if (end->reason == MPV_END_FILE_REASON_REDIRECT && end->playlist_insert_num_entries > 0)
                emit fileRedirected(end->playlist_entry_id, end->playlist_insert_id);
            break;
        }
        case MPV_EVENT_FILE_LOADED:
            emit fileLoaded();
            break;
        case MPV_EVENT_VIDEO_RECONFIG:
            emit videoReconfig();
            break;
        case MPV_EVENT_PROPERTY_CHANGE: {
            const auto* property = static_cast<mpv_event_property*>(event->data);
            emit propertyChanged(QString::fromUtf8(property->name), propertyValue(*property));
            break;
        }
        default:
            break;
        }
    }
}

void MpvController::observeProperty(const QString& property, mpv_format format, uint64_t id)
{
    mpv_observe_property(m_mpv, id, property.toUtf8().constData(), format);
}

void MpvController::unobserveProperty(uint64_t id)
{
    mpv_unobserve_property(m_mpv, id);
}

int MpvController::setProperty(const QString& property, const QVariant& value)
{
    MpvNode node(value);
    return mpv_set_property(m_mpv, property.toUtf8().constData(), MPV_FORMAT_NODE, node.get());
}

void MpvController::setPropertyAsync(const QString& property, const QVariant& value, int id)
{
    MpvNode node(value);
    // libmpv copies the node before returning.
    mpv_set_property_async(m_mpv, static_cast<uint64_t>(id), property.toUtf8().constData(), MPV_FORMAT_NODE,
                           node.get());
}

QVariant MpvController::getProperty(const QString& property)
{
    mpv_node node;
    const int error = mpv_get_property(m_mpv, property.toUtf8().constData(), MPV_FORMAT_NODE, &node);
    if (error < 0)
        return QVariant::fromValue(ErrorReturn(error));
    const QVariant value = MpvNode::toVariant(node);
    mpv_free_node_contents(&node);
    return value;
}

void MpvController::getPropertyAsync(const QString& property, int id)
{
    mpv_get_property_async(m_mpv, static_cast<uint64_t>(id), property.toUtf8().constData(), MPV_FORMAT_NODE);
}

QVariant MpvController::command(const QVariant& params)
{
    return runCommand(m_mpv, params);
}

QVariant MpvController::runCommand(mpv_handle* handle, const QVariant& params)
{
    MpvNode node(params);
    mpv_node result;
    const int error = mpv_command_node(handle, node.get(), &result);
    if (error < 0)
        return QVariant::fromValue(ErrorReturn(error));
    const QVariant value = MpvNode::toVariant(result);
    mpv_free_node_contents(&result);
    return value;
}

void MpvController::loadFile(const QString& path, quint64 token)
{
    const QVariant result = command(QVariantList{QStringLiteral("loadfile"), path});
    if (result.userType() == qMetaTypeId<ErrorReturn>()) {
        emit loadRefused(token, QString::fromUtf8(mpv_error_string(result.value<ErrorReturn>().error)));
        return;
    }
    // Emitted before this thread can handle the entry's start event, so receivers on one
    // thread always learn the id before they see it started.
    emit fileQueued(token, result.toMap().value(QStringLiteral("playlist_entry_id"), -1).toLongLong());
}

void MpvController::commandAsync(const QVariant& params, int id)
{
    MpvNode node(params);
    mpv_command_node_async(m_mpv, static_cast<uint64_t>(id), node.get());
}
