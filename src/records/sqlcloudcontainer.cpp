#include <records/sqlcloudcontainer.h>

#include <records/recordstore.h>
#include <records/requestbatch.h>

#include <QCoreApplication>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace oblino {

using namespace std::chrono_literals;

namespace {

using Requests = std::vector<CloudRequest::Pointer>;

constexpr std::size_t largestBatch = 4096; // requests in one transaction
constexpr auto drainTimeout = 700ms;       // at the end, for what waits
constexpr auto shutdownTimeout = 1500ms;   // and then for what is under way

const RecordType zoneType(QStringLiteral("Zone"), {{QStringLiteral("zoneName"), FieldType::Text}},
                          QStringLiteral("zoneName"));
const RecordType identityType(QStringLiteral("UserIdentity"),
                              {{QStringLiteral("phoneNumber"), FieldType::Text},
                               {QStringLiteral("name"), FieldType::Text}},
                              QStringLiteral("phoneNumber"));

} // namespace

// What the container and its thread share.
struct SqlCloudContainer::Service
{
    Service(const StoreLocation &where, std::chrono::milliseconds limit)
        : location(where)
        , timeout(limit)
    {
    }

    void add(CloudRequest::Pointer request);
    void setLocation(const StoreLocation &to);
    void run();
    [[nodiscard]] StoreLocation currentLocation();
    void processAt(const StoreLocation &opened);
    [[nodiscard]] Requests takeBatch();
    void process(Requests requests, bool isOutdated, RecordStore &store);

    std::mutex mutex;
    std::condition_variable changed;
    Requests waiting;
    StoreLocation location;
    int generation = 0; // of the location, whatever the password
    int answering = 0;  // the generation of the request whose handler the thread calls
    std::thread::id thread = {};
    std::function<void(const StoreLocation &used)> onLoginRefused = [](const StoreLocation &) {};
    bool isWorking = false;
    bool hasEnded = false;
    std::atomic<bool> stopping = false;
    const std::chrono::milliseconds timeout;
};

class SqlCloudContainer::Database : public CloudDatabase
{
public:
    Database(DatabaseScope scope, Service &service)
        : m_scope(scope)
        , m_service(service)
    {
    }

    void saveRecord(const CloudRecord &record, RecordHandler handler) override
    {
        m_service.add(std::make_unique<SaveRequest>(m_scope, record, std::move(handler)));
    }
    void performQuery(const RecordQuery &query, QueryHandler handler) override
    {
        m_service.add(std::make_unique<QueryRequest>(m_scope, query, std::move(handler)));
    }
    void deleteRecord(const RecordID &record, DeletionHandler handler) override
    {
        m_service.add(std::make_unique<DeletionRequest>(m_scope, record, std::move(handler)));
    }
    void saveRecordZone(const RecordZone &zone, ZoneHandler handler) override
    {
        CloudRecord record(zoneType, zone.zoneName);
        record.setValue(0, zone.zoneName);
        saveRecord(record, [zone, handler = std::move(handler)](const auto &, const auto &error) {
            handler(error ? std::nullopt : std::optional(zone), error);
        });
    }

private:
    DatabaseScope m_scope;
    Service &m_service;
};

// Answers lead to further requests, which belong where the first ones were made for.
void SqlCloudContainer::Service::add(CloudRequest::Pointer request)
{
    const std::lock_guard lock(mutex);
    request->generation = std::this_thread::get_id() == thread ? answering : generation;
    waiting.push_back(std::move(request));
    if (waiting.size() == 1)
        changed.notify_all();
}

void SqlCloudContainer::Service::setLocation(const StoreLocation &to)
{
    const std::lock_guard lock(mutex);
    if (to.account != location.account || to.file != location.file)
        ++generation;
    location = to;
    changed.notify_all();
}

void SqlCloudContainer::Service::run()
{
    while (!stopping)
        processAt(currentLocation());
    const std::lock_guard lock(mutex);
    hasEnded = true;
    changed.notify_all();
}

StoreLocation SqlCloudContainer::Service::currentLocation()
{
    const std::lock_guard lock(mutex);
    return location;
}

void SqlCloudContainer::Service::processAt(const StoreLocation &opened)
{
    RecordStore store(opened, timeout, stopping);
    std::unique_lock lock(mutex);
    thread = std::this_thread::get_id();
    while (!stopping && location == opened) {
        isWorking = !waiting.empty();
        if (isWorking) {
            Requests requests = takeBatch();
            const bool isOutdated = answering != generation;
            lock.unlock();
            process(std::move(requests), isOutdated, store);
            lock.lock();
        } else {
            changed.notify_all();
            changed.wait(lock);
        }
    }
}

// Requests of one generation.
Requests SqlCloudContainer::Service::takeBatch()
{
    answering = waiting.front()->generation;
    const auto end = waiting.begin() + static_cast<std::ptrdiff_t>(std::min(waiting.size(), largestBatch));
    const auto last =
        std::find_if(waiting.begin(), end, [this](const auto &one) { return one->generation != answering; });
    Requests requests(std::move_iterator(waiting.begin()), std::move_iterator(last));
    waiting.erase(waiting.begin(), last);
    return requests;
}

void SqlCloudContainer::Service::process(Requests requests, bool isOutdated, RecordStore &store)
{
    if (!isOutdated)
        processTogether(store, requests);
    const std::optional<CloudError> &first = requests.front()->error;
    if (!store.isOpen() && first && first->code == CloudError::Code::LoginRefused) {
        // Under the lock, so that nobody is told any more once the container has gone.
        const std::lock_guard lock(mutex);
        if (!stopping)
            onLoginRefused(store.location());
    }
    for (const auto &request : requests) {
        if (stopping)
            return;
        if (isOutdated)
            request->error = {
                CloudError::Code::Other,
                QCoreApplication::translate("CloudStore", "The cloud account was changed meanwhile.")};
        request->answer();
    }
}

SqlCloudContainer::SqlCloudContainer(const StoreLocation &location, const QList<const RecordType *> &types,
                                     std::chrono::milliseconds timeout)
    : m_types(types)
    , m_service(std::make_shared<Service>(location, timeout))
{
    for (const DatabaseScope scope : {DatabaseScope::Public, DatabaseScope::Private, DatabaseScope::Shared})
        m_databases.emplace(scope, std::make_unique<Database>(scope, *m_service));
    std::thread([service = m_service] { service->run(); }).detach();
}

// The thread may hang in the look-up of a name, which nothing ends; then the program ends without it.
SqlCloudContainer::~SqlCloudContainer()
{
    std::unique_lock lock(m_service->mutex);
    m_service->changed.wait_for(lock, drainTimeout,
                                [this] { return m_service->waiting.empty() && !m_service->isWorking; });
    m_service->stopping = true;
    m_service->changed.notify_all();
    m_service->changed.wait_for(lock, shutdownTimeout, [this] { return m_service->hasEnded; });
}

void SqlCloudContainer::setLocation(const StoreLocation &location)
{
    m_service->setLocation(location);
}

void SqlCloudContainer::setOnLoginRefused(std::function<void(const StoreLocation &used)> onLoginRefused)
{
    const std::lock_guard lock(m_service->mutex);
    m_service->onLoginRefused = std::move(onLoginRefused);
}

QString SqlCloudContainer::description() const
{
    return m_service->currentLocation().description();
}

CloudDatabase &SqlCloudContainer::database(DatabaseScope scope)
{
    return *m_databases.at(scope);
}

void SqlCloudContainer::accountStatus(StatusHandler handler)
{
    m_service->add(std::make_unique<StatusRequest>(m_types, std::move(handler)));
}

void SqlCloudContainer::discoverUserIdentity(const QString &phoneNumber, IdentityHandler handler)
{
    const RecordQuery query{&identityType,
                            RecordPredicate::equals(QStringLiteral("phoneNumber"), phoneNumber)};
    publicCloudDatabase().performQuery(
        query, [handler = std::move(handler)](const QList<CloudRecord> &found, const auto &error) {
            std::optional<UserIdentity> identity;
            if (!found.isEmpty())
                identity = {found.last().value(0).toString(), found.last().value(1).toString()};
            handler(identity, error);
        });
}

std::optional<CloudError> testConnection(const StoreLocation &location,
                                         const QList<const RecordType *> &types,
                                         const std::atomic<bool> &cancelled)
{
    RecordStore store(location, SqlCloudContainer::defaultTimeout, cancelled);
    Requests requests;
    requests.push_back(std::make_unique<StatusRequest>(types, CloudContainer::StatusHandler()));
    processTogether(store, requests);
    return requests.front()->error;
}

} // namespace oblino
