#pragma once

#include <support/test.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace oblino {

/// Lets another program, which keeps the contacts' store in that folder open, run a statement.
/// @return the first value of each row that it gives, or the error
inline QStringList runElsewhere(const QString &folder, const QString &statement)
{
    QSqlDatabase database = QSqlDatabase::database(folder, false);
    if (!database.isValid()) {
        database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), folder);
        database.setDatabaseName(folder + QStringLiteral("/Model.sqlite"));
        database.open();
    }
    QSqlQuery query(statement, database);
    QStringList values;
    while (query.next())
        values += query.value(0).toString();
    return query.lastError().isValid() ? QStringList(query.lastError().text()) : values;
}

} // namespace oblino
