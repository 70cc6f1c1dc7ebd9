#include "VideoHistoryModel.h"

#include "SqlHelper.h"

#include <spdlog/spdlog.h>

namespace {

// Map key read by each role, in role order from UrlRole.
const char* const kRoleKeys[] = {"url",        "filename",        "last_position",    "duration",
                                 "thumbnail",  "thumbnail_width", "thumbnail_height", "last_played",
                                 "play_count", "is_top"};

} // namespace

VideoHistoryModel::VideoHistoryModel(QObject* parent)
    : QAbstractListModel(parent), m_store(SqlHelper::instance())
{
    // Direct: the store emits on the GUI thread and the list must be current when its
    // change call returns.
    connect(
        m_store, &SqlHelper::dataChanged, this, [this]() { refresh(); }, Qt::DirectConnection);
    refresh();
}

int VideoHistoryModel::count() const
{
    return m_rows.size();
}

QVariantMap VideoHistoryModel::get(int index) const
{
    if (index < 0 || index >= m_rows.size())
        return {};
    return m_rows.at(index);
}

void VideoHistoryModel::refresh()
{
    beginResetModel();
    m_rows = m_store->getVideoHistory(kMaxRows);
    endResetModel();
    emit dataChanged(QModelIndex(), QModelIndex(), {});
    // Bindings on count would otherwise only follow the reset.
    emit countChanged();
}

bool VideoHistoryModel::removeVideo(const QString& url)
{
    Q_UNUSED(url)
    if (!m_store->clearHistory()) {
        spdlog::error("Failed to clear the history");
        return false;
    }
    refresh();
    return true;
}

double VideoHistoryModel::getLastPosition(const QString& url)
{
    return m_store->getLastPosition(url);
}

int VideoHistoryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant VideoHistoryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= m_rows.size())
        return {};
    if (role < UrlRole || role > IsTopRole)
        return {};
    return m_rows.at(index.row()).value(QLatin1String(kRoleKeys[role - UrlRole]));
}

QHash<int, QByteArray> VideoHistoryModel::roleNames() const
{
    return {{UrlRole, "url"},
            {FileNameRole, "filename"},
            {LastPositionRole, "lastPosition"},
            {DurationRole, "duration"},
            {ThumbnailRole, "thumbnail"},
            {ThumbnailWidthRole, "thumbnailWidth"},
            {ThumbnailHeightRole, "thumbnailHeight"},
            {LastPlayedRole, "lastPlayed"},
            {PlayCountRole, "playCount"},
            {IsTopRole, "isTop"}};
}
