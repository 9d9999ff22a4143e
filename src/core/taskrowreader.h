#pragma once

#include <core/task.h>
#include <core/textmemo.h>

#include <QDate>
#include <QHash>
#include <QStringView>

#include <array>
#include <optional>

namespace oblino {

/// Reads rows of the task list file. It remembers days and repeated texts, so that a list whose tasks share
/// dates, states and people is read quickly and held once.
class TaskRowReader
{
public:
    static constexpr qsizetype knownFields = 20; ///< those that have a meaning

    /// @param day  today, around which two-digit years lie (see fileDays())
    explicit TaskRowReader(QDate day);

    /// Splits a row into its fields. Fields past the last that has a meaning are counted, not kept.
    void split(QStringView row);
    [[nodiscard]] qsizetype fieldCount() const { return m_count; }

    /// The task in the row that was last split; none when the row cannot be read: fewer than 12 fields, 15 to
    /// 17 fields, or a day or number that is none. A colour component that is not finite counts as missing,
    /// and is that of opaque white.
    /// @param defaults  the times of a row that has none
    /// @param dark      whether colours are held inverted
    [[nodiscard]] std::optional<task> read(const DefaultTimes &defaults, bool dark);

private:
    [[nodiscard]] QStringView field(qsizetype position) const
    {
        return m_fields[static_cast<size_t>(position - 1)];
    }
    [[nodiscard]] bool hasKey() const;
    [[nodiscard]] bool hasTimes() const { return m_count >= 18 && m_count <= 20; }
    [[nodiscard]] std::optional<QDateTime> day(QStringView text);
    [[nodiscard]] std::optional<Color> color();
    [[nodiscard]] std::optional<DefaultTimes> timesOfRow() const;
    [[nodiscard]] QString shared(QStringView text);

    int m_firstYear;
    std::array<QStringView, knownFields> m_fields;
    qsizetype m_count = 0;
    QHash<int, QDateTime> m_days;
    TextMemo<std::optional<Color>> m_colors;
    TextMemo<QString> m_texts;
};

} // namespace oblino
