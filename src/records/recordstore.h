#pragma once

#include <records/cloudaccount.h>
#include <records/cloudrequest.h>
#include <records/recordsql.h>

#include <QSqlQuery>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>

class QSqlError;

namespace oblino {

/// The connection to the location of the records, and the work on it in plain SQL. It belongs to the thread
/// that opens it. What fails throws a CloudError.
class RecordStore
{
public:
    enum class Access { Read, Write };

    /// @param timeout    what a server is given for the work on a batch; a sign-in half of that, another
    ///                   program that has locked the file a quarter
    /// @param cancelled  ends the work early once it is true
    RecordStore(StoreLocation location, std::chrono::milliseconds timeout,
                const std::atomic<bool> &cancelled);
    RecordStore(const RecordStore &) = delete;
    RecordStore &operator=(const RecordStore &) = delete;
    ~RecordStore();

    /// Opens the connection unless it is open. A new file is readable for its owner alone.
    void open();
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] const StoreLocation &location() const { return m_location; }
    [[nodiscard]] std::chrono::milliseconds timeout() const { return m_timeout; }
    [[nodiscard]] const std::atomic<bool> &cancelled() const { return m_cancelled; }
    /// A copy of the descriptor of the connection to a server, which is the caller's; -1 without one.
    [[nodiscard]] int duplicateSocket() const;

    /// A table, which is made where it is missing. Not the first time within a transaction.
    [[nodiscard]] const RecordSql &table(const RecordTable &table);
    /// Tries the rights that the tables need which this store has seen.
    void checkRights();

    /// Does the work again where a server asks for that.
    void inTransaction(Access access, const std::function<void()> &work);
    /// Runs a statement that gives no rows, or whose rows do not matter.
    void run(const QString &statement, const QVariantList &values = {});
    /// Runs a statement and hands over each row.
    void select(const QString &statement, const QVariantList &values,
                const std::function<void(const QSqlQuery &row)> &onRow);

    /// A number for the next record that is made, higher than those before: microseconds since 1970 UTC.
    [[nodiscard]] qint64 nextCreated();

private:
    void openFile();
    void openServer();
    void close();
    [[nodiscard]] bool hasTable(const QString &name);
    void create(const RecordSql &sql, bool withVersions);
    void checkVersion(const RecordSql &sql);
    [[nodiscard]] QSqlQuery &execute(const QString &statement, const QVariantList &values);
    [[nodiscard]] CloudError errorOf(const QSqlError &error);

    StoreLocation m_location;
    std::chrono::milliseconds m_timeout;
    const std::atomic<bool> &m_cancelled;
    QString m_connection; // its name
    std::map<QString, QSqlQuery> m_prepared;
    std::map<RecordTable, RecordSql> m_tables;
    bool m_shouldTryAgain = false; // the last error was one by which a server asks for that
    bool m_hasStalePlans = false;
    qint64 m_lastCreated = 0;
};

} // namespace oblino
