#pragma once

#include <records/cloudaccount.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

#include <stdexcept>

namespace oblino {

/// A way past the containers to what they keep. Its functions throw std::runtime_error.
class SecondConnection
{
public:
    explicit SecondConnection(const StoreLocation &place)
        : m_database(QSqlDatabase::addDatabase(place.account.isRemote() ? QStringLiteral("QPSQL")
                                                                        : QStringLiteral("QSQLITE"),
                                               QUuid::createUuid().toString()))
    {
        const CloudAccount &account = place.account;
        m_database.setHostName(account.host);
        m_database.setPort(account.port);
        m_database.setDatabaseName(account.isRemote() ? account.database : place.file);
        m_database.setUserName(account.user);
        m_database.setPassword(place.password);
        if (!m_database.open())
            throw std::runtime_error(m_database.lastError().text().toStdString());
    }
    SecondConnection(const SecondConnection &) = delete;
    SecondConnection &operator=(const SecondConnection &) = delete;
    ~SecondConnection()
    {
        const QString name = m_database.connectionName();
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
    }

    /// Runs a statement. @return the first value that it gives
    QVariant run(const QString &statement)
    {
        QSqlQuery query(m_database);
        if (!query.exec(statement))
            throw std::runtime_error(query.lastError().text().toStdString());
        return query.next() ? query.value(0) : QVariant();
    }

private:
    QSqlDatabase m_database;
};

/// Runs a statement on a connection of its own. @return the first value that it gives
inline QVariant runAt(const StoreLocation &place, const QString &statement)
{
    return SecondConnection(place).run(statement);
}

} // namespace oblino
