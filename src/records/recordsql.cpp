#include <records/recordsql.h>

#include <QSqlQuery>

namespace oblino {

namespace {

QString columnType(FieldType type)
{
    switch (type) {
    case FieldType::Text:
        return QStringLiteral("TEXT");
    case FieldType::Boolean:
        return QStringLiteral("SMALLINT");
    case FieldType::Double:
        return QStringLiteral("DOUBLE PRECISION");
    case FieldType::DateTime:
    case FieldType::Integer:
        break;
    }
    return QStringLiteral("BIGINT");
}

QString scopeName(DatabaseScope scope)
{
    switch (scope) {
    case DatabaseScope::Public:
        return QStringLiteral("public");
    case DatabaseScope::Private:
        return QStringLiteral("private");
    case DatabaseScope::Shared:
        return QStringLiteral("shared");
    }
    return QStringLiteral("private");
}

// PostgreSQL has no NUL in a text. The character that stands for it is one that Unicode keeps out of texts.
constexpr QChar nul(u'\0');
constexpr QChar nulStandIn(u'\uFDD0');

// The value that was stored; invalid where the store holds something of another type.
QVariant loaded(FieldType type, const QVariant &value, RecordSql::DateTimeCache &times)
{
    const int id = value.typeId();
    // QPSQL gives whole numbers without a sign as unsigned ones.
    const bool whole = id == QMetaType::LongLong || id == QMetaType::ULongLong || id == QMetaType::Int;
    const bool fits = type == FieldType::Text     ? id == QMetaType::QString
                      : type == FieldType::Double ? whole || id == QMetaType::Double
                                                  : whole;
    if (value.isNull() || !fits)
        return {};
    switch (type) {
    case FieldType::Text: {
        QString text = value.toString();
        return text.contains(nulStandIn) ? QVariant(text.replace(nulStandIn, nul)) : value;
    }
    case FieldType::Double:
        return value.toDouble();
    case FieldType::DateTime: {
        QDateTime &time = times[value.toLongLong()];
        return time = time.isNull() ? QDateTime::fromMSecsSinceEpoch(value.toLongLong()) : time;
    }
    case FieldType::Boolean:
        return value.toLongLong() != 0;
    case FieldType::Integer:
        break;
    }
    return value.toLongLong();
}

// `count` times `piece`, with commas between.
QString repeated(const QString &piece, qsizetype count)
{
    return QStringList(count, piece).join(QLatin1String(", "));
}

} // namespace

QString quotedName(const QString &name)
{
    QString quoted = name;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

RecordSql::RecordSql(DatabaseScope scope, const RecordType &type)
    : m_type(type)
    , m_tableName(QStringLiteral("cloud_%1_%2").arg(scopeName(scope), type.name()))
    , m_table(quotedName(m_tableName))
{
    for (const RecordField &field : type.fields())
        m_columns += quotedName(field.key);
}

QStringList RecordSql::creation() const
{
    QString columns;
    for (const RecordField &field : m_type.fields())
        columns += quotedName(field.key) + QLatin1Char(' ') + columnType(field.type) + QLatin1String(", ");
    const QString key = m_type.indexedKey();
    return {QStringLiteral("CREATE TABLE %1 (\"recordName\" TEXT PRIMARY KEY, %2\"created\" BIGINT)")
                .arg(m_table, columns),
            QStringLiteral("CREATE INDEX %1 ON %2 (%3)")
                .arg(quotedName(m_tableName + QLatin1Char('_') + key), m_table, quotedName(key))};
}

QString RecordSql::upsert(qsizetype rows) const
{
    QString &made = m_upserts[rows];
    if (!made.isEmpty())
        return made;
    QStringList changes;
    for (const QString &column : m_columns)
        changes += QStringLiteral("%1 = excluded.%1").arg(column);
    const QString row = QStringLiteral("(%1)").arg(repeated(QStringLiteral("?"), m_columns.size() + 2));
    made = QStringLiteral("INSERT INTO %1 (\"recordName\", %2, \"created\") VALUES %3 "
                          "ON CONFLICT (\"recordName\") DO UPDATE SET %4")
               .arg(m_table, m_columns.join(QLatin1String(", ")), repeated(row, rows),
                    changes.join(QLatin1String(", ")));
    return made;
}

QString RecordSql::select(const QString &key, qsizetype values) const
{
    QString where;
    if (!key.isEmpty())
        where =
            QStringLiteral(" WHERE %1 IN (%2)").arg(quotedName(key), repeated(QStringLiteral("?"), values));
    return QStringLiteral("SELECT \"recordName\", %1 FROM %2%3 ORDER BY \"created\", \"recordName\"")
        .arg(m_columns.join(QLatin1String(", ")), m_table, where);
}

QString RecordSql::deletion(qsizetype rows) const
{
    return QStringLiteral("DELETE FROM %1 WHERE \"recordName\" IN (%2)")
        .arg(m_table, repeated(QStringLiteral("?"), rows));
}

QStringList RecordSql::rightsCheck() const
{
    return {QStringLiteral("INSERT INTO %1 (\"recordName\") SELECT \"recordName\" FROM %1 WHERE 1 = 0")
                .arg(m_table),
            QStringLiteral("UPDATE %1 SET \"recordName\" = \"recordName\" WHERE 1 = 0").arg(m_table),
            QStringLiteral("DELETE FROM %1 WHERE 1 = 0").arg(m_table)};
}

void RecordSql::appendRow(QVariantList &values, const CloudRecord &record, qint64 createdAt) const
{
    values += stored(FieldType::Text, record.recordName());
    for (qsizetype field = 0; field < m_type.fields().size(); ++field)
        values += stored(m_type.fields().at(field).type, record.value(field));
    values += createdAt;
}

QVariant RecordSql::stored(FieldType type, const QVariant &value)
{
    if (!value.isValid())
        return value;
    switch (type) {
    case FieldType::Text: {
        QString text = value.toString();
        if (text.isNull()) // which Qt would write as no value at all
            return QStringLiteral("");
        return text.contains(nul) ? QVariant(text.replace(nul, nulStandIn)) : value;
    }
    case FieldType::DateTime: {
        const QDateTime time = value.toDateTime();
        return time.isNull() ? QVariant() : time.toMSecsSinceEpoch();
    }
    case FieldType::Boolean:
        return value.toBool() ? 1 : 0;
    case FieldType::Integer:
    case FieldType::Double:
        break;
    }
    return value;
}

CloudRecord RecordSql::record(const QSqlQuery &row, DateTimeCache &times) const
{
    CloudRecord found(m_type, loaded(FieldType::Text, row.value(0), times).toString());
    for (int field = 0; field < m_type.fields().size(); ++field)
        found.setValue(field, loaded(m_type.fields().at(field).type, row.value(field + 1), times));
    return found;
}

} // namespace oblino
