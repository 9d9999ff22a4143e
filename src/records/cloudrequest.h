#pragma once

#include <records/cloudcontainer.h>

#include <QList>

#include <memory>
#include <optional>
#include <span>
#include <utility>

namespace oblino {

class RecordStore;

/// A record type in one database of a container.
using RecordTable = std::pair<DatabaseScope, const RecordType *>;

/// What was asked of a container, and what has come of it so far.
class CloudRequest
{
public:
    using Pointer = std::unique_ptr<CloudRequest>;
    using Run = std::span<const Pointer>;

    explicit CloudRequest(const RecordTable &table)
        : m_table(table)
    {
    }
    CloudRequest(const CloudRequest &) = delete;
    CloudRequest &operator=(const CloudRequest &) = delete;
    virtual ~CloudRequest() = default;

    [[nodiscard]] const RecordTable &table() const { return m_table; }
    [[nodiscard]] virtual bool isWriting() const { return false; }
    /// Makes what it needs in the store. Not within a transaction. Throws CloudError.
    virtual void prepare(RecordStore &store) const;
    /// Whether one statement can process this one along with the requests before it.
    [[nodiscard]] virtual bool joins(Run) const { return false; }
    /// Processes the requests that joined this one, the first of them. Throws CloudError.
    virtual void process(RecordStore &store, Run run) = 0;
    /// Calls its handler.
    virtual void answer() const = 0;

    std::optional<CloudError> error;
    int generation = 0; ///< of the container's location for which it was made

private:
    RecordTable m_table;
};

class SaveRequest : public CloudRequest
{
public:
    SaveRequest(DatabaseScope scope, const CloudRecord &record, CloudDatabase::RecordHandler handler);
    [[nodiscard]] bool isWriting() const override { return true; }
    [[nodiscard]] bool joins(Run run) const override;
    void process(RecordStore &store, Run run) override;
    void answer() const override;

private:
    CloudRecord m_record;
    CloudDatabase::RecordHandler m_handler;
};

class QueryRequest : public CloudRequest
{
public:
    QueryRequest(DatabaseScope scope, const RecordQuery &query, CloudDatabase::QueryHandler handler);
    [[nodiscard]] bool joins(Run run) const override;
    void process(RecordStore &store, Run run) override;
    void answer() const override;

private:
    [[nodiscard]] QString searchKey() const;

    RecordPredicate m_predicate;
    CloudDatabase::QueryHandler m_handler;
    QList<CloudRecord> m_found;
};

class DeletionRequest : public CloudRequest
{
public:
    DeletionRequest(DatabaseScope scope, const RecordID &record, CloudDatabase::DeletionHandler handler);
    [[nodiscard]] bool isWriting() const override { return true; }
    [[nodiscard]] bool joins(Run run) const override;
    void process(RecordStore &store, Run run) override;
    void answer() const override;

private:
    QString m_recordName;
    CloudDatabase::DeletionHandler m_handler;
};

class StatusRequest : public CloudRequest
{
public:
    /// @param types  what the account must be able to keep in its private database
    StatusRequest(const QList<const RecordType *> &types, CloudContainer::StatusHandler handler);
    void prepare(RecordStore &store) const override;
    void process(RecordStore &, Run) override {} // prepare() has told
    void answer() const override;

private:
    QList<const RecordType *> m_types;
    CloudContainer::StatusHandler m_handler;
};

} // namespace oblino
