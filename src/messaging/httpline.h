#pragma once

#include <messaging/httpform.h>

#include <curl/curl.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

namespace oblino {

/// Sends forms over HTTPS one after the other, each once.
///
/// A server may end an idle connection just as the next request leaves, and such a request is lost, since
/// none is sent twice. So every request has a connection of its own until an idle one has outlived
/// HttpLimits::trial; from then on the connection is used again within a tenth of that time after its last
/// answer. Once a request is lost all the same, none is used again.
class HttpLine
{
public:
    /// @param authorities  PEM; those of the system where it is empty
    HttpLine(QByteArray authorities, const HttpLimits &limits);
    HttpLine(const HttpLine &) = delete;
    HttpLine &operator=(const HttpLine &) = delete;
    ~HttpLine();

    /// @param stopped  ends it once it is true; see wake()
    [[nodiscard]] HttpAnswer post(const HttpForm &form, const std::atomic<bool> &stopped);
    /// Has post() look whether it is to end. Safe to call from any thread.
    void wake();

private:
    using Clock = std::chrono::steady_clock;
    enum class Habit { Unknown, Tried, Keeps, Ends };

    void setOptions(const HttpForm &form);
    void chooseConnection(const QUrl &url);
    [[nodiscard]] CURLcode perform(const std::function<bool()> &isOver);
    void judgeConnection(CURLcode code);
    void endTrial();

    QByteArray m_authorities;
    HttpLimits m_limits;
    std::unique_ptr<CURLM, CURLMcode (*)(CURLM *)> m_multi;
    std::unique_ptr<CURL, void (*)(CURL *)> m_easy;
    QUrl m_server; // of which the habit is
    Habit m_habit = Habit::Unknown;
    int m_triedSocket = -1; // a copy
    Clock::time_point m_triedSince;
    Clock::time_point m_lastAnswer;
};

} // namespace oblino
