#include <core/tasksearch.h>

#include <core/foldedtext.h>
#include <core/taskplaces.h>

namespace oblino {

namespace {

constexpr char16_t firstNonAscii = 0x80;

constexpr char16_t asciiLower(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
}

constexpr char16_t asciiUpper(char16_t unit)
{
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 0x20) : unit;
}

// Looks for a term in texts, both folded. Nearly all texts are of ASCII alone, where the term is found
// without a folded copy of the text.
class FoldedSearch
{
public:
    explicit FoldedSearch(const QString &term)
        : m_term(foldedText(term))
        , m_first(m_term.isEmpty() ? u'\0' : m_term.front().unicode())
    {
    }

    [[nodiscard]] bool matches(const task &t) const
    {
        return contains(t.name) || contains(t.desc) || contains(t.client) || contains(t.teamMember) ||
               contains(t.key);
    }

private:
    [[nodiscard]] bool contains(const QString &text) const
    {
        if (m_term.isEmpty())
            return true;
        const char16_t upper = asciiUpper(m_first);
        char16_t all = 0;
        for (const QChar *c = text.cbegin(); c != text.cend(); ++c) {
            const char16_t unit = c->unicode();
            all |= unit;
            if ((unit == m_first || unit == upper) && isAt({c, text.cend()}))
                return true;
        }
        return all >= firstNonAscii && foldedText(text).contains(m_term);
    }

    // Says no to what is not ASCII.
    [[nodiscard]] bool isAt(QStringView text) const
    {
        if (text.size() < m_term.size())
            return false;
        for (qsizetype i = 0; i < m_term.size(); ++i) {
            if (text.at(i) >= firstNonAscii || asciiLower(text.at(i).unicode()) != m_term.at(i))
                return false;
        }
        return true;
    }

    QString m_term;
    char16_t m_first;
};

} // namespace

QList<task> tasksMatching(const QList<task> &tasks, const QString &term)
{
    const FoldedSearch search(term);
    TaskPlaces places;
    places.reserve(static_cast<size_t>(tasks.size()));
    for (qsizetype place = 0; place < tasks.size(); ++place) {
        if (search.matches(tasks.at(place)))
            places.push_back(place);
    }
    return tasksAt(tasks, places);
}

} // namespace oblino
