#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QUuid>

namespace oblino {

/// Another program that has the contacts' store open.
class OtherProgram
{
public:
    explicit OtherProgram(const QString &folder)
    {
        m_database.setDatabaseName(folder + QStringLiteral("/Model.sqlite"));
        m_database.open();
    }
    ~OtherProgram()
    {
        const QString connection = m_database.connectionName();
        m_database = {};
        QSqlDatabase::removeDatabase(connection);
    }
    Q_DISABLE_COPY_MOVE(OtherProgram)

    /// The first value of each row that a statement gives, or the error.
    QStringList run(const QString &statement) const // NOLINT(modernize-use-nodiscard)
    {
        QSqlQuery query(statement, m_database);
        QStringList values;
        while (query.next())
            values += query.value(0).toString();
        return query.lastError().isValid() ? QStringList(query.lastError().text()) : values;
    }

private:
    QSqlDatabase m_database =
        QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QUuid::createUuid().toString());
};

} // namespace oblino
