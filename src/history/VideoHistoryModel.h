#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QVariantMap>

class SqlHelper;

// The history list of the main window: at most the first 10 rows of the history store (the
// pinned one first), reloaded whenever the store changes. Roles use camel-case names while
// get() returns the store's map with its column names; QML relies on both.
// GUI thread only, like the store it reads.
class VideoHistoryModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Roles
    {
        UrlRole = Qt::UserRole + 1,
        FileNameRole,
        LastPositionRole,
        DurationRole,
        ThumbnailRole,
        ThumbnailWidthRole,
        ThumbnailHeightRole,
        LastPlayedRole,
        PlayCountRole,
        IsTopRole
    };

    // Shows no more rows than this.
    static constexpr int kMaxRows = 10;

    explicit VideoHistoryModel(QObject* parent = nullptr);

signals:
    void countChanged();

public:
    Q_INVOKABLE int count() const;
    Q_INVOKABLE QVariantMap get(int index) const;
    Q_INVOKABLE void refresh();
    // Empties the whole history whatever url names (single rows go through
    // SqlHelper::deleteVideoByUrl); the UI's "clear" action depends on this.
    Q_INVOKABLE bool removeVideo(const QString& url);
    Q_INVOKABLE double getLastPosition(const QString& url);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    QList<QVariantMap> m_rows;
    SqlHelper* m_store = nullptr; // the process-wide store, not owned
};
