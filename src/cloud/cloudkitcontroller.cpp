#include <cloud/cloudkitcontroller.h>

#include <base/dispatch.h>

#include <QCoreApplication>
#include <QPointer>

namespace oblino {

namespace {

using Controller = TaskManager::CloudKitController;
using Error = TaskManager::CloudKitError;

Controller::SaveResult resultOf(const std::optional<CloudRecord> &record,
                                const std::optional<CloudError> &error)
{
    if (error)
        return Controller::SaveResult::failure(Error(Error::general, error->localizedDescription));
    if (record)
        return Controller::SaveResult::success(*record);
    return Controller::SaveResult::failure(
        Error(Error::emptyresult, QStringLiteral("There callback returned a nil object")));
}

} // namespace

TaskManager::CloudKitController::CloudKitController(CloudContainer &defaultContainer,
                                                    DatabaseScope databaseScope)
    : container(defaultContainer)
    , publicDB(defaultContainer.publicCloudDatabase())
    , privateDB(defaultContainer.privateCloudDatabase())
    , scope(databaseScope)
{
}

void TaskManager::CloudKitController::save(const CloudRecord &record,
                                           std::function<void(const SaveResult &result)> callback)
{
    currentDatabase().saveRecord(record, [context = QPointer<QObject>(this), callback = std::move(callback)](
                                             const auto &saved, const auto &error) {
        // Only the main thread can tell whether the controller is still there.
        Dispatch::main(QCoreApplication::instance(), [context, callback, result = resultOf(saved, error)] {
            if (context)
                callback(result);
        });
    });
}

} // namespace oblino
