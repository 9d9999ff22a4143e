#include <tools/filenotices.h>

namespace oblino {

void FileNotices::tell(const QStringList &notices)
{
    if (!notices.isEmpty())
        m_notices = notices;
}

QString FileNotices::text() const
{
    QStringList sentences = m_notices;
    if (!m_failure.isEmpty())
        sentences.prepend(QStringLiteral("Not saved: ") + m_failure +
                          (m_failure.endsWith(QLatin1Char('.')) ? QString() : QStringLiteral(".")));
    return sentences.join(QLatin1Char(' '));
}

} // namespace oblino
