#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>

namespace oblino {

/// A form to be sent by POST, with the credentials for HTTP Basic authentication.
struct HttpForm
{
    QUrl url; ///< https, and without credentials
    QString user;
    QString password;
    QByteArray body; ///< encoded as application/x-www-form-urlencoded
};

/// What came of a request: a body, or the reason why there is none.
struct HttpAnswer
{
    std::optional<QByteArray> body; ///< the whole body, whatever the status
    int status = 0;                 ///< 0 where none arrived
    QString error;                  ///< empty where there is a body
};

struct HttpLimits
{
    std::chrono::milliseconds silence = std::chrono::seconds(30); ///< during which nothing at all arrives
    std::chrono::milliseconds total = std::chrono::seconds(60);   ///< for one request and its answer
    /// An idle connection must outlive it before any is used again; see HttpLine.
    std::chrono::milliseconds trial = std::chrono::seconds(1);
    qsizetype answer = 64 * 1024; ///< bytes in a body
};

} // namespace oblino
