#include "FileModel.h"

#include "ProcessWide.h"

#include <iterator>

FileModel::FileModel(QObject* parent) : QAbstractListModel(parent) {}

FileModel* FileModel::instance()
{
    return &processWide<FileModel>();
}

int FileModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_count;
}

int FileModel::count() const
{
    return m_count;
}

std::list<FileModel::Item>::iterator FileModel::at(int index)
{
    return std::next(m_items.begin(), index);
}

std::list<FileModel::Item>::const_iterator FileModel::at(int index) const
{
    return std::next(m_items.cbegin(), index);
}

void FileModel::append(const QString& path, int status, const QString& desPath)
{
    for (const Item& item : m_items) {
        if (item.path == path)
            return;
    }
    beginInsertRows(QModelIndex(), m_count, m_count);
    m_items.push_back(Item{path, status, desPath});
    ++m_count;
    endInsertRows();
    emit rowCountChanged();
}

QVariantMap FileModel::get(int index) const
{
    if (index < 0 || index >= m_count)
        return {};
    const Item& item = *at(index);
    return {{QStringLiteral("path"), item.path},
            {QStringLiteral("status"), item.status},
            {QStringLiteral("desPath"), item.desPath}};
}

void FileModel::clear()
{
    // A reset even when empty: views re-read everything and drop stale delegates.
    beginResetModel();
    m_items.clear();
    m_count = 0;
    endResetModel();
}

void FileModel::clearStatus()
{
    for (Item& item : m_items)
        item.status = 0;
    // An empty list has no range to announce; an invalid one only confuses views.
    if (m_count > 0)
        emit dataChanged(index(0), index(m_count - 1));
}

bool FileModel::setProperty(int index, const QString& roleName, const QVariant& value)
{
    if (index < 0 || index >= m_count)
        return false;
    Item& item = *at(index);
    if (roleName == QLatin1String("path")) {
        const QString text = value.toString();
        if (text == item.path)
            return false;
        item.path = text;
    } else if (roleName == QLatin1String("status")) {
        const int status = value.toInt();
        if (status == item.status)
            return false;
        item.status = status;
    } else if (roleName == QLatin1String("desPath")) {
        const QString text = value.toString();
        if (text == item.desPath)
            return false;
        item.desPath = text;
    } else {
        return false;
    }
    const QModelIndex changed = this->index(index);
    emit dataChanged(changed, changed, {});
    return true;
}

void FileModel::remove(int index)
{
    if (index < 0 || index >= m_count)
        return;
    beginRemoveRows(QModelIndex(), index, index);
    m_items.erase(at(index));
    --m_count;
    endRemoveRows();
    emit rowCountChanged();
}

QVariant FileModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() < 0 || index.row() >= m_count)
        return {};
    const Item& item = *at(index.row());
    switch (role) {
    case PathRole:
        return item.path;
    case StatusRole:
        return item.status;
    case DesPathRole:
        return item.desPath;
    default:
        return {};
    }
}

QHash<int, QByteArray> FileModel::roleNames() const
{
    return {{PathRole, "path"}, {StatusRole, "status"}, {DesPathRole, "desPath"}};
}
