// Not QSqlTableModel: with pending edits it goes on showing removed rows, and every save reads the table
// anew, which takes the selection and an edit that has begun from the user.
#include <contacts/entitymodel.h>

#include <contacts/sqlcalls.h>

#include <algorithm>

namespace oblino {

EntityModel::EntityModel(Entity entity)
    : m_entity(std::move(entity))
{
}

QString EntityModel::load(const QSqlDatabase &database)
{
    SqlCall select(database, QStringLiteral("SELECT id, %1 FROM %2 ORDER BY id")
                                 .arg(sqlNames(m_entity.attributes), sqlName(m_entity.name)));
    QList<Row> rows;
    while (select.next()) {
        Row row{.key = select.value(0).toLongLong()};
        for (int column = 0; column < columnCount(); ++column)
            row.values += select.value(column + 1).toString();
        rows += row;
    }
    if (QString error = select.error(); !error.isEmpty())
        return error;
    beginResetModel();
    m_rows = rows;
    m_removed.clear();
    endResetModel();
    return {};
}

QString EntityModel::write(const QSqlDatabase &database)
{
    QString error;
    for (qsizetype i = 0; i < m_removed.size() && error.isEmpty(); ++i)
        error = remove(database, m_removed.at(i));
    for (qsizetype i = 0; i < m_rows.size() && error.isEmpty(); ++i) {
        Row &row = m_rows[i];
        if (row.key == 0)
            error = insert(database, row);
        else if (row.changed)
            error = update(database, row);
    }
    return error;
}

void EntityModel::confirmWritten()
{
    m_removed.clear();
    for (Row &row : m_rows) {
        if (row.key == 0)
            row.key = row.writtenKey;
        row.changed = false;
    }
}

bool EntityModel::hasChanges() const
{
    return !m_removed.isEmpty() || std::any_of(m_rows.begin(), m_rows.end(),
                                               [](const Row &row) { return row.key == 0 || row.changed; });
}

void EntityModel::clear()
{
    beginResetModel();
    m_rows.clear();
    m_removed.clear();
    endResetModel();
}

int EntityModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int EntityModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entity.attributes.size());
}

QVariant EntityModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    return m_rows.at(index.row()).values.at(index.column());
}

Qt::ItemFlags EntityModel::flags(const QModelIndex &index) const
{
    return index.isValid() ? QAbstractTableModel::flags(index) | Qt::ItemIsEditable : Qt::NoItemFlags;
}

bool EntityModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    Row &row = m_rows[index.row()];
    QString &stored = row.values[index.column()];
    if (const QString text = value.toString(); text != stored) {
        stored = text;
        row.changed = true;
        Q_EMIT dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
    }
    return true;
}

bool EntityModel::insertRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || row != rowCount() || count < 1)
        return false;
    beginInsertRows({}, row, row + count - 1);
    const Row empty{.values = QStringList(m_entity.attributes.size(), QString())};
    m_rows.insert(row, count, empty);
    endInsertRows();
    return true;
}

bool EntityModel::removeRows(int row, int count, const QModelIndex &parent)
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

QString EntityModel::insert(const QSqlDatabase &database, Row &row) const
{
    QVariantList values;
    QStringList marks;
    for (const QString &value : row.values) {
        values += value;
        marks += QStringLiteral("?");
    }
    const SqlCall call(
        database,
        QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
            .arg(sqlName(m_entity.name), sqlNames(m_entity.attributes), marks.join(QLatin1String(", "))),
        values);
    row.writtenKey = call.insertedKey().toLongLong();
    return call.error();
}

QString EntityModel::update(const QSqlDatabase &database, const Row &row) const
{
    QVariantList values;
    QStringList settings;
    for (qsizetype i = 0; i < row.values.size(); ++i) {
        values += row.values.at(i);
        settings += sqlName(m_entity.attributes.at(i)) + QLatin1String(" = ?");
    }
    const QString statement = QStringLiteral("UPDATE %1 SET %2 WHERE id = ?")
                                  .arg(sqlName(m_entity.name), settings.join(QLatin1String(", ")));
    return SqlCall(database, statement, values << row.key).error();
}

QString EntityModel::remove(const QSqlDatabase &database, qint64 key) const
{
    return SqlCall(database, QStringLiteral("DELETE FROM %1 WHERE id = ?").arg(sqlName(m_entity.name)), {key})
        .error();
}

} // namespace oblino
