#include <records/recordsql.h>

#include <QDateTime>

namespace oblino {

namespace {

const QString recordName = QStringLiteral("recordName");
const QString created = QStringLiteral("created");

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

QDateTime momentOf(qint64 milliseconds, RecordSql::DateTimeCache &moments)
{
    const auto known = moments.constFind(milliseconds);
    return known != moments.cend()
               ? *known
               : *moments.insert(milliseconds, QDateTime::fromMSecsSinceEpoch(milliseconds));
}

} // namespace

QString quotedName(const QString &name)
{
    QString quoted = name;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString repeated(const QString &piece, qsizetype count)
{
    return QStringList(count, piece).join(QLatin1String(", "));
}

RecordSql::RecordSql(DatabaseScope scope, const RecordType &type)
    : m_type(type)
    , m_tableName(QStringLiteral("cloud_%1_%2").arg(scopeName(scope), type.name()))
    , m_table(quotedName(m_tableName))
    , m_columns(quotedName(recordName))
{
    for (const RecordField &field : type.fields())
        m_columns += QLatin1String(", ") + quotedName(field.key);
}

QStringList RecordSql::creation() const
{
    QString columns = quotedName(recordName) + QLatin1String(" TEXT PRIMARY KEY");
    for (const RecordField &field : m_type.fields())
        columns += QLatin1String(", ") + quotedName(field.key) + QLatin1Char(' ') + columnType(field.type);
    columns += QLatin1String(", ") + quotedName(created) + QLatin1String(" BIGINT");
    const QString key = m_type.indexedKey();
    return {QStringLiteral("CREATE TABLE %1 (%2)").arg(m_table, columns),
            QStringLiteral("CREATE INDEX %1 ON %2 (%3)")
                .arg(quotedName(m_tableName + QLatin1Char('_') + key), m_table, quotedName(key))};
}

QString RecordSql::upsert(qsizetype rows) const
{
    QString &made = m_upserts[rows];
    if (!made.isEmpty())
        return made;
    QStringList changes;
    for (const RecordField &field : m_type.fields())
        changes += QStringLiteral("%1 = excluded.%1").arg(quotedName(field.key));
    const QString row =
        QLatin1Char('(') + repeated(QStringLiteral("?"), m_type.fields().size() + 2) + QLatin1Char(')');
    made = QStringLiteral("INSERT INTO %1 (%2, %3) VALUES %4 ON CONFLICT (%5) DO UPDATE SET %6")
               .arg(m_table, m_columns, quotedName(created), repeated(row, rows), quotedName(recordName),
                    changes.join(QLatin1String(", ")));
    return made;
}

QString RecordSql::select(const QString &key, qsizetype values) const
{
    QString where;
    if (!key.isEmpty())
        where =
            QStringLiteral(" WHERE %1 IN (%2)").arg(quotedName(key), repeated(QStringLiteral("?"), values));
    return QStringLiteral("SELECT %1 FROM %2%3 ORDER BY %4, %5")
        .arg(m_columns, m_table, where, quotedName(created), quotedName(recordName));
}

QString RecordSql::deletion(qsizetype rows) const
{
    return QStringLiteral("DELETE FROM %1 WHERE %2 IN (%3)")
        .arg(m_table, quotedName(recordName), repeated(QStringLiteral("?"), rows));
}

QStringList RecordSql::rightsCheck() const
{
    const QString name = quotedName(recordName);
    return {QStringLiteral("INSERT INTO %1 (%2) SELECT %2 FROM %1 WHERE 1 = 0").arg(m_table, name),
            QStringLiteral("UPDATE %1 SET %2 = %2 WHERE 1 = 0").arg(m_table, name),
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

QVariant RecordSql::loaded(FieldType type, const QVariant &value, DateTimeCache &moments)
{
    const int held = value.typeId();
    // QPSQL gives whole numbers without a sign as unsigned ones.
    const bool whole = held == QMetaType::LongLong || held == QMetaType::ULongLong || held == QMetaType::Int;
    const bool fits = type == FieldType::Text     ? held == QMetaType::QString
                      : type == FieldType::Double ? whole || held == QMetaType::Double
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
    case FieldType::DateTime:
        return momentOf(value.toLongLong(), moments);
    case FieldType::Boolean:
        return value.toLongLong() != 0;
    case FieldType::Integer:
        break;
    }
    return value.toLongLong();
}

} // namespace oblino
