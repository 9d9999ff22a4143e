#pragma once

#include <records/cloudrequest.h>
#include <records/recordstore.h>

#include <atomic>
#include <map>
#include <span>
#include <utility>
#include <vector>

namespace oblino {

/// Carries out requests that wait together: in one transaction, and neighbours of one kind in one statement.
/// A request that cannot be done spoils no other.
class RequestBatch
{
public:
    /// @param types      what an account must be able to keep in its private database
    /// @param cancelled  ends the work early once it is true
    RequestBatch(RecordStore &store, const QList<const RecordType *> &types,
                 const std::atomic<bool> &cancelled);

    /// Sets the error and the results of every request. The store is open.
    void process(std::span<CloudRequest> requests);

private:
    using Error = RecordStore::Error;

    void prepare(std::span<CloudRequest> requests);
    void processPrepared(std::span<CloudRequest> requests);
    [[nodiscard]] Error checkAccount();
    [[nodiscard]] Error inOneTransaction(std::span<CloudRequest> requests);
    [[nodiscard]] Error run(std::span<CloudRequest> requests);
    [[nodiscard]] Error runTogether(std::span<CloudRequest> requests);
    [[nodiscard]] Error save(std::span<CloudRequest> requests);
    [[nodiscard]] Error query(std::span<CloudRequest> requests);
    [[nodiscard]] Error remove(std::span<CloudRequest> requests);
    [[nodiscard]] Error saveZone(const ZoneRequest &request);
    [[nodiscard]] Error discover(DiscoveryRequest &request);
    [[nodiscard]] const RecordSql &sql(DatabaseScope scope, const RecordType &type);

    RecordStore &m_store;
    QList<const RecordType *> m_types;
    const std::atomic<bool> &m_cancelled;
    std::map<std::pair<DatabaseScope, const RecordType *>, RecordSql> m_sql;
};

} // namespace oblino
