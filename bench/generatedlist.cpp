#include "generatedlist.h"

#include <array>
#include <random>

namespace oblino::bench {

namespace {

// The numbers are laid down by the standard, unlike those of its distributions and its shuffle.
class Dice
{
public:
    size_t below(size_t limit) { return m_engine() % limit; }
    bool oneIn(size_t limit) { return below(limit) == 0; }
    template<typename List>
    const auto &oneOf(const List &list)
    {
        return list[below(std::size(list))];
    }

private:
    std::mt19937 m_engine;
};

const QString clients[] = {QStringLiteral("Harbor Cafe"),  QStringLiteral("Miller & Sons"),
                           QStringLiteral("Town Hall"),    QStringLiteral("Oak Street 12"),
                           QStringLiteral("Green Grocer"), QStringLiteral("Dr. Weber"),
                           QStringLiteral("Library"),      QStringLiteral("North Garage")};
const QString people[] = {QStringLiteral("Dana"), QStringLiteral("Joe"),   QStringLiteral("Maria"),
                          QStringLiteral("Pat"),  QStringLiteral("Nadia"), QStringLiteral("Hassan")};
const QString states[] = {QStringLiteral("Open"), QStringLiteral("Closed")};
const QString priorities[] = {QStringLiteral("Low"), QStringLiteral("Medium"), QStringLiteral("High")};
const QString work[] = {QStringLiteral("Paint"),   QStringLiteral("Mend"),      QStringLiteral("Measure"),
                        QStringLiteral("Collect"), QStringLiteral("Order"),     QStringLiteral("Inspect"),
                        QStringLiteral("Clean"),   QStringLiteral("Call about")};
const QString things[] = {
    QStringLiteral("fence"),        QStringLiteral("wall"),    QStringLiteral("stair rail"),
    QStringLiteral("back door"),    QStringLiteral("windows"), QStringLiteral("roof tiles"),
    QStringLiteral("garden bench"), QStringLiteral("lamps"),   QStringLiteral("cellar")};
const QString foreignThings[] = {QStringLiteral("Türgriff"), QStringLiteral("escalier à droite"),
                                 QStringLiteral("забор"), QStringLiteral("屋根"), QStringLiteral("balcón 🌿")};
const QString words[] = {QStringLiteral("two"),   QStringLiteral("coats"), QStringLiteral("when"),
                         QStringLiteral("dry"),   QStringLiteral("ring"),  QStringLiteral("first"),
                         QStringLiteral("key"),   QStringLiteral("under"), QStringLiteral("mat"),
                         QStringLiteral("bring"), QStringLiteral("long"),  QStringLiteral("ladder")};
constexpr std::array palette = {Color(1, 1, 1, 1),   Color(1, 0.5, 0, 1),   Color(0.8, 0.9, 1, 1),
                                Color(1, 1, 0.6, 1), Color(0.7, 1, 0.7, 1), Color(1, 0.8, 0.8, 0.5)};
constexpr size_t daysOfOneYear = 365;
constexpr size_t longestDescription = 80;

QString key(Dice &dice)
{
    QString text = QStringLiteral("00000000-0000-4000-8000-000000000000");
    for (QChar &unit : text) {
        if (unit == u'0')
            unit = u"0123456789ABCDEF"[dice.below(16)];
    }
    return text;
}

QString name(Dice &dice)
{
    const QString article = dice.oneIn(2) ? QStringLiteral(" the ") : QStringLiteral(" a ");
    const QString &thing = dice.below(100) < 3 ? dice.oneOf(foreignThings) : dice.oneOf(things);
    return dice.oneOf(work) + article + thing + QLatin1Char(' ') + QString::number(dice.below(1000));
}

QString description(Dice &dice)
{
    const auto length = static_cast<qsizetype>(dice.below(longestDescription + 1));
    const QLatin1Char blank(dice.oneIn(8) ? '\n' : ' ');
    QString text = dice.oneIn(500) ? QStringLiteral("Zeppelin ") : QString();
    while (text.size() < length)
        text += dice.oneOf(words) + blank;
    text.truncate(length);
    return text;
}

Color color(Dice &dice)
{
    if (!dice.oneIn(20))
        return dice.oneOf(palette);
    const auto component = [&dice] { return static_cast<double>(dice.below(256)) / 255; };
    return {component(), component(), component(), 1};
}

QDateTime day(Dice &dice, QDate middle)
{
    return middle.addDays(static_cast<qint64>(dice.below(2 * daysOfOneYear)) - qint64{daysOfOneYear})
        .startOfDay();
}

} // namespace

QList<task> generatedTasks(qsizetype count, QDate middle)
{
    Dice dice;
    QList<task> tasks;
    tasks.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        const size_t status = dice.below(std::size(states));
        const size_t priority = dice.below(std::size(priorities));
        tasks.append(task{.key = key(dice),
                          .date = day(dice, middle),
                          .name = name(dice),
                          .desc = description(dice),
                          .client = dice.oneOf(clients),
                          .teamMember = dice.oneOf(people),
                          .color = color(dice),
                          .due = day(dice, middle),
                          .status = static_cast<qint64>(status),
                          .priority = static_cast<qint64>(priority),
                          .statusName = states[status],
                          .priorityName = priorities[priority],
                          .hidden = dice.oneIn(8),
                          .startHour = static_cast<qint64>(7 + dice.below(6)),
                          .startMin = static_cast<qint64>(15 * dice.below(4)),
                          .endHour = static_cast<qint64>(13 + dice.below(6)),
                          .endMin = static_cast<qint64>(15 * dice.below(4))});
    }
    return tasks;
}

QList<task> shuffled(QList<task> tasks)
{
    Dice dice;
    for (qsizetype left = tasks.size(); left > 1; --left)
        tasks.swapItemsAt(left - 1, static_cast<qsizetype>(dice.below(static_cast<size_t>(left))));
    return tasks;
}

} // namespace oblino::bench
