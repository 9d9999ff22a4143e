#include <core/tasksearch.h>

#include <QStringMatcher>
#include <QVarLengthArray>

#include <algorithm>

namespace oblino {

namespace {

// Looks for a lower-cased term in texts. Texts of ASCII alone, nearly all there are, are lower-cased into a
// buffer that is kept; QString::toLower() makes a text each time.
class LowerCaseSearch
{
public:
    explicit LowerCaseSearch(const QString &term)
        : m_matcher(term.toLower(), Qt::CaseSensitive)
    {
    }

    bool matches(const task &t)
    {
        return contains(t.name) || contains(t.desc) || contains(t.client) || contains(t.teamMember) ||
               contains(t.key);
    }

private:
    bool contains(const QString &text) { return m_matcher.indexIn(lowered(text)) >= 0; }

    QStringView lowered(const QString &text)
    {
        m_buffer.resize(text.size());
        const char16_t *units = QStringView(text).utf16();
        char16_t all = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t unit = units[i];
            all = static_cast<char16_t>(all | unit);
            const bool upper = static_cast<char16_t>(unit - u'A') <= u'Z' - u'A';
            m_buffer[i] = static_cast<char16_t>(unit + (upper ? 0x20 : 0));
        }
        if (all < 0x80)
            return {m_buffer.constData(), m_buffer.size()};
        m_lowered = text.toLower();
        return m_lowered;
    }

    QStringMatcher m_matcher;
    QVarLengthArray<char16_t, 1024> m_buffer;
    QString m_lowered;
};

} // namespace

QList<task> tasksMatching(const QList<task> &tasks, const QString &term)
{
    LowerCaseSearch search(term);
    QList<task> matches;
    std::copy_if(tasks.cbegin(), tasks.cend(), std::back_inserter(matches),
                 [&search](const task &t) { return search.matches(t); });
    return matches;
}

} // namespace oblino
