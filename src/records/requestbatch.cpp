#include <records/requestbatch.h>

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace oblino {

namespace {

// Few numbers, so that few statements are prepared.
constexpr std::size_t chunkSizes[] = {64, 8, 1};
constexpr int attempts = 5;

using Table = std::pair<DatabaseScope, const RecordType *>;

const RecordType zoneType(QStringLiteral("Zone"), {{QStringLiteral("zoneName"), FieldType::Text}},
                          QStringLiteral("zoneName"));
const RecordType identityType(QStringLiteral("UserIdentity"),
                              {{QStringLiteral("phoneNumber"), FieldType::Text},
                               {QStringLiteral("name"), FieldType::Text}},
                              QStringLiteral("phoneNumber"));

// The table that a request works on; none for the status, which works on all of them.
std::optional<Table> tableOf(const CloudRequest &request)
{
    if (const auto *save = std::get_if<SaveRequest>(&request.what))
        return Table(save->scope, &save->record.recordType());
    if (const auto *query = std::get_if<QueryRequest>(&request.what))
        return Table(query->scope, query->query.recordType);
    if (const auto *deletion = std::get_if<DeletionRequest>(&request.what))
        return Table(deletion->scope, deletion->record.recordType);
    if (const auto *zone = std::get_if<ZoneRequest>(&request.what))
        return Table(zone->scope, &zoneType);
    if (std::holds_alternative<DiscoveryRequest>(request.what))
        return Table(DatabaseScope::Public, &identityType);
    return std::nullopt;
}

// The text that a query looks for; empty for a query that stands by itself.
QString searchKey(const CloudRequest &request)
{
    const auto *query = std::get_if<QueryRequest>(&request.what);
    if (!query || query->query.predicate.value.typeId() != QMetaType::QString)
        return {};
    return query->query.predicate.value.toString();
}

bool isWriting(const CloudRequest &request)
{
    return std::holds_alternative<SaveRequest>(request.what) ||
           std::holds_alternative<DeletionRequest>(request.what) ||
           std::holds_alternative<ZoneRequest>(request.what);
}

bool isBatchable(const CloudRequest &request)
{
    return !searchKey(request).isEmpty() || std::holds_alternative<SaveRequest>(request.what) ||
           std::holds_alternative<DeletionRequest>(request.what);
}

QString keyOf(const CloudRequest &request)
{
    const auto *query = std::get_if<QueryRequest>(&request.what);
    return query ? query->query.predicate.key : QString();
}

// How many requests from the first on can be carried out by statements of one form.
std::size_t runLength(std::span<CloudRequest> requests)
{
    if (!isBatchable(requests.front()))
        return 1;
    const auto table = tableOf(requests.front());
    const QString key = keyOf(requests.front());
    const std::size_t kind = requests.front().what.index();
    QSet<QString> saved; // one statement cannot write a record twice
    std::size_t length = 0;
    for (const CloudRequest &request : requests) {
        if (request.error || request.what.index() != kind || !isBatchable(request) ||
            tableOf(request) != table || keyOf(request) != key)
            break;
        if (const auto *save = std::get_if<SaveRequest>(&request.what)) {
            if (saved.contains(save->record.recordName()))
                break;
            saved.insert(save->record.recordName());
        }
        ++length;
    }
    return length;
}

} // namespace

RequestBatch::RequestBatch(RecordStore &store, const QList<const RecordType *> &types,
                           const std::atomic<bool> &cancelled)
    : m_store(store)
    , m_types(types)
    , m_cancelled(cancelled)
{
}

void RequestBatch::process(std::span<CloudRequest> requests)
{
    prepare(requests);
    processPrepared(requests);
}

// Halves of a batch that failed are tried until what cannot be done is by itself: few transactions, however
// large the batch. A place that cannot be reached is the same for all.
void RequestBatch::processPrepared(std::span<CloudRequest> requests)
{
    const Error error = inOneTransaction(requests);
    if (!error)
        return;
    if (requests.size() > 1 && m_store.isOpen() && !m_cancelled &&
        error->code != CloudError::Code::Unreachable) {
        const std::size_t half = requests.size() / 2;
        processPrepared(requests.first(half));
        processPrepared(requests.subspan(half));
        return;
    }
    for (CloudRequest &request : requests)
        request.error = request.error ? request.error : error;
}

// Sets the error of every request that cannot be carried out at all.
void RequestBatch::prepare(std::span<CloudRequest> requests)
{
    std::map<Table, Error> prepared;
    std::optional<Error> status;
    for (CloudRequest &request : requests) {
        const auto table = tableOf(request);
        if (!table) {
            if (!status)
                status = checkAccount();
            request.error = *status;
        } else {
            const auto [known, isNew] = prepared.try_emplace(*table);
            if (isNew)
                known->second = m_store.prepare(sql(table->first, *table->second));
            request.error = known->second;
        }
    }
}

RequestBatch::Error RequestBatch::checkAccount()
{
    for (const RecordType *type : m_types) {
        if (Error error = m_store.prepare(sql(DatabaseScope::Private, *type)))
            return error;
    }
    return m_store.checkRights();
}

RequestBatch::Error RequestBatch::inOneTransaction(std::span<CloudRequest> requests)
{
    const bool writes = std::ranges::any_of(requests, isWriting);
    Error error;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        error = m_store.begin(writes ? RecordStore::Access::Write : RecordStore::Access::Read);
        error = error ? error : run(requests);
        error = error ? error : m_store.commit();
        const bool again = error && m_store.shouldTryAgain();
        if (error && m_store.isOpen())
            m_store.rollBack();
        if (!again)
            break;
    }
    return error;
}

RequestBatch::Error RequestBatch::run(std::span<CloudRequest> requests)
{
    while (!requests.empty()) {
        if (requests.front().error) {
            requests = requests.subspan(1);
            continue;
        }
        const std::size_t length = runLength(requests);
        for (std::span<CloudRequest> rest = requests.first(length); !rest.empty();) {
            if (m_cancelled)
                return CloudError{CloudError::Code::Other,
                                  QCoreApplication::translate("CloudStore", "The program is ending.")};
            const std::size_t count = *std::ranges::find_if(
                chunkSizes, [&rest](std::size_t number) { return number <= rest.size(); });
            if (Error error = runTogether(rest.first(count)))
                return error;
            rest = rest.subspan(count);
        }
        requests = requests.subspan(length);
    }
    return std::nullopt;
}

RequestBatch::Error RequestBatch::runTogether(std::span<CloudRequest> requests)
{
    CloudRequest &first = requests.front();
    if (std::holds_alternative<SaveRequest>(first.what))
        return save(requests);
    if (std::holds_alternative<QueryRequest>(first.what))
        return query(requests);
    if (std::holds_alternative<DeletionRequest>(first.what))
        return remove(requests);
    if (const auto *zone = std::get_if<ZoneRequest>(&first.what))
        return saveZone(*zone);
    if (auto *discovery = std::get_if<DiscoveryRequest>(&first.what))
        return discover(*discovery);
    return std::nullopt; // the status is what prepare() found
}

RequestBatch::Error RequestBatch::save(std::span<CloudRequest> requests)
{
    const auto [scope, type] = *tableOf(requests.front());
    const RecordSql &table = sql(scope, *type);
    QVariantList values;
    for (const CloudRequest &request : requests)
        table.appendRow(values, std::get<SaveRequest>(request.what).record, m_store.nextCreated());
    return m_store.run(table.upsert(static_cast<qsizetype>(requests.size())), values);
}

RequestBatch::Error RequestBatch::query(std::span<CloudRequest> requests)
{
    const auto [scope, type] = *tableOf(requests.front());
    const RecordSql &table = sql(scope, *type);
    const QString key = keyOf(requests.front());
    QVariantList values;
    QHash<QString, QList<CloudRecord>> found; // by what was sought; all of them where that is no text
    const qsizetype field = type->indexOf(key);
    if (field < 0 && !key.isEmpty()) // which SQLite would take for a text
        return CloudError{
            CloudError::Code::Other,
            QCoreApplication::translate("CloudStore", "The cloud's records have no field %1.").arg(key)};
    for (const CloudRequest &request : requests) {
        if (field >= 0)
            values += RecordSql::stored(type->fields().at(field).type,
                                        std::get<QueryRequest>(request.what).query.predicate.value);
    }
    RecordSql::DateTimeCache moments;
    const bool byText = isBatchable(requests.front());
    Error error = m_store.select(table.select(key, values.size()), values, [&](const QSqlQuery &row) {
        CloudRecord record = table.record(row, moments);
        found[byText ? record.value(key).toString() : QString()] += std::move(record);
    });
    for (CloudRequest &request : requests)
        std::get<QueryRequest>(request.what).found = found.value(searchKey(request));
    return error;
}

RequestBatch::Error RequestBatch::remove(std::span<CloudRequest> requests)
{
    const auto [scope, type] = *tableOf(requests.front());
    QVariantList names;
    for (const CloudRequest &request : requests)
        names +=
            RecordSql::stored(FieldType::Text, std::get<DeletionRequest>(request.what).record.recordName);
    return m_store.run(sql(scope, *type).deletion(names.size()), names);
}

RequestBatch::Error RequestBatch::saveZone(const ZoneRequest &request)
{
    const RecordSql &table = sql(request.scope, zoneType);
    CloudRecord zone(zoneType, request.zone.zoneName);
    zone.setValue(0, request.zone.zoneName);
    QVariantList values;
    table.appendRow(values, zone, m_store.nextCreated());
    return m_store.run(table.upsert(1), values);
}

RequestBatch::Error RequestBatch::discover(DiscoveryRequest &request)
{
    const RecordSql &table = sql(DatabaseScope::Public, identityType);
    return m_store.select(
        table.select(QStringLiteral("phoneNumber"), 1),
        {RecordSql::stored(FieldType::Text, request.phoneNumber)}, [&request](const QSqlQuery &row) {
            request.identity = UserIdentity{row.value(1).toString(), row.value(2).toString()};
        });
}

const RecordSql &RequestBatch::sql(DatabaseScope scope, const RecordType &type)
{
    return m_sql.try_emplace(Table(scope, &type), scope, type).first->second;
}

} // namespace oblino
