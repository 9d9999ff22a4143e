#pragma once

#include <core/taskmanager.h>
#include <records/cloudcontainer.h>

#include <functional>
#include <utility>
#include <variant>

namespace oblino {

/// What went wrong with a request, in words: `general` what the service said, `emptyresult` that it said
/// nothing at all.
class TaskManager::CloudKitError
{
public:
    enum Case { general, emptyresult };

    CloudKitError(Case which, QString text)
        : m_case(which)
        , m_text(std::move(text))
    {
    }

    [[nodiscard]] Case which() const { return m_case; }
    [[nodiscard]] const QString &text() const { return m_text; }

private:
    Case m_case;
    QString m_text;
};

/// The outcome of a request: `success` or `failure`, each with its value.
template<typename Success, typename Failure>
class TaskManager::CloudKitResult
{
public:
    [[nodiscard]] static CloudKitResult success(Success value)
    {
        return CloudKitResult(Outcome(std::in_place_index<0>, std::move(value)));
    }
    [[nodiscard]] static CloudKitResult failure(Failure value)
    {
        return CloudKitResult(Outcome(std::in_place_index<1>, std::move(value)));
    }

    /// The value of a success, null for a failure.
    [[nodiscard]] const Success *success() const { return std::get_if<0>(&m_outcome); }
    /// The value of a failure, null for a success.
    [[nodiscard]] const Failure *failure() const { return std::get_if<1>(&m_outcome); }

private:
    using Outcome = std::variant<Success, Failure>;

    explicit CloudKitResult(Outcome outcome)
        : m_outcome(std::move(outcome))
    {
    }

    Outcome m_outcome;
};

/// A thin wrapper around one database of a container. Used on the main thread.
class TaskManager::CloudKitController : public QObject
{
public:
    using SaveResult = CloudKitResult<CloudRecord, CloudKitError>;

    /// @param defaultContainer  outlives the controller
    explicit CloudKitController(CloudContainer &defaultContainer,
                                DatabaseScope scope = DatabaseScope::Public);

    CloudContainer &container;
    CloudDatabase &publicDB;
    CloudDatabase &privateDB;
    DatabaseScope scope;

    /// Saves a record into the database of the scope. The callback is called on the main thread, and not at
    /// all once the controller is gone.
    void save(const CloudRecord &record, std::function<void(const SaveResult &result)> callback);

private:
    [[nodiscard]] CloudDatabase &currentDatabase() const { return container.database(scope); }
};

} // namespace oblino
