#include <records/sqlcloudcontainer.h>

#include <records/calldeadline.h>
#include <records/requestbatch.h>

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace oblino {

using namespace std::chrono_literals;

namespace {

constexpr std::size_t largestBatch = 4096; // requests in one transaction
constexpr auto drainTimeout = 700ms;       // at the end, for what waits
constexpr auto shutdownTimeout = 1500ms;   // and then for what is under way
constexpr auto disconnectTimeout = 500ms;  // to a server, which need not answer

} // namespace

// What the container and its thread share.
struct SqlCloudContainer::Service
{
    Service(const StoreLocation &where, const QList<const RecordType *> &recordTypes,
            std::chrono::milliseconds timeout)
        : place(where)
        , types(recordTypes)
        , deadline(timeout)
    {
    }

    void add(CloudRequest request);
    void move(const StoreLocation &to);
    void run();
    [[nodiscard]] StoreLocation settleIn();
    void processWaiting(RecordStore &store, RequestBatch &batch);
    void process(std::vector<CloudRequest> &requests, RecordStore &store, RequestBatch &batch);
    void tellRefused(const CloudError &error, const StoreLocation &used);
    [[nodiscard]] bool waitForWork();

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<CloudRequest> waiting;
    std::vector<CloudRequest> outdated; // were meant for a place before
    StoreLocation place;
    bool locationChanged = false; // the place, or its password, has changed since it was opened
    bool hasMoved = false; // the place itself, and what the thread asks for is meant for the one before
    std::thread::id thread = {};
    std::function<void(const StoreLocation &used)> onLoginRefused = [](const StoreLocation &) {};
    bool isWorking = false;
    bool hasEnded = false;
    std::atomic<bool> stopping = false;
    QList<const RecordType *> types;
    CallDeadline deadline;
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
        m_service.add({SaveRequest{m_scope, record, std::move(handler)}});
    }
    void performQuery(const RecordQuery &query, QueryHandler handler) override
    {
        m_service.add({QueryRequest{m_scope, query, std::move(handler)}});
    }
    void deleteRecord(const RecordID &record, DeletionHandler handler) override
    {
        m_service.add({DeletionRequest{m_scope, record, std::move(handler)}});
    }
    void saveRecordZone(const RecordZone &zone, ZoneHandler handler) override
    {
        m_service.add({ZoneRequest{m_scope, zone, std::move(handler)}});
    }

private:
    DatabaseScope m_scope;
    Service &m_service;
};

void SqlCloudContainer::Service::add(CloudRequest request)
{
    const std::lock_guard lock(mutex);
    // Answers lead to further requests, which belong where the first ones were carried out.
    const bool isOutdated = hasMoved && std::this_thread::get_id() == thread;
    (isOutdated ? outdated : waiting).push_back(std::move(request));
    if (waiting.size() == 1)
        changed.notify_all();
}

void SqlCloudContainer::Service::move(const StoreLocation &to)
{
    const std::lock_guard lock(mutex);
    if (to.account != place.account || to.file != place.file) {
        hasMoved = true;
        outdated.insert(outdated.end(), std::move_iterator(waiting.begin()),
                        std::move_iterator(waiting.end()));
        waiting.clear();
    }
    place = to;
    locationChanged = true;
    changed.notify_all();
}

// Refuses what was asked of places before. @return the place from now on
StoreLocation SqlCloudContainer::Service::settleIn()
{
    std::unique_lock lock(mutex);
    thread = std::this_thread::get_id();
    while (!outdated.empty() && !stopping) {
        std::vector<CloudRequest> requests = std::exchange(outdated, {});
        lock.unlock();
        for (CloudRequest &request : requests) {
            request.error = CloudError{
                CloudError::Code::Other,
                QCoreApplication::translate("CloudStore", "The cloud account was changed meanwhile.")};
            answer(request);
        }
        lock.lock();
    }
    locationChanged = false;
    hasMoved = false;
    return place;
}

void SqlCloudContainer::Service::run()
{
    while (!stopping) {
        RecordStore store(settleIn(), stopping);
        RequestBatch batch(store, types, stopping);
        while (waitForWork())
            processWaiting(store, batch);
        CallDeadline last(disconnectTimeout);
        last.begin(store.duplicateSocket());
        store.close();
        last.end();
    }
    const std::lock_guard lock(mutex);
    hasEnded = true;
    changed.notify_all();
}

// @return whether there is some, for the place that is open
bool SqlCloudContainer::Service::waitForWork()
{
    std::unique_lock lock(mutex);
    isWorking = false;
    changed.notify_all();
    changed.wait(lock, [this] { return stopping || locationChanged || !waiting.empty(); });
    isWorking = true;
    return !stopping && !locationChanged;
}

void SqlCloudContainer::Service::processWaiting(RecordStore &store, RequestBatch &batch)
{
    std::vector<CloudRequest> requests;
    {
        const std::lock_guard lock(mutex);
        const auto last =
            waiting.begin() + static_cast<std::ptrdiff_t>(std::min(waiting.size(), largestBatch));
        requests.assign(std::move_iterator(waiting.begin()), std::move_iterator(last));
        waiting.erase(waiting.begin(), last);
    }
    process(requests, store, batch);
    for (const CloudRequest &request : requests) {
        if (stopping)
            return;
        answer(request);
    }
}

// A connection that the server has dropped since the last time is opened again: nothing of a transaction that
// was under way has remained, and saving or deleting a record twice is the same as once.
void SqlCloudContainer::Service::process(std::vector<CloudRequest> &requests, RecordStore &store,
                                         RequestBatch &batch)
{
    for (bool mayBeStale = store.isOpen();; mayBeStale = false) {
        const std::optional<CloudError> unopened = store.open();
        for (CloudRequest &request : requests)
            request.error = unopened;
        if (unopened) {
            tellRefused(*unopened, store.place());
            return;
        }
        deadline.begin(store.duplicateSocket());
        batch.process(requests);
        if (deadline.end() || store.isOpen() || !mayBeStale)
            return;
    }
}

// Under the lock, so that nobody is told any more once the container has gone.
void SqlCloudContainer::Service::tellRefused(const CloudError &error, const StoreLocation &used)
{
    const std::lock_guard lock(mutex);
    if (error.code == CloudError::Code::LoginRefused && !stopping)
        onLoginRefused(used);
}

SqlCloudContainer::SqlCloudContainer(const StoreLocation &place, const QList<const RecordType *> &types,
                                     std::chrono::milliseconds timeout)
    : m_service(std::make_shared<Service>(place, types, timeout))
{
    for (const DatabaseScope scope : {DatabaseScope::Public, DatabaseScope::Private, DatabaseScope::Shared})
        m_databases.emplace(scope, std::make_unique<Database>(scope, *m_service));
    std::thread([service = m_service] { service->run(); }).detach();
}

// The thread may hang in the look-up of a name, which nothing stopping; then the program ends without it.
SqlCloudContainer::~SqlCloudContainer()
{
    {
        std::unique_lock lock(m_service->mutex);
        m_service->changed.wait_for(lock, drainTimeout,
                                    [this] { return m_service->waiting.empty() && !m_service->isWorking; });
    }
    m_service->stopping = true;
    m_service->deadline.cutAll();
    std::unique_lock lock(m_service->mutex);
    m_service->changed.notify_all();
    m_service->changed.wait_for(lock, shutdownTimeout, [this] { return m_service->hasEnded; });
}

void SqlCloudContainer::setPlace(const StoreLocation &place)
{
    m_service->move(place);
}

void SqlCloudContainer::setOnLoginRefused(std::function<void(const StoreLocation &used)> onLoginRefused)
{
    const std::lock_guard lock(m_service->mutex);
    m_service->onLoginRefused = std::move(onLoginRefused);
}

QString SqlCloudContainer::description() const
{
    const std::lock_guard lock(m_service->mutex);
    return m_service->place.description();
}

CloudDatabase &SqlCloudContainer::database(DatabaseScope scope)
{
    return *m_databases.at(scope);
}

void SqlCloudContainer::accountStatus(StatusHandler handler)
{
    m_service->add({StatusRequest{std::move(handler)}});
}

void SqlCloudContainer::discoverUserIdentity(const QString &phoneNumber, IdentityHandler handler)
{
    m_service->add({DiscoveryRequest{phoneNumber, std::move(handler)}});
}

std::optional<CloudError> testConnection(const StoreLocation &place, const QList<const RecordType *> &types,
                                         const std::atomic<bool> &cancelled)
{
    RecordStore store(place, cancelled);
    RequestBatch batch(store, types, cancelled);
    std::vector<CloudRequest> requests;
    requests.push_back({StatusRequest{}});
    std::optional<CloudError> error = store.open();
    if (!error) {
        batch.process(requests);
        error = requests.front().error;
    }
    return error;
}

} // namespace oblino
