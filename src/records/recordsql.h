#pragma once

#include <records/cloudcontainer.h>

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariantList>

class QSqlQuery;

namespace oblino {

/// A record type in one database of a container: one table, a column a field, the record's name as primary
/// key. The statements are plain SQL that SQLite 3.24 and PostgreSQL 9.5 understand alike; values are bound.
class RecordSql
{
public:
    RecordSql(DatabaseScope scope, const RecordType &type);

    [[nodiscard]] QString tableName() const { return m_tableName; }

    /// What makes the table with its index.
    [[nodiscard]] QStringList creation() const;
    /// Writes `rows` records; the values of each are those of appendRow().
    [[nodiscard]] QString upsert(qsizetype rows) const;
    /// Finds the records in which the field is one of `values` values, or all records where it is empty.
    [[nodiscard]] QString select(const QString &key, qsizetype values) const;
    /// Deletes `rows` records by name.
    [[nodiscard]] QString deletion(qsizetype rows) const;
    /// What needs the rights that the records need, and changes nothing.
    [[nodiscard]] QStringList rightsCheck() const;

    /// @param created  where the record comes in the order of records, when it is new
    void appendRow(QVariantList &values, const CloudRecord &record, qint64 created) const;
    /// Points in time that a select has met already: the system is slow to tell what they are in local time.
    using DateTimeCache = QHash<qint64, QDateTime>;
    /// A record of a row of select().
    [[nodiscard]] CloudRecord record(const QSqlQuery &row, DateTimeCache &times) const;

    /// The form in which a value is stored: text, whole number or double; a point in time as milliseconds
    /// since 1970 UTC, a boolean as 0 or 1.
    [[nodiscard]] static QVariant stored(FieldType type, const QVariant &value);

private:
    const RecordType &m_type;
    QString m_tableName;
    QString m_table;                             // quoted, as the rest
    QStringList m_columns;                       // of the fields
    mutable QHash<qsizetype, QString> m_upserts; // by rows; they are long to put together
};

/// A name as it stands in a statement, whatever characters it has.
[[nodiscard]] QString quotedName(const QString &name);

} // namespace oblino
