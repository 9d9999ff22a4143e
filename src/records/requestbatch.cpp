#include <records/requestbatch.h>

#include <records/calldeadline.h>
#include <records/recordstore.h>

#include <algorithm>
#include <map>

namespace oblino {

namespace {

using Run = CloudRequest::Run;

// Few numbers of requests in one statement, so that few statements are prepared.
constexpr std::size_t chunkSizes[] = {64, 8, 1};

void markFailed(Run requests, const CloudError &error)
{
    for (const auto &request : requests) {
        if (!request->error)
            request->error = error;
    }
}

// Sets the error of every request that cannot be processed at all.
void prepare(RecordStore &store, Run requests)
{
    std::map<RecordTable, std::optional<CloudError>> prepared;
    for (const auto &request : requests) {
        const auto [known, isNew] = prepared.try_emplace(request->table());
        try {
            if (isNew)
                request->prepare(store);
        } catch (const CloudError &error) {
            known->second = error;
        }
        request->error = known->second;
    }
}

// How many requests from the first on go into one statement.
std::size_t chunkSize(Run requests)
{
    const std::size_t largest = std::min(requests.size(), chunkSizes[0]);
    std::size_t length = 1;
    while (length < largest && !requests[length]->error && requests[length]->joins(requests.first(length)))
        ++length;
    return *std::ranges::find_if(chunkSizes, [length](std::size_t size) { return size <= length; });
}

void processAll(RecordStore &store, Run requests)
{
    while (!requests.empty()) {
        const std::size_t count = requests.front()->error ? 1 : chunkSize(requests);
        if (!requests.front()->error)
            requests.front()->process(store, requests.first(count));
        requests = requests.subspan(count);
    }
}

// Halves of a batch that failed are tried until what cannot be done is by itself: few transactions, however
// large the batch. A location that cannot be reached is the same for all.
void processPrepared(RecordStore &store, Run requests)
{
    const bool writes = std::ranges::any_of(requests, [](const auto &one) { return one->isWriting(); });
    try {
        store.inTransaction(writes ? RecordStore::Access::Write : RecordStore::Access::Read,
                            [&] { processAll(store, requests); });
    } catch (const CloudError &error) {
        if (requests.size() == 1 || !store.isOpen() || error.code == CloudError::Code::Unreachable)
            return markFailed(requests, error);
        const std::size_t half = requests.size() / 2;
        processPrepared(store, requests.first(half));
        processPrepared(store, requests.subspan(half));
    }
}

} // namespace

// A connection that the server has dropped since the last time is opened again: nothing of a transaction that
// was under way has remained, and saving or deleting a record twice is the same as once.
void processTogether(RecordStore &store, Run requests)
{
    for (bool mayBeStale = store.isOpen();; mayBeStale = false) {
        try {
            store.open();
        } catch (const CloudError &error) {
            for (const auto &request : requests)
                request->error = error;
            return;
        }
        const CallDeadline deadline(store.duplicateSocket(), store.timeout(), store.cancelled());
        prepare(store, requests);
        processPrepared(store, requests);
        if (store.isOpen() || deadline.wasCut() || !mayBeStale)
            return;
    }
}

} // namespace oblino
