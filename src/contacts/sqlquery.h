#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace oblino {

/// Runs one statement with its values bound in order.
[[nodiscard]] inline QSqlQuery execute(const QSqlDatabase &database, const QString &statement,
                                       const QVariantList &values = {})
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (query.prepare(statement)) {
        for (const QVariant &value : values)
            query.addBindValue(value);
        query.exec();
    }
    return query;
}

/// Why a query failed, in the words of the database; empty when it did not.
[[nodiscard]] inline QString errorMessage(const QSqlQuery &query)
{
    const QSqlError error = query.lastError();
    return error.databaseText().isEmpty() ? error.text() : error.databaseText();
}

} // namespace oblino
