#include <records/cloudrequest.h>

namespace oblino {

namespace {

using Error = std::optional<CloudError>;

AccountStatus statusOf(const Error &error)
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

void answerWith(const SaveRequest &request, const Error &error)
{
    request.handler(error ? std::nullopt : std::optional(request.record), error);
}

void answerWith(const QueryRequest &request, const Error &error)
{
    request.handler(error ? QList<CloudRecord>() : request.found, error);
}

void answerWith(const DeletionRequest &request, const Error &error)
{
    request.handler(error);
}

void answerWith(const ZoneRequest &request, const Error &error)
{
    request.handler(error ? std::nullopt : std::optional(request.zone), error);
}

// What keeps the account from being used is its status, not a failure to tell it.
void answerWith(const StatusRequest &request, const Error &error)
{
    request.handler(statusOf(error), std::nullopt, error ? error->localizedDescription : QString());
}

void answerWith(const DiscoveryRequest &request, const Error &error)
{
    request.handler(error ? std::nullopt : request.identity, error);
}

} // namespace

void answer(const CloudRequest &request)
{
    std::visit([&request](const auto &what) { answerWith(what, request.error); }, request.what);
}

} // namespace oblino
