#include <core/tasksearch.h>

#include <core/foldedtext.h>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

constexpr char separator = '\xff'; // which UTF-8 never holds, so that no term reaches over two fields

void appendFolded(std::string &folded, const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() >= 0x80) {
            folded += foldedText(text).toStdString();
            return;
        }
    }
    for (const QChar c : text)
        folded += static_cast<char>(c >= u'A' && c <= u'Z' ? c.unicode() + 0x20 : c.unicode());
}

std::string foldedTexts(const task &t)
{
    std::string folded;
    folded.reserve(static_cast<size_t>(t.name.size() + t.desc.size() + t.client.size() + t.teamMember.size() +
                                       t.key.size() + 5));
    for (const QString *text : {&t.name, &t.desc, &t.client, &t.teamMember, &t.key}) {
        appendFolded(folded, *text);
        folded += separator;
    }
    return folded;
}

} // namespace

TaskPlaces TaskSearch::matching(const QList<task> &tasks, const QString &term)
{
    const std::string folded = foldedText(term).toStdString();
    const auto count = static_cast<size_t>(tasks.size());
    const bool narrows =
        m_found && m_folded.size() == count && folded.find(m_term) != std::string::npos && !m_term.empty();
    m_folded.resize(count);
    TaskPlaces found;
    if (narrows) {
        std::copy_if(m_found->cbegin(), m_found->cend(), std::back_inserter(found), [&](qsizetype place) {
            return matches(tasks.at(place), static_cast<size_t>(place), folded);
        });
    } else {
        for (size_t place = 0; place < count; ++place) {
            if (matches(tasks.at(static_cast<qsizetype>(place)), place, folded))
                found.push_back(static_cast<qsizetype>(place));
        }
    }
    m_term = folded;
    m_found = found;
    return found;
}

bool TaskSearch::matches(const task &t, size_t place, const std::string &term)
{
    std::string &folded = m_folded[place];
    if (folded.empty())
        folded = foldedTexts(t);
    return folded.find(term) != std::string::npos;
}

void TaskSearch::change(qsizetype place)
{
    m_found.reset();
    if (static_cast<size_t>(place) < m_folded.size())
        m_folded[static_cast<size_t>(place)].clear();
}

void TaskSearch::remove(qsizetype place)
{
    m_found.reset();
    if (static_cast<size_t>(place) < m_folded.size())
        m_folded.erase(m_folded.begin() + place);
}

void TaskSearch::exchange(qsizetype first, qsizetype second)
{
    change(first);
    change(second);
}

void TaskSearch::clear()
{
    m_found.reset();
    m_folded.clear();
}

} // namespace oblino
