#pragma once

#include <base/datakind.h>
#include <files/earlierversions.h>
#include <tools/versioncontent.h>

#include <QAbstractTableModel>
#include <QList>

#include <optional>

namespace oblino {

/// The table of the earlier versions of one file, newest first. What has to be read for a row is filled in
/// later, row by row.
class VersionTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TimeColumn, ReasonColumn, AmountColumn, DifferenceColumn, columns };

    using QAbstractTableModel::QAbstractTableModel;

    /// A moment in the locale's short form, with the seconds that it leaves out.
    [[nodiscard]] static QString timeText(const QDateTime &time);

    void show(DataKind kind, const QList<EarlierVersion> &versions);
    [[nodiscard]] const EarlierVersion &version(int row) const { return m_rows.at(row).version; }
    /// The row of the version in that file, -1 where there is none.
    [[nodiscard]] int rowOf(const QString &path) const;

    /// The first row from `from` on that lacks its summary, -1 where none does.
    [[nodiscard]] int rowWithoutSummary(int from) const;
    void setSummary(int row, const VersionSummary &summary);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Row
    {
        EarlierVersion version;
        std::optional<VersionSummary> summary;
    };

    [[nodiscard]] static QString text(const Row &row, int column);

    DataKind m_kind = DataKind::Tasks;
    QList<Row> m_rows;
};

} // namespace oblino
