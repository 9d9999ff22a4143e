#pragma once

#include <records/cloudcontainer.h>

#include <QList>
#include <QString>

#include <optional>
#include <variant>

namespace oblino {

// What can be asked of a container, and what has come of it so far.

struct SaveRequest
{
    DatabaseScope scope;
    CloudRecord record;
    CloudDatabase::RecordHandler handler;
};

struct QueryRequest
{
    DatabaseScope scope;
    RecordQuery query;
    CloudDatabase::QueryHandler handler;
    QList<CloudRecord> found = {};
};

struct DeletionRequest
{
    DatabaseScope scope;
    RecordID record;
    CloudDatabase::DeletionHandler handler;
};

struct ZoneRequest
{
    DatabaseScope scope;
    RecordZone zone;
    CloudDatabase::ZoneHandler handler;
};

struct StatusRequest
{
    CloudContainer::StatusHandler handler;
};

struct DiscoveryRequest
{
    QString phoneNumber;
    CloudContainer::IdentityHandler handler;
    std::optional<UserIdentity> identity = {};
};

struct CloudRequest
{
    std::variant<SaveRequest, QueryRequest, DeletionRequest, ZoneRequest, StatusRequest, DiscoveryRequest>
        what;
    std::optional<CloudError> error = {};
};

/// Calls the request's handler.
void answer(const CloudRequest &request);

} // namespace oblino
