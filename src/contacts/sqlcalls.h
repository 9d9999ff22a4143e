#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

namespace oblino {

/// One SQL statement, run with its values bound in order.
class SqlCall
{
public:
    SqlCall(const QSqlDatabase &database, const QString &statement, const QVariantList &values = {});

    /// Why it failed, in the words of the database; empty when it did not.
    [[nodiscard]] QString error() const;

    [[nodiscard]] bool next() { return m_query.next(); }
    [[nodiscard]] QVariant value(int column) const { return m_query.value(column); }
    /// The first value of the first row.
    [[nodiscard]] QVariant onlyValue();
    [[nodiscard]] QVariant insertedKey() const { return m_query.lastInsertId(); }

private:
    QSqlQuery m_query;
    bool m_done;
};

/// The name as it stands in a statement, whatever characters it has.
[[nodiscard]] QString sqlName(const QString &name);
[[nodiscard]] QString sqlNames(const QStringList &names);

} // namespace oblino
