#include <messaging/sendingstate.h>

#include <QMutex>

namespace oblino {

namespace {

class SharedText
{
public:
    QString get()
    {
        const QMutexLocker lock(&m_mutex);
        return m_text;
    }
    void set(const QString &text)
    {
        const QMutexLocker lock(&m_mutex);
        m_text = text;
    }

private:
    QMutex m_mutex;
    QString m_text;
};

SharedText &response()
{
    static SharedText text;
    return text;
}

SharedText &failure()
{
    static SharedText text;
    return text;
}

} // namespace

QString SendingState::lastResponse()
{
    return response().get();
}

void SendingState::setLastResponse(const QString &text)
{
    response().set(text);
}

QString SendingState::lastFailure()
{
    return failure().get();
}

void SendingState::setLastFailure(const QString &reason)
{
    failure().set(reason);
}

} // namespace oblino
