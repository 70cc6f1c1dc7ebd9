#pragma once

#include <mpv/client.h>
#include <memory>

// An extra client handle on a libmpv core, released with mpv_destroy on every path like the
// FFmpeg holders: the core waits for its clients before it ends. The core's own handle stays
// with MpvSession, because libmpv dictates the order in which it and the render context go.
struct MpvClientDeleter
{
    void operator()(mpv_handle* client) const { mpv_destroy(client); }
};
using MpvClientPtr = std::unique_ptr<mpv_handle, MpvClientDeleter>;
