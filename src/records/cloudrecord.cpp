#include <records/cloudrecord.h>

#include <base/trace.h>

#include <QDateTime>

#include <utility>

namespace oblino {

namespace {

void appendValue(QByteArray &line, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Double:
        return appendTrace(line, value.toDouble());
    case QMetaType::QDateTime:
        return appendTrace(line, value.toDateTime());
    case QMetaType::Bool: // stored as a number
        return appendTrace(line, value.toBool() ? 1 : 0);
    case QMetaType::UnknownType:
        return appendTrace(line, "none");
    default:
        break;
    }
    QString text = value.toString();
    appendTrace(line,
                QStringView(text.replace(QLatin1Char('\n'), QLatin1String("\\n")))); // one line a record
}

} // namespace

RecordType::RecordType(QString name, QList<RecordField> fields, QString indexedKey)
    : m_name(std::move(name))
    , m_fields(std::move(fields))
    , m_indexedKey(std::move(indexedKey))
{
    for (const RecordField &field : std::as_const(m_fields))
        m_positions.insert(field.key, m_positions.size());
}

CloudRecord::CloudRecord(const RecordType &recordType, QString recordName)
    : m_recordType(&recordType)
    , m_recordName(std::move(recordName))
    , m_values(recordType.fields().size())
{
}

QVariant CloudRecord::value(const QString &key) const
{
    return m_values.value(m_recordType->indexOf(key));
}

void CloudRecord::setValue(const QString &key, const QVariant &value)
{
    if (const qsizetype field = m_recordType->indexOf(key); field >= 0)
        m_values[field] = value;
}

void appendTrace(QByteArray &line, const CloudRecord &record)
{
    appendTrace(line, QStringView(record.recordType().name()));
    line += ' ';
    appendTrace(line, QStringView(record.recordName()));
    line += " {";
    const QList<RecordField> &fields = record.recordType().fields();
    for (qsizetype i = 0; i < fields.size(); ++i) {
        line += i == 0 ? "" : ", ";
        appendTrace(line, QStringView(fields.at(i).key));
        line += ": ";
        appendValue(line, record.value(i));
    }
    line += '}';
}

void appendTrace(QByteArray &line, const UserIdentity &identity)
{
    appendTrace(line, QStringView(identity.name));
    line += ' ';
    appendTrace(line, QStringView(identity.phoneNumber));
}

} // namespace oblino
