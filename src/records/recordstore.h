#pragma once

#include <records/cloudaccount.h>
#include <records/recordsql.h>

#include <QHash>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace oblino {

/// Where cloud records lie: on the server of an account, or in a file of this machine.
struct StoreLocation
{
    QString file; ///< for an account without a host; its folder is made (0700) when it is missing
    CloudAccount account = {};
    QString password = {};

    /// For people: the file, or user, host and database.
    [[nodiscard]] QString description() const;
};

/// The connection to the place of the records, and the work on it in plain SQL. It belongs to the thread that
/// opens it. Functions answer an error, or nothing when they succeeded.
class RecordStore
{
public:
    using Error = std::optional<CloudError>;
    enum class Access { Read, Write };

    /// @param cancelled  ends a wait for the server early once it is true
    RecordStore(StoreLocation place, const std::atomic<bool> &cancelled);
    RecordStore(const RecordStore &) = delete;
    RecordStore &operator=(const RecordStore &) = delete;
    ~RecordStore();

    /// Opens the connection unless it is open. A new file is readable for its owner alone.
    [[nodiscard]] Error open();
    void close();
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] const StoreLocation &place() const { return m_place; }
    /// A copy of the descriptor of the connection to a server, which is the caller's; -1 without one.
    [[nodiscard]] int duplicateSocket() const;

    /// Makes the table of a type where it is missing. Not within a transaction.
    [[nodiscard]] Error prepare(const RecordSql &sql);
    /// Tries the rights that the tables need which this store has seen.
    [[nodiscard]] Error checkRights();

    [[nodiscard]] Error begin(Access access);
    [[nodiscard]] Error commit();
    void rollBack();
    /// Runs a statement that gives no rows, or whose rows do not matter.
    [[nodiscard]] Error run(const QString &statement, const QVariantList &values = {});
    /// Runs a statement and hands over each row.
    template<typename OnRow>
    [[nodiscard]] Error select(const QString &statement, const QVariantList &values, OnRow onRow)
    {
        auto [query, error] = execute(statement, values);
        if (error)
            return error;
        while (query->next())
            onRow(std::as_const(*query));
        if (const QSqlError &last = query->lastError(); last.isValid()) // it broke off midway
            error = errorOf(last);
        query->finish();
        return error;
    }

    /// Whether the last error was one by which a server asks for the transaction to be tried again.
    [[nodiscard]] bool shouldTryAgain() const { return m_shouldTryAgain; }
    /// A number for the next record that is made, higher than those before: microseconds since 1970 UTC.
    [[nodiscard]] qint64 nextCreated();

private:
    struct Execution
    {
        QSqlQuery *query; // null where it could not be prepared
        Error error;
    };

    [[nodiscard]] Error openFile();
    [[nodiscard]] Error openServer();
    [[nodiscard]] bool hasTable(const QString &name) const;
    [[nodiscard]] Error create(const RecordSql &sql, bool withVersions);
    [[nodiscard]] Error checkVersion(const RecordSql &sql);
    [[nodiscard]] Execution execute(const QString &statement, const QVariantList &values);
    [[nodiscard]] Error errorOf(const QSqlError &error);

    StoreLocation m_place;
    const std::atomic<bool> &m_cancelled;
    QString m_connection; // its name
    std::map<QString, QSqlQuery> m_prepared;
    QHash<QString, QStringList> m_rightsChecks; // by table
    bool m_shouldTryAgain = false;
    bool m_hasStalePlans = false;
    qint64 m_lastCreated = 0;
};

} // namespace oblino
