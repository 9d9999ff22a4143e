#pragma once

#include <contacts/contacts.h>

#include <QHash>
#include <QList>
#include <QStandardItemModel>

#include <array>

class QSqlDatabase;

namespace oblino {

enum ContactColumn { NameColumn, PhoneNoColumn };

/// The contacts of one entity in the order of the store. Edits, new rows and removals are pending until they
/// are written; new rows go to the end. The functions that return an error return an empty one when all was
/// done.
class ContactModel : public QStandardItemModel
{
    Q_OBJECT

public:
    explicit ContactModel(const FetchRequest &request);

    [[nodiscard]] const QString &entityName() const { return m_entityName; }
    [[nodiscard]] QString text(int row, ContactColumn column) const;

    /// A contact outside the list; put in again before what is pending is written, it is the same one on
    /// disk.
    struct Contact
    {
        qint64 key = 0; ///< on disk; 0 for one that is not there yet
        std::array<QString, 2> texts;
    };
    [[nodiscard]] Contact take(int row);
    void insert(int row, const Contact &contact);

    /// Replaces everything, what is pending too, by what is on disk, or by nothing where that cannot be read.
    /// @return an error
    [[nodiscard]] QString load(const QSqlDatabase &database);

    /// Whether something is pending.
    [[nodiscard]] bool hasChanges() const;

    /// Writes what is pending into the transaction that is open. A contact that is no longer on disk stays
    /// away. It all stays pending until confirmWritten().
    /// @return an error
    [[nodiscard]] QString write(const QSqlDatabase &database);

    /// The transaction of the last write() was committed.
    void confirmWritten();

private:
    using Texts = std::array<QString, 2>;

    [[nodiscard]] qint64 key(int row) const;
    [[nodiscard]] Texts texts(int row) const;
    [[nodiscard]] bool isChanged(int row) const;
    void rememberStored();

    QString m_entityName;
    QHash<qint64, Texts> m_stored; // what is on disk, by its keys there
    QList<qint64> m_writtenKeys;   // of all rows, as the transaction under way has given them
};

} // namespace oblino
