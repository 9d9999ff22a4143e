#include <contacts/sqlcalls.h>

#include <QSqlError>

namespace oblino {

SqlCall::SqlCall(const QSqlDatabase &database, const QString &statement, const QVariantList &values)
    : m_query(database)
    , m_done(false)
{
    m_query.setForwardOnly(true);
    if (!m_query.prepare(statement))
        return;
    for (const QVariant &value : values)
        m_query.addBindValue(value);
    m_done = m_query.exec();
}

QString SqlCall::error() const
{
    const QSqlError error = m_query.lastError();
    if (m_done && !error.isValid())
        return {};
    return error.databaseText().isEmpty() ? error.text() : error.databaseText();
}

QVariant SqlCall::onlyValue()
{
    return m_query.next() ? m_query.value(0) : QVariant();
}

// Not in double quotes, where SQLite takes a name that it does not know for a text.
QString sqlName(const QString &name)
{
    QString quoted = name;
    quoted.replace(QLatin1Char('`'), QLatin1String("``"));
    return QLatin1Char('`') + quoted + QLatin1Char('`');
}

QString sqlNames(const QStringList &names)
{
    QStringList quoted;
    for (const QString &name : names)
        quoted += sqlName(name);
    return quoted.join(QLatin1String(", "));
}

} // namespace oblino
