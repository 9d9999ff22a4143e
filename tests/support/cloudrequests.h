#pragma once

#include <records/cloudcontainer.h>

#include <QStringList>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <tuple>

namespace oblino {

// Requests to a cloud container that wait for their answer, and what tests keep there. Whoever has one answer
// has had those to all requests before it.

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
/// std::runtime_error when that does not happen.
template<typename... Results, typename Request>
std::tuple<Results...> answerTo(Request request)
{
    const auto answer = std::make_shared<std::promise<std::tuple<Results...>>>();
    auto results = answer->get_future();
    request([answer](const Results &...given) { answer->set_value({given...}); });
    if (results.wait_for(std::chrono::seconds(30)) != std::future_status::ready)
        throw std::runtime_error("A request was not answered.");
    return results.get();
}

/// What went wrong; empty where all is well.
[[nodiscard]] inline QString errorMessage(const CloudFailure &failure)
{
    return failure ? failure->localizedDescription : QString();
}

[[nodiscard]] inline QString save(CloudContainer &container, const CloudRecord &record)
{
    return errorMessage(std::get<1>(answerTo<std::optional<CloudRecord>, CloudFailure>(
        [&](auto handler) { container.privateCloudDatabase().saveRecord(record, handler); })));
}

[[nodiscard]] inline QString remove(CloudContainer &container, const QString &name)
{
    return errorMessage(std::get<0>(answerTo<CloudFailure>([&](auto handler) {
        container.privateCloudDatabase().deleteRecord({&noteType(), name}, handler);
    })));
}

[[nodiscard]] inline std::tuple<QList<CloudRecord>, CloudFailure>
find(CloudContainer &container, const RecordPredicate &predicate = {}, const RecordType &type = noteType())
{
    return answerTo<QList<CloudRecord>, CloudFailure>([&](auto handler) {
        container.privateCloudDatabase().performQuery({&type, predicate}, handler);
    });
}

[[nodiscard]] inline AccountStatus statusOf(CloudContainer &container)
{
    return std::get<0>(answerTo<AccountStatus, CloudFailure, QString>(
        [&](auto handler) { container.accountStatus(handler); }));
}

[[nodiscard]] inline QString namesOf(const QList<CloudRecord> &records)
{
    QStringList names;
    for (const CloudRecord &record : records)
        names += record.recordName();
    return names.join(QLatin1Char(' '));
}

/// The names of the records that a query finds, or why it finds none.
[[nodiscard]] inline QString namesIn(CloudContainer &container, const RecordPredicate &predicate = {})
{
    const auto [records, error] = find(container, predicate);
    return error ? errorMessage(error) : namesOf(records);
}

/// A request whose handler does not return until the test lets it, so that other requests wait.
class HeldAnswer
{
public:
    /// @param afterwards  called on the thread of the service, when it goes on
    explicit HeldAnswer(
        CloudContainer &container, const std::function<void()> &afterwards = [] {})
    {
        const auto begun = std::make_shared<std::promise<void>>();
        container.privateCloudDatabase().performQuery(
            {&noteType(), {}},
            [begun, go = m_go.get_future().share(), afterwards](const auto &, const auto &) {
                begun->set_value();
                go.wait();
                afterwards();
            });
        begun->get_future().wait();
    }
    void release() { m_go.set_value(); }

private:
    std::promise<void> m_go;
};

struct Answers
{
    std::atomic<int> good = 0;
    std::atomic<int> bad = 0;
};

/// Saves records and counts the answers. Each request holds the answers until it has gone.
[[nodiscard]] inline std::shared_ptr<const Answers> saveMany(CloudContainer &container, int number)
{
    const auto answers = std::make_shared<Answers>();
    for (int i = 0; i < number; ++i)
        container.privateCloudDatabase().saveRecord(
            note(QString::number(i)),
            [answers](const auto &, const auto &failure) { ++(failure ? answers->bad : answers->good); });
    return answers;
}

} // namespace oblino
