#pragma once

#include <records/cloudaccount.h>
#include <records/cloudcontainer.h>

#include <atomic>
#include <chrono>
#include <optional>

namespace oblino {

/// Signs in to an account's server and out again, and says what is wrong where that does not work. It waits
/// for an answer no longer than `timeout`, and less once `cancelled` is true; the look-up of the host's name
/// is not counted.
[[nodiscard]] std::optional<CloudError> probePostgres(const CloudAccount &account, const QString &password,
                                                      std::chrono::milliseconds timeout,
                                                      const std::atomic<bool> &cancelled);

/// The kind of failure that an SQLSTATE of PostgreSQL stands for (PostgreSQL 15, appendix A).
[[nodiscard]] CloudError::Code codeOfState(const QString &sqlState);

} // namespace oblino
