#pragma once

#include <QString>

#include <atomic>

namespace oblino {

/// How the current send command is doing: one state for the whole application, shared by the worker that
/// sends, the monitor that reports, the gateway and the settings window. Safe to use from any thread.
class SendingState
{
public:
    static inline std::atomic<qint64> progressIndex = 0; ///< steps taken by the worker
    static inline std::atomic<qint64> noOfSchedules = 0; ///< messages composed or sent
    static inline std::atomic<bool> success = true;      ///< of the most recent send

    /// The whole body of the last answer that was judged an error, empty at first. A message that went
    /// through does not clear it.
    [[nodiscard]] static QString lastResponse();
    static void setLastResponse(const QString &response);

    /// Why the most recent message failed: the answer that was judged an error, or what kept one from coming.
    /// Empty where it went through.
    [[nodiscard]] static QString lastFailure();
    static void setLastFailure(const QString &reason);
};

} // namespace oblino
