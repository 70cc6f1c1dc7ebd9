#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <list>

// The files a user has put into a tool window: path (the URL as given), a status number
// (0 when added; tools may use other values for their own marks) and a destination path.
// One process-wide instance is the QML singleton FileModel. GUI thread only, no locking.
class FileModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY rowCountChanged)
public:
    enum Roles
    {
        PathRole = Qt::UserRole + 1,
        StatusRole,
        DesPathRole
    };

    explicit FileModel(QObject* parent = nullptr);

    // The process-wide instance (see ProcessWide.h).
    static FileModel* instance();

signals:
    void rowCountChanged();

public:
    Q_INVOKABLE int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    Q_INVOKABLE int count() const;
    // A path already in the list is ignored, so dropping the same file twice lists it once.
    Q_INVOKABLE void append(const QString& path, int status, const QString& desPath);
    Q_INVOKABLE QVariantMap get(int index) const;
    Q_INVOKABLE void clear();
    Q_INVOKABLE void clearStatus();
    // Changes "path", "status" or "desPath" of one row; false when the row or the name is
    // unknown or the value is already stored (nothing is emitted then).
    Q_INVOKABLE bool setProperty(int index, const QString& roleName, const QVariant& value);
    Q_INVOKABLE void remove(int index);

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Item
    {
        QString path;
        int status = 0;
        QString desPath;
    };

    std::list<Item>::iterator at(int index);
    std::list<Item>::const_iterator at(int index) const;

    std::list<Item> m_items;
    int m_count = 0;
};
