#pragma once

#include "ErrorReturn.h"

#include <QObject>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <mpv/client.h>

Q_DECLARE_METATYPE(mpv_event)
Q_DECLARE_METATYPE(mpv_format)

// The one owner of libmpv's client interface for a render item. It lives on a thread of
// its own: init() and the event handler always run there, and its signals reach GUI-thread
// receivers queued. The handle is created here but ended by the render item, after the
// render context is gone (the controller itself never ends it).
//
// Besides the handle the controller keeps no state, so the GUI thread may also call
// observeProperty, getProperty, setProperty and command directly (libmpv's client calls
// are thread-safe).
class MpvController : public QObject
{
    Q_OBJECT
public:
    explicit MpvController(QObject* parent = nullptr);

    // Registers the types that cross threads in queued signals; safe to call repeatedly.
    static void registerMetaTypes();

    // Runs a command list on any handle of the core (used for work off the controller's
    // thread with a client handle of its own). The result node, or ErrorReturn.
    static QVariant runCommand(mpv_handle* handle, const QVariant& params);

signals:
    void propertyChanged(QString property, QVariant value);
    // The event is a copy: only event_id, error and reply_userdata stay meaningful.
    void asyncReply(QVariant data, mpv_event event);
    // playlistEntryId: libmpv's id of the entry, as loadFile() reported it with fileQueued.
    void fileStarted(qint64 playlistEntryId);
    void fileLoaded();
    void endFile(QString reason, qint64 playlistEntryId);
    // The entry was a playlist or a folder: libmpv replaced it by the entries it holds, the
    // first of which plays next.
    void fileRedirected(qint64 playlistEntryId, qint64 firstInsertedEntryId);
    // Answers to loadFile(), carrying the caller's token: the playlist entry libmpv made for
    // the file, or libmpv's reason for refusing it.
    void fileQueued(quint64 token, qint64 playlistEntryId);
    void loadRefused(quint64 token, QString reason);
    void videoReconfig();

public slots:
    void init();
    void observeProperty(const QString& property, mpv_format format, uint64_t id = 0);
    void unobserveProperty(uint64_t id);
    int setProperty(const QString& property, const QVariant& value);
    void setPropertyAsync(const QString& property, const QVariant& value, int id = 0);
    QVariant getProperty(const QString& property);
    void getPropertyAsync(const QString& property, int id = 0);
    QVariant command(const QVariant& params);
    void commandAsync(const QVariant& params, int id = 0);
    // "loadfile" for one file or URL, answered with fileQueued or loadRefused. A load may
    // never start (a stop or another load can overtake it before libmpv opens it), so
    // callers match start and end reports to the entry id rather than count loads.
    void loadFile(const QString& path, quint64 token);
    mpv_handle* mpv() const { return m_mpv; }

private slots:
    // Drains every queued event without waiting.
    void eventHandler();

private:
    static void wakeup(void* context);

    mpv_handle* m_mpv = nullptr;
};
