#pragma once

#include <files/earlierversions.h>
#include <tools/versioncontent.h>

#include <QList>
#include <QStandardItemModel>

namespace oblino {

/// The table of the earlier versions of one file, newest first. What has to be read for a row is filled in
/// later, row by row.
class VersionTableModel : public QStandardItemModel
{
    Q_OBJECT

public:
    enum Column { TimeColumn, ReasonColumn, AmountColumn, DifferenceColumn, columns };

    VersionTableModel()
        : QStandardItemModel(0, columns)
    {
    }

    /// A moment in the locale's short form, with the seconds that it leaves out.
    [[nodiscard]] static QString timeText(const QDateTime &time);

    void show(DataKind kind, const QList<EarlierVersion> &versions);
    [[nodiscard]] const QList<EarlierVersion> &versions() const { return m_versions; }

    /// The first row from `from` on, else the first of all, that lacks its summary; -1 where none does.
    [[nodiscard]] int rowWithoutSummary(int from) const;
    void setSummary(int row, const VersionSummary &summary);

private:
    QList<EarlierVersion> m_versions;
};

} // namespace oblino
