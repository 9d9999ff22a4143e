#pragma once

#include <contacts/contacts.h>

#include <QAbstractTableModel>
#include <QList>

#include <array>

class QSqlDatabase;

namespace oblino {

enum ContactColumn { NameColumn, PhoneNoColumn };

/// The contacts of one entity in the order in which the store returns them. Edits, new rows and removals are
/// pending until they are written. The functions that return a text return an error, empty when all was done.
class ContactModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit ContactModel(const FetchRequest &request);

    [[nodiscard]] const QString &entityName() const { return m_entityName; }

    /// Replaces everything, what is pending too, by what the store holds.
    [[nodiscard]] QString load(const QSqlDatabase &database);

    /// Writes what is pending into the transaction that is open. A contact that is no longer in the store
    /// stays away. It all stays pending until confirmWritten().
    [[nodiscard]] QString write(const QSqlDatabase &database);

    /// The transaction of the last write() was committed.
    void confirmWritten();

    /// Whether something is pending.
    [[nodiscard]] bool hasChanges() const;

    /// Drops all rows and what is pending.
    void clear();

    [[nodiscard]] QString text(int row, ContactColumn column) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /// New contacts, both texts empty. They go to the end only.
    bool insertRows(int row, int count, const QModelIndex &parent = {}) override;
    bool removeRows(int row, int count, const QModelIndex &parent = {}) override;

private:
    struct Row
    {
        qint64 key = 0;        // in the store, 0 for one that is not there yet
        qint64 writtenKey = 0; // the key that a transaction under way gave it
        std::array<QString, 2> texts = {};
        bool changed = false;
    };

    void reset(const QList<Row> &rows);

    QString m_entityName;
    QList<Row> m_rows;
    QList<qint64> m_removed; // keys of rows that are gone here and still in the store
};

} // namespace oblino
