// Not QSqlTableModel: with pending edits it goes on showing removed rows, and every save reads the table
// anew, which takes the selection and an edit that has begun from the user.
#include <contacts/contactmodel.h>

#include <contacts/sqlquery.h>

#include <algorithm>

namespace oblino {

ContactModel::ContactModel(const FetchRequest &request)
    : m_entityName(request.entityName)
{
}

QString ContactModel::load(const QSqlDatabase &database)
{
    QSqlQuery query =
        execute(database, QStringLiteral("SELECT id, name, phoneNo FROM %1 ORDER BY id").arg(m_entityName));
    QList<Row> rows;
    while (query.next()) {
        rows += Row{.key = query.value(0).toLongLong(),
                    .texts = {query.value(1).toString(), query.value(2).toString()}};
    }
    QString error = errorMessage(query);
    if (error.isEmpty())
        reset(rows);
    return error;
}

QString ContactModel::write(const QSqlDatabase &database)
{
    QString error;
    for (qsizetype i = 0; i < m_removed.size() && error.isEmpty(); ++i)
        error = errorMessage(execute(
            database, QStringLiteral("DELETE FROM %1 WHERE id = ?").arg(m_entityName), {m_removed.at(i)}));
    for (auto row = m_rows.begin(); row != m_rows.end() && error.isEmpty(); ++row) {
        const auto &[name, phoneNo] = row->texts;
        if (row->key == 0) {
            const QSqlQuery query = execute(
                database, QStringLiteral("INSERT INTO %1 (name, phoneNo) VALUES (?, ?)").arg(m_entityName),
                {name, phoneNo});
            row->writtenKey = query.lastInsertId().toLongLong();
            error = errorMessage(query);
        } else if (row->changed) {
            error = errorMessage(
                execute(database,
                        QStringLiteral("UPDATE %1 SET name = ?, phoneNo = ? WHERE id = ?").arg(m_entityName),
                        {name, phoneNo, row->key}));
        }
    }
    return error;
}

void ContactModel::confirmWritten()
{
    m_removed.clear();
    for (Row &row : m_rows) {
        if (row.key == 0)
            row.key = row.writtenKey;
        row.changed = false;
    }
}

bool ContactModel::hasChanges() const
{
    return !m_removed.isEmpty() || std::any_of(m_rows.begin(), m_rows.end(),
                                               [](const Row &row) { return row.key == 0 || row.changed; });
}

void ContactModel::clear()
{
    reset({});
}

void ContactModel::reset(const QList<Row> &rows)
{
    beginResetModel();
    m_rows = rows;
    m_removed.clear();
    endResetModel();
}

QString ContactModel::text(int row, ContactColumn column) const
{
    return m_rows.at(row).texts.at(column);
}

int ContactModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ContactModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant ContactModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    return text(index.row(), static_cast<ContactColumn>(index.column()));
}

Qt::ItemFlags ContactModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? QAbstractTableModel::flags(index) | Qt::ItemIsEditable : Qt::NoItemFlags;
}

bool ContactModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    if (const QString typed = value.toString(); typed != index.data().toString()) {
        Row &row = m_rows[index.row()];
        row.texts.at(static_cast<size_t>(index.column())) = typed;
        row.changed = true;
        Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
    }
    return true;
}

bool ContactModel::insertRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || row != rowCount() || count < 1)
        return false;
    beginInsertRows({}, row, row + count - 1);
    m_rows.insert(row, count, Row());
    endInsertRows();
    return true;
}

bool ContactModel::removeRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row + count > rowCount())
        return false;
    beginRemoveRows({}, row, row + count - 1);
    for (int i = row; i < row + count; ++i) {
        if (m_rows.at(i).key != 0)
            m_removed += m_rows.at(i).key;
    }
    m_rows.remove(row, count);
    endRemoveRows();
    return true;
}

} // namespace oblino
