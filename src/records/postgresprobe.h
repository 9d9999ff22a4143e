#pragma once

#include <records/cloudaccount.h>
#include <records/cloudcontainer.h>

#include <QByteArray>
#include <QList>

#include <atomic>
#include <chrono>
#include <utility>

namespace oblino {

/// The parameters of a connection besides host, port, database, user and password, under libpq's names.
/// @param timeout  for each address of the host
[[nodiscard]] QList<std::pair<QByteArray, QByteArray>> connectOptions(const CloudAccount &account,
                                                                      std::chrono::milliseconds timeout);

/// Signs in to an account's server and out again. Throws a CloudError that says what is wrong where that does
/// not work. It waits for an answer no longer than `timeout`, and less once `cancelled` is true; the look-up
/// of the host's name is not counted.
void probePostgres(const CloudAccount &account, const QString &password, std::chrono::milliseconds timeout,
                   const std::atomic<bool> &cancelled);

/// The kind of failure that an SQLSTATE of PostgreSQL stands for (PostgreSQL 15, appendix A).
[[nodiscard]] CloudError::Code codeOfState(const QString &sqlState);

} // namespace oblino
