#include <base/noticelog.h>

#include <base/clock.h>

namespace oblino {

namespace {

constexpr qsizetype most = 1000;

} // namespace

void NoticeLog::add(const QString &text)
{
    if (text.isEmpty())
        return;
    if (m_notices.size() == most)
        m_notices.removeFirst();
    m_notices.append({now(), text});
    Q_EMIT added();
}

} // namespace oblino
