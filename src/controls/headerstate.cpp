#include <controls/headerstate.h>

#include <QHeaderView>
#include <QList>

#include <algorithm>
#include <optional>

namespace oblino {

namespace {

struct Section
{
    int column = 0;
    std::optional<int> width; // none where it is hidden
};

// Empty for a text that is none of those.
QList<Section> sectionsIn(const QString &state, int count)
{
    constexpr int widest = 10'000;
    QList<Section> sections;
    QList<bool> isTaken(count, false);
    for (const QString &part : state.split(QLatin1Char(','))) {
        bool isNumber = false;
        const int column = part.section(QLatin1Char(':'), 0, 0).toInt(&isNumber);
        if (!isNumber || column < 0 || column >= count || isTaken.at(column))
            return {};
        isTaken[column] = true;
        const QString text = part.section(QLatin1Char(':'), 1);
        std::optional<int> width;
        if (text != QLatin1String("-")) {
            width = text.toInt(&isNumber);
            if (!isNumber || *width <= 0 || *width > widest)
                return {};
        }
        sections.append({column, width});
    }
    const bool areAll = sections.size() == count;
    const bool isAnyShown =
        std::ranges::any_of(sections, [](const Section &s) { return s.width.has_value(); });
    return areAll && isAnyShown ? sections : QList<Section>();
}

} // namespace

QString headerState(const QHeaderView &header)
{
    QStringList parts;
    for (int place = 0; place < header.count(); ++place) {
        const int column = header.logicalIndex(place);
        parts += QString::number(column) + QLatin1Char(':') +
                 (header.isSectionHidden(column) ? QStringLiteral("-")
                                                 : QString::number(header.sectionSize(column)));
    }
    return parts.join(QLatin1Char(','));
}

void restoreHeader(QHeaderView &header, const QString &state)
{
    const QList<Section> sections = sectionsIn(state, header.count());
    for (int place = 0; place < sections.size(); ++place) {
        const auto &[column, width] = sections.at(place);
        header.moveSection(header.visualIndex(column), place);
        header.setSectionHidden(column, !width);
        if (width)
            header.resizeSection(column, *width);
    }
}

} // namespace oblino
