#pragma once

#include <records/cloudcontainer.h>

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace oblino {

/// A record type in one database of a container: one table, a column a field, the record's name as primary
/// key. The statements are plain SQL that SQLite 3.24 and PostgreSQL 9.5 understand alike; values are bound.
class RecordSql
{
public:
    RecordSql(DatabaseScope scope, const RecordType &type);

    [[nodiscard]] const RecordType &type() const { return m_type; }
    [[nodiscard]] QString tableName() const { return m_tableName; }

    /// What makes the table with its index.
    [[nodiscard]] QStringList creation() const;
    /// Writes `rows` records; the values of each are rowValues().
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

    /// A record of a row of select(), whose first column is the name.
    template<typename Row>
    [[nodiscard]] CloudRecord record(const Row &row, DateTimeCache &moments) const
    {
        CloudRecord found(m_type, loaded(FieldType::Text, row.value(0), moments).toString());
        for (qsizetype field = 0; field < m_type.fields().size(); ++field)
            found.setValue(field, loaded(m_type.fields().at(field).type,
                                         row.value(static_cast<int>(field) + 1), moments));
        return found;
    }

    /// The form in which a value is stored: text, whole number or double; a point in time as milliseconds
    /// since 1970 UTC, a boolean as 0 or 1.
    [[nodiscard]] static QVariant stored(FieldType type, const QVariant &value);
    /// The value again; invalid where the store holds something of another type.
    [[nodiscard]] static QVariant loaded(FieldType type, const QVariant &value, DateTimeCache &moments);

private:
    const RecordType &m_type;
    QString m_tableName;
    QString m_table;                             // quoted, as the rest
    QString m_columns;                           // name, fields
    mutable QHash<qsizetype, QString> m_upserts; // by rows; they are long to put together
};

/// A name as it stands in a statement, whatever characters it has.
[[nodiscard]] QString quotedName(const QString &name);

/// `count` times `piece`, with commas between.
[[nodiscard]] QString repeated(const QString &piece, qsizetype count);

} // namespace oblino
