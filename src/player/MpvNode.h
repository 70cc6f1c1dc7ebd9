#pragma once

#include <QVariant>
#include <mpv/client.h>

// One libmpv node tree built from a QVariant, owned by this object and released with the C
// runtime's free() (never by libmpv). Conversion order matters: a string is tested before
// the list branch, so a string list becomes an array while a string never does.
class MpvNode
{
public:
    explicit MpvNode(const QVariant& value);
    ~MpvNode();

    MpvNode(const MpvNode&) = delete;
    MpvNode& operator=(const MpvNode&) = delete;

    mpv_node* get() { return &m_node; }
    const mpv_node& node() const { return m_node; }

    // A node tree from libmpv (or from this class) as a QVariant; formats with no Qt
    // counterpart become an invalid QVariant. Does not free anything.
    static QVariant toVariant(const mpv_node& node);

private:
    static mpv_node build(const QVariant& value);
    static void release(mpv_node& node);

    mpv_node m_node;
};
