// Not QSqlTableModel: with pending edits it goes on showing removed rows, and every save reads the table
// anew, which takes the selection and an edit that has begun from the user.
#include <contacts/contactmodel.h>

#include <contacts/sqlquery.h>

#include <QSignalBlocker>

namespace oblino {

namespace {

constexpr int keyRole =
    Qt::UserRole; // of the name: the key on disk, nothing for a contact that is not there yet

} // namespace

ContactModel::ContactModel(const FetchRequest &request)
    : QStandardItemModel(0, 2)
    , m_entityName(request.entityName)
{
}

QString ContactModel::text(int row, ContactColumn column) const
{
    return index(row, column).data().toString();
}

ContactModel::Contact ContactModel::take(int row)
{
    Contact taken = {key(row), texts(row)};
    removeRow(row);
    return taken;
}

void ContactModel::insert(int row, const Contact &contact)
{
    auto *name = new QStandardItem(contact.texts.at(NameColumn));
    name->setData(contact.key, keyRole);
    insertRow(row, {name, new QStandardItem(contact.texts.at(PhoneNoColumn))});
}

QString ContactModel::load(const QSqlDatabase &database)
{
    QSqlQuery query =
        execute(database, QStringLiteral("SELECT id, name, phoneNo FROM %1 ORDER BY id").arg(m_entityName));
    beginResetModel();
    {
        const QSignalBlocker blocker(this);
        setRowCount(0);
        while (query.next()) {
            auto *name = new QStandardItem(query.value(1).toString());
            name->setData(query.value(0), keyRole);
            appendRow({name, new QStandardItem(query.value(2).toString())});
        }
        if (!errorMessage(query).isEmpty())
            setRowCount(0);
        rememberStored();
    }
    endResetModel();
    return errorMessage(query);
}

bool ContactModel::hasChanges() const
{
    bool hasChanges = rowCount() != m_stored.size();
    for (int row = 0; row < rowCount() && !hasChanges; ++row)
        hasChanges = isChanged(row);
    return hasChanges;
}

QString ContactModel::write(const QSqlDatabase &database)
{
    const auto run = [&](const QString &statement, const QVariantList &values) {
        return execute(database, statement.arg(m_entityName), values);
    };
    m_writtenKeys.clear();
    QHash<qint64, Texts> removed = m_stored;
    QString error;
    for (int row = 0; row < rowCount() && error.isEmpty(); ++row) {
        const auto [name, phoneNo] = texts(row);
        qint64 written = key(row);
        removed.remove(written);
        if (written == 0) {
            const QSqlQuery query =
                run(QStringLiteral("INSERT INTO %1 (name, phoneNo) VALUES (?, ?)"), {name, phoneNo});
            written = query.lastInsertId().toLongLong();
            error = errorMessage(query);
        } else if (isChanged(row)) {
            error = errorMessage(run(QStringLiteral("UPDATE %1 SET name = ?, phoneNo = ? WHERE id = ?"),
                                     {name, phoneNo, written}));
        }
        m_writtenKeys += written;
    }
    for (auto gone = removed.keyBegin(); gone != removed.keyEnd() && error.isEmpty(); ++gone)
        error = errorMessage(run(QStringLiteral("DELETE FROM %1 WHERE id = ?"), {*gone}));
    return error;
}

void ContactModel::confirmWritten()
{
    // Nobody sees a key; told of it, a view would take from an open editor what was typed there.
    const QSignalBlocker blocker(this);
    for (int row = 0; row < rowCount(); ++row)
        setData(index(row, NameColumn), m_writtenKeys.at(row), keyRole);
    rememberStored();
}

qint64 ContactModel::key(int row) const
{
    return index(row, NameColumn).data(keyRole).toLongLong();
}

ContactModel::Texts ContactModel::texts(int row) const
{
    return {text(row, NameColumn), text(row, PhoneNoColumn)};
}

bool ContactModel::isChanged(int row) const
{
    const auto stored = m_stored.constFind(key(row));
    return stored == m_stored.cend() || *stored != texts(row);
}

void ContactModel::rememberStored()
{
    m_stored.clear();
    for (int row = 0; row < rowCount(); ++row)
        m_stored.insert(key(row), texts(row));
}

} // namespace oblino
