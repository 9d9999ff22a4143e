#pragma once

#include <records/cloudcontainer.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace oblino {

/// A container in front of another one, which answers as a test says. It is its own private database.
class ScriptedContainer : public CloudContainer, public CloudDatabase
{
public:
    enum class Request { Save, Query, Delete, Status };
    enum class Fate { Pass, Fail, Drop, Hold };
    using Script = std::function<Fate(Request request, int number)>;

    explicit ScriptedContainer(CloudContainer &inner)
        : m_inner(inner)
    {
    }

    /// What becomes of the n-th request of a kind, counted from 0. Called on any thread.
    void setScript(const Script &script)
    {
        const std::lock_guard lock(m_mutex);
        m_script = script;
    }
    /// One fate for all requests of a kind.
    void setFate(Request request, Fate fate)
    {
        setScript([=](Request asked, int) { return asked == request ? fate : Fate::Pass; });
    }
    /// Passes on what was held.
    void release()
    {
        const std::lock_guard lock(m_mutex);
        for (const auto &request : std::exchange(m_held, {}))
            request();
    }

    std::atomic<AccountStatus> status = AccountStatus::Available;

    [[nodiscard]] QString description() const override { return m_inner.description(); }
    [[nodiscard]] CloudDatabase &database(DatabaseScope) override { return *this; }
    void accountStatus(StatusHandler handler) override
    {
        decide(
            Request::Status,
            [=, this] {
                m_inner.accountStatus(
                    [=, this](auto, const auto &, const auto &) { handler(status, {}, {}); });
            },
            [=, this](const CloudError &error) { handler(status, error, {}); });
    }
    void discoverUserIdentity(const QString &phoneNumber, IdentityHandler handler) override
    {
        m_inner.discoverUserIdentity(phoneNumber, std::move(handler));
    }

    void saveRecord(const CloudRecord &record, RecordHandler handler) override
    {
        decide(
            Request::Save, [=, this] { m_inner.privateCloudDatabase().saveRecord(record, handler); },
            [=](const CloudError &error) { handler({}, error); });
    }
    void performQuery(const RecordQuery &query, QueryHandler handler) override
    {
        decide(
            Request::Query, [=, this] { m_inner.privateCloudDatabase().performQuery(query, handler); },
            [=](const CloudError &error) { handler({}, error); });
    }
    void deleteRecord(const RecordID &record, DeletionHandler handler) override
    {
        decide(
            Request::Delete, [=, this] { m_inner.privateCloudDatabase().deleteRecord(record, handler); },
            [=](const CloudError &error) { handler(error); });
    }
    void saveRecordZone(const RecordZone &zone, ZoneHandler handler) override
    {
        m_inner.privateCloudDatabase().saveRecordZone(zone, std::move(handler));
    }

private:
    void decide(Request request, const std::function<void()> &pass,
                const std::function<void(const CloudError &)> &refuse)
    {
        const std::lock_guard lock(m_mutex);
        const Fate fate = m_script(request, m_counts[request]++);
        if (fate == Fate::Pass)
            pass();
        else if (fate == Fate::Hold)
            m_held.push_back(pass);
        else if (fate == Fate::Fail) // on a thread of the service
            m_inner.accountStatus([refuse](auto, const auto &, const auto &) {
                refuse({CloudError::Code::Other, QStringLiteral("scripted")});
            });
    }

    CloudContainer &m_inner;
    std::mutex m_mutex;
    Script m_script = [](Request, int) { return Fate::Pass; };
    std::map<Request, int> m_counts;
    std::vector<std::function<void()>> m_held;
};

} // namespace oblino
