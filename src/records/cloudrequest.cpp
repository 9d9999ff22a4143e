#include <records/cloudrequest.h>

#include <records/recordstore.h>

#include <QCoreApplication>
#include <QHash>

#include <algorithm>

namespace oblino {

namespace {

AccountStatus statusOf(const std::optional<CloudError> &error)
{
    if (!error)
        return AccountStatus::Available;
    switch (error->code) {
    case CloudError::Code::LoginRefused:
        return AccountStatus::NoAccount;
    case CloudError::Code::RightsRefused:
        return AccountStatus::Restricted;
    case CloudError::Code::Unreachable:
    case CloudError::Code::Other:
        break;
    }
    return AccountStatus::CouldNotDetermine;
}

} // namespace

void CloudRequest::prepare(RecordStore &store) const
{
    (void)store.table(m_table);
}

SaveRequest::SaveRequest(DatabaseScope scope, const CloudRecord &record, CloudDatabase::RecordHandler handler)
    : CloudRequest({scope, &record.recordType()})
    , m_record(record)
    , m_handler(std::move(handler))
{
}

// One statement cannot write a record twice.
bool SaveRequest::joins(Run run) const
{
    return std::ranges::all_of(run, [this](const Pointer &other) {
        const auto *save = dynamic_cast<const SaveRequest *>(other.get());
        return save && save->table() == table() && save->m_record.recordName() != m_record.recordName();
    });
}

void SaveRequest::process(RecordStore &store, Run run)
{
    const RecordSql &sql = store.table(table());
    QVariantList values;
    for (const Pointer &request : run)
        sql.appendRow(values, static_cast<const SaveRequest &>(*request).m_record, store.nextCreated());
    store.run(sql.upsert(static_cast<qsizetype>(run.size())), values);
}

void SaveRequest::answer() const
{
    m_handler(error ? std::nullopt : std::optional(m_record), error);
}

QueryRequest::QueryRequest(DatabaseScope scope, const RecordQuery &query, CloudDatabase::QueryHandler handler)
    : CloudRequest({scope, query.recordType})
    , m_predicate(query.predicate)
    , m_handler(std::move(handler))
{
}

// The text that is looked for, by which the records of several queries are told apart; empty where it is
// none.
QString QueryRequest::searchKey() const
{
    return m_predicate.value.typeId() == QMetaType::QString ? m_predicate.value.toString() : QString();
}

bool QueryRequest::joins(Run run) const
{
    const auto *first = dynamic_cast<const QueryRequest *>(run.front().get());
    return first && first->table() == table() && first->m_predicate.key == m_predicate.key &&
           !searchKey().isEmpty() && !first->searchKey().isEmpty();
}

void QueryRequest::process(RecordStore &store, Run run)
{
    const RecordSql &sql = store.table(table());
    const QString &key = m_predicate.key;
    const qsizetype field = table().second->indexOf(key);
    if (field < 0 && !key.isEmpty()) // which SQLite would take for a text
        throw CloudError{
            CloudError::Code::Other,
            QCoreApplication::translate("CloudStore", "The cloud's records have no field %1.").arg(key)};
    QVariantList values;
    for (const Pointer &request : run) {
        if (field >= 0)
            values += RecordSql::stored(table().second->fields().at(field).type,
                                        static_cast<const QueryRequest &>(*request).m_predicate.value);
    }
    QHash<QString, QList<CloudRecord>> found;
    RecordSql::DateTimeCache times;
    const bool byText = !searchKey().isEmpty();
    store.select(sql.select(key, values.size()), values, [&](const QSqlQuery &row) {
        CloudRecord record = sql.record(row, times);
        found[byText ? record.value(key).toString() : QString()] += std::move(record);
    });
    for (const Pointer &request : run) {
        auto &query = static_cast<QueryRequest &>(*request);
        query.m_found = found.value(query.searchKey());
    }
}

void QueryRequest::answer() const
{
    m_handler(error ? QList<CloudRecord>() : m_found, error);
}

DeletionRequest::DeletionRequest(DatabaseScope scope, const RecordID &record,
                                 CloudDatabase::DeletionHandler handler)
    : CloudRequest({scope, record.recordType})
    , m_recordName(record.recordName)
    , m_handler(std::move(handler))
{
}

bool DeletionRequest::joins(Run run) const
{
    return dynamic_cast<const DeletionRequest *>(run.front().get()) && run.front()->table() == table();
}

void DeletionRequest::process(RecordStore &store, Run run)
{
    QVariantList names;
    for (const Pointer &request : run)
        names += RecordSql::stored(FieldType::Text, static_cast<DeletionRequest &>(*request).m_recordName);
    store.run(store.table(table()).deletion(names.size()), names);
}

void DeletionRequest::answer() const
{
    m_handler(error);
}

StatusRequest::StatusRequest(const QList<const RecordType *> &types, CloudContainer::StatusHandler handler)
    : CloudRequest({DatabaseScope::Private, nullptr})
    , m_types(types)
    , m_handler(std::move(handler))
{
}

void StatusRequest::prepare(RecordStore &store) const
{
    for (const RecordType *type : m_types)
        (void)store.table({DatabaseScope::Private, type});
    store.checkRights();
}

// What keeps the account from being used is its status, not a failure to tell it.
void StatusRequest::answer() const
{
    m_handler(statusOf(error), std::nullopt, error ? error->localizedDescription : QString());
}

} // namespace oblino
