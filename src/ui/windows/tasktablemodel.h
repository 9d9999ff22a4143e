#pragma once

#include <core/task.h>
#include <core/taskmarks.h>

#include <QAbstractTableModel>
#include <QColor>
#include <QDate>
#include <QHash>
#include <QString>

#include <functional>

namespace oblino {

/// Tasks as rows of eleven columns. The rows change only as a whole; the tasks lie with whoever shows them.
class TaskTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// The whole text behind a cell that shows only the beginning.
    static constexpr int wholeTextRole = Qt::UserRole;

    static constexpr int dateColumn = 0;
    static constexpr int nameColumn = 3;
    static constexpr int descriptionColumn = 6;
    static constexpr int statusColumn = 7;
    static constexpr int priorityColumn = 8;
    static constexpr int dueColumn = 9;
    static constexpr int keyColumn = 10;

    using QAbstractTableModel::QAbstractTableModel;

    /// The identifiers of the columns, in order.
    [[nodiscard]] static const QStringList &identifiers();
    /// The titles of the columns, in order.
    [[nodiscard]] static const QStringList &titles();
    [[nodiscard]] static Qt::Alignment alignmentOf(int column);

    using TaskAt = std::function<const task &(int row)>;

    /// @param taskAt  finds the task of each row, until the rows change again
    void setRows(qsizetype count, TaskAt taskAt);
    [[nodiscard]] const task &row(int row) const { return m_taskAt(row); }

    /// @param today        the day of the marks
    /// @param marksHidden  whether hidden tasks are marked, which are told from others by nothing else
    void setMarks(QDate today, bool marksHidden);
    [[nodiscard]] TaskMarks marks(int row) const { return marksOf(m_taskAt(row), m_today); }
    [[nodiscard]] bool isMarkedHidden(int row) const { return m_marksHidden && m_taskAt(row).hidden; }

    /// The text of a cell.
    [[nodiscard]] QString objectValueFor(int column, int row) const;
    /// The background of a row that comes into sight.
    [[nodiscard]] QColor didAdd(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    /// Rows can be dragged, but no row can be dropped into another.
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    [[nodiscard]] QString spokenText(int column, int row) const;

    QDate m_today;
    bool m_marksHidden = false;
    int m_count = 0;
    TaskAt m_taskAt;
    mutable QHash<int, QColor> m_backgrounds; // of the rows that have come into sight
};

} // namespace oblino
