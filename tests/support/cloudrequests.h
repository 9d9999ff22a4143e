#pragma once

#include <platform/cloud/cloudcontainer.h>

#include <QStringList>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <latch>
#include <memory>
#include <mutex>
#include <optional>
#include <tuple>
#include <utility>

namespace oblino {

// Requests to a cloud container that wait for their answer, and what tests keep there.

using CloudFailure = std::optional<CloudError>;

/// A type with a field of every kind, looked up by "owner".
[[nodiscard]] inline const RecordType &noteType()
{
    static const RecordType type(QStringLiteral("Note"),
                                 {{QStringLiteral("owner"), FieldType::Text},
                                  {QStringLiteral("text"), FieldType::Text},
                                  {QStringLiteral("day"), FieldType::DateTime},
                                  {QStringLiteral("count"), FieldType::Integer},
                                  {QStringLiteral("done"), FieldType::Boolean},
                                  {QStringLiteral("amount"), FieldType::Double}},
                                 QStringLiteral("owner"));
    return type;
}

[[nodiscard]] inline CloudRecord note(const QString &name, const QString &key = {},
                                      const QVariant &value = {})
{
    CloudRecord record(noteType(), name);
    record.setValue(key, value);
    return record;
}

/// Hands `request` a handler that takes Results, and waits until it has been called. Throws
/// std::bad_optional_access when that does not happen.
template<typename... Results, typename Request>
std::tuple<Results...> answerTo(Request request)
{
    struct Answer
    {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<std::tuple<Results...>> results;
    };
    const auto answer = std::make_shared<Answer>();
    request([answer](const Results &...results) {
        const std::lock_guard lock(answer->mutex);
        answer->results.emplace(results...);
        answer->changed.notify_all();
    });
    std::unique_lock lock(answer->mutex);
    answer->changed.wait_for(lock, std::chrono::seconds(30), [&] { return answer->results.has_value(); });
    return answer->results.value();
}

[[nodiscard]] inline CloudFailure save(CloudContainer &container, const CloudRecord &record)
{
    return std::get<1>(answerTo<std::optional<CloudRecord>, CloudFailure>(
        [&](auto handler) { container.privateCloudDatabase().saveRecord(record, handler); }));
}

[[nodiscard]] inline CloudFailure remove(CloudContainer &container, const QString &name)
{
    return std::get<0>(answerTo<CloudFailure>([&](auto handler) {
        container.privateCloudDatabase().deleteRecord({&noteType(), name}, handler);
    }));
}

[[nodiscard]] inline std::tuple<QList<CloudRecord>, CloudFailure>
find(CloudContainer &container, const RecordPredicate &predicate = RecordPredicate::all())
{
    return answerTo<QList<CloudRecord>, CloudFailure>([&](auto handler) {
        container.privateCloudDatabase().performQuery({&noteType(), predicate}, handler);
    });
}

[[nodiscard]] inline AccountStatus statusOf(CloudContainer &container)
{
    return std::get<0>(
        answerTo<AccountStatus, CloudFailure>([&](auto handler) { container.accountStatus(handler); }));
}

[[nodiscard]] inline QStringList namesOf(const QList<CloudRecord> &records)
{
    QStringList names;
    for (const CloudRecord &record : records)
        names += record.recordName();
    return names;
}

/// The names of the records that a query finds, or "failed: " and why.
[[nodiscard]] inline QStringList namesIn(CloudContainer &container,
                                         const RecordPredicate &predicate = RecordPredicate::all())
{
    const auto [records, error] = find(container, predicate);
    return error ? QStringList{QStringLiteral("failed: ") + error->localizedDescription} : namesOf(records);
}

/// What went wrong; empty where all is well.
[[nodiscard]] inline QString wordsOf(const CloudFailure &failure)
{
    return failure ? failure->localizedDescription : QString();
}

/// Keeps a container busy, so that requests which are made meanwhile wait together.
class Pause
{
public:
    explicit Pause(CloudContainer &container)
    {
        const auto isBusy = std::make_shared<std::latch>(1);
        container.accountStatus([isBusy, over = m_over](AccountStatus, const CloudFailure &) {
            isBusy->count_down();
            over->wait();
        });
        isBusy->wait();
    }
    Pause(const Pause &) = delete;
    Pause &operator=(const Pause &) = delete;
    ~Pause() { m_over->count_down(); }

private:
    std::shared_ptr<std::latch> m_over = std::make_shared<std::latch>(1);
};

} // namespace oblino
