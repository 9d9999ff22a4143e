#pragma once

#include <contacts/entity.h>

#include <QAbstractTableModel>
#include <QList>

class QSqlDatabase;

namespace oblino {

/// The objects of one entity as a table, a column an attribute, in the order in which the store returns
/// them. Edits, new rows and removals are pending until they are written.
class EntityModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit EntityModel(Entity entity);

    [[nodiscard]] const Entity &entity() const { return m_entity; }

    /// Replaces everything, what is pending too, by the objects of the store.
    /// @return an error, empty when it was done
    [[nodiscard]] QString load(const QSqlDatabase &database);

    /// Writes what is pending into the transaction that is open. An object that is no longer in the store
    /// stays away. It all stays pending until confirmWritten().
    /// @return an error, empty when it was done
    [[nodiscard]] QString write(const QSqlDatabase &database);

    /// The transaction of the last write() is safe in the store.
    void confirmWritten();

    /// Whether something is pending.
    [[nodiscard]] bool hasChanges() const;

    /// Drops all rows and what is pending.
    void clear();

    /// The object in that row, a value an attribute.
    [[nodiscard]] QStringList object(int row) const { return m_rows.at(row).values; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /// New objects, all attributes empty. They go to the end only.
    bool insertRows(int row, int count, const QModelIndex &parent = {}) override;
    bool removeRows(int row, int count, const QModelIndex &parent = {}) override;

private:
    struct Row
    {
        qint64 key = 0;        // in the store, 0 for one that is not there yet
        qint64 writtenKey = 0; // the key that a transaction under way gave it
        QStringList values = {};
        bool changed = false;
    };

    [[nodiscard]] QString insert(const QSqlDatabase &database, Row &row) const;
    [[nodiscard]] QString update(const QSqlDatabase &database, const Row &row) const;
    [[nodiscard]] QString remove(const QSqlDatabase &database, qint64 key) const;

    Entity m_entity;
    QList<Row> m_rows;
    QList<qint64> m_removed; // keys of rows that are gone here and still in the store
};

} // namespace oblino
