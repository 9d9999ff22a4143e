#include <messaging/sendingstate.h>

#include <QMutex>

namespace oblino {

namespace {

struct Response
{
    QMutex mutex;
    QString text;
};

Response &last()
{
    static Response response;
    return response;
}

} // namespace

QString SendingState::lastResponse()
{
    const QMutexLocker lock(&last().mutex);
    return last().text;
}

void SendingState::setLastResponse(const QString &response)
{
    const QMutexLocker lock(&last().mutex);
    last().text = response;
}

} // namespace oblino
