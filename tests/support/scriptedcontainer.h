#pragma once

#include <platform/cloud/cloudcontainer.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace oblino {

/// A container in front of another one, which answers as a test says.
class ScriptedContainer : public CloudContainer
{
public:
    enum class Request { Save, Query, Delete, Status };
    enum class Fate { Pass, Fail, Nothing, Drop, Hold };

    explicit ScriptedContainer(CloudContainer &inner)
        : m_inner(inner)
    {
    }

    using Script = std::function<Fate(Request request, int number)>;

    /// What becomes of the n-th request of a kind, counted from 0. Called on any thread.
    void setScript(const Script &script)
    {
        const std::lock_guard lock(m_mutex);
        m_script = script;
    }
    std::atomic<AccountStatus> status = AccountStatus::Available;

    /// Passes on what was held.
    void release()
    {
        std::vector<std::function<void()>> held;
        {
            const std::lock_guard lock(m_mutex);
            held.swap(m_held);
        }
        for (const auto &request : held)
            request();
    }

    [[nodiscard]] QString description() const override { return m_inner.description(); }
    [[nodiscard]] CloudDatabase &database(DatabaseScope scope) override
    {
        std::unique_ptr<Database> &made = m_databases[scope];
        if (!made)
            made = std::make_unique<Database>(*this, m_inner.database(scope));
        return *made;
    }

    void accountStatus(StatusHandler handler) override
    {
        decide(
            Request::Status,
            [this, handler] {
                m_inner.accountStatus([this, handler](AccountStatus, const auto &) { handler(status, {}); });
            },
            [this, handler](const auto &error) {
                m_inner.accountStatus([=](AccountStatus found, const auto &) { handler(found, error); });
            });
    }

    void discoverUserIdentity(const QString &phoneNumber, IdentityHandler handler) override
    {
        m_inner.discoverUserIdentity(phoneNumber, std::move(handler));
    }

private:
    using Error = std::optional<CloudError>;

    // `refuse` answers with the error that it is given, on a thread of the service.
    void decide(Request request, std::function<void()> pass, const std::function<void(const Error &)> &refuse)
    {
        Fate fate;
        {
            const std::lock_guard lock(m_mutex);
            fate = m_script(request, m_counts[request]++);
            if (fate == Fate::Hold)
                m_held.push_back(pass);
        }
        if (fate == Fate::Pass)
            pass();
        else if (fate == Fate::Fail)
            refuse(CloudError{CloudError::Code::Other, QStringLiteral("scripted")});
        else if (fate == Fate::Nothing)
            refuse(std::nullopt);
    }

    class Database : public CloudDatabase
    {
    public:
        Database(ScriptedContainer &container, CloudDatabase &inner)
            : m_container(container)
            , m_inner(inner)
        {
        }

        void saveRecord(const CloudRecord &record, RecordHandler handler) override
        {
            m_container.decide(
                Request::Save, [=, this] { m_inner.saveRecord(record, handler); },
                [=, this](const Error &error) { later([=] { handler({}, error); }); });
        }
        void performQuery(const RecordQuery &query, QueryHandler handler) override
        {
            m_container.decide(
                Request::Query, [=, this] { m_inner.performQuery(query, handler); },
                [=, this](const Error &error) { later([=] { handler({}, error); }); });
        }
        void deleteRecord(const RecordID &record, DeletionHandler handler) override
        {
            m_container.decide(
                Request::Delete, [=, this] { m_inner.deleteRecord(record, handler); },
                [=, this](const Error &error) { later([=] { handler(error); }); });
        }
        void saveRecordZone(const RecordZone &zone, ZoneHandler handler) override
        {
            m_inner.saveRecordZone(zone, std::move(handler));
        }

    private:
        void later(const std::function<void()> &answer)
        {
            m_container.m_inner.accountStatus([answer](AccountStatus, const auto &) { answer(); });
        }

        ScriptedContainer &m_container;
        CloudDatabase &m_inner;
    };

    CloudContainer &m_inner;
    std::mutex m_mutex;
    Script m_script = [](Request, int) { return Fate::Pass; };
    std::map<Request, int> m_counts;
    std::vector<std::function<void()>> m_held;
    std::map<DatabaseScope, std::unique_ptr<Database>> m_databases;
};

} // namespace oblino
