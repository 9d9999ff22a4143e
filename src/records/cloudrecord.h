#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QVariant>

#include <optional>

namespace oblino {

/// What a field of a record holds: QString, QDateTime, qint64, bool or double.
enum class FieldType { Text, DateTime, Integer, Boolean, Double };

struct RecordField
{
    QString key;
    FieldType type;
};

/// A kind of record: its fields in order. Types live as long as the program.
class RecordType
{
public:
    /// @param indexedKey  the field by which records are looked up
    RecordType(QString name, QList<RecordField> fields, QString indexedKey);
    RecordType(const RecordType &) = delete;
    RecordType &operator=(const RecordType &) = delete;

    [[nodiscard]] const QString &name() const { return m_name; }
    [[nodiscard]] const QList<RecordField> &fields() const { return m_fields; }
    [[nodiscard]] const QString &indexedKey() const { return m_indexedKey; }
    /// The position of a field, -1 where there is none of that key.
    [[nodiscard]] qsizetype indexOf(const QString &key) const { return m_positions.value(key, -1); }

private:
    QString m_name;
    QList<RecordField> m_fields;
    QString m_indexedKey;
    QHash<QString, qsizetype> m_positions;
};

/// What tells one record of a database from all others.
struct RecordID
{
    const RecordType *recordType;
    QString recordName;
};

/// A record: a name and a value for each field of its type. A value that was never set, or that the store
/// holds in another type than the field's, is invalid.
class CloudRecord
{
public:
    CloudRecord(const RecordType &recordType, QString recordName);

    [[nodiscard]] const RecordType &recordType() const { return *m_recordType; }
    [[nodiscard]] const QString &recordName() const { return m_recordName; }
    [[nodiscard]] RecordID recordID() const { return {m_recordType, m_recordName}; }

    [[nodiscard]] QVariant value(const QString &key) const;
    [[nodiscard]] const QVariant &value(qsizetype field) const { return m_values.at(field); }
    /// Does nothing where the type has no such field.
    void setValue(const QString &key, const QVariant &value);
    void setValue(qsizetype field, QVariant value) { m_values[field] = std::move(value); }

private:
    const RecordType *m_recordType;
    QString m_recordName;
    QList<QVariant> m_values;
};

/// The trace form of a record: its type, its name and its fields.
void appendTrace(QByteArray &line, const CloudRecord &record);

/// Which records a query asks for.
struct RecordPredicate
{
    QString key;    ///< the field that is compared; empty for all records
    QVariant value; ///< what it equals

    [[nodiscard]] static RecordPredicate all() { return {}; }
    [[nodiscard]] static RecordPredicate equals(const QString &key, const QVariant &value)
    {
        return {key, value};
    }
};

struct RecordQuery
{
    const RecordType *recordType;
    RecordPredicate predicate;
};

struct RecordZone
{
    QString zoneName;
};

/// Somebody who can be found by phone number.
struct UserIdentity
{
    QString phoneNumber;
    QString name;
};

void appendTrace(QByteArray &line, const UserIdentity &identity);

} // namespace oblino
