#pragma once

#include <QAbstractTableModel>
#include <QColor>
#include <QHash>
#include <QString>

namespace oblino {

/// Where the task table gets its rows from; its window.
class TaskTableSource
{
public:
    TaskTableSource() = default;
    TaskTableSource(const TaskTableSource &) = delete;
    TaskTableSource &operator=(const TaskTableSource &) = delete;
    virtual ~TaskTableSource() = default;

    /// Applies the current view and counts it.
    [[nodiscard]] virtual int numberOfRows() = 0;
    /// The text of a cell.
    [[nodiscard]] virtual QString objectValueFor(int column, int row) const = 0;
    /// The whole text behind a cell that shows only the beginning.
    [[nodiscard]] virtual QString wholeTextFor(int column, int row) const = 0;
    /// The background of a row that comes into sight, asked for once.
    [[nodiscard]] virtual QColor didAdd(int row) const = 0;
    /// Number behind a cell that shows a mark beside its text, -1 for none.
    [[nodiscard]] virtual int markFor(int column, int row) const = 0;
};

/// The eleven columns of the task table, in order. The rows change only as a whole, by reload().
class TaskTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role {
        WholeTextRole = Qt::UserRole,
        StatusRole,   ///< a task status, only in the status column
        PriorityRole, ///< a task priority, only in the priority column
    };

    static constexpr int nameColumn = 3;
    static constexpr int keyColumn = 10;

    explicit TaskTableModel(TaskTableSource &source, QObject *parent = nullptr);

    /// The identifiers of the columns, in order.
    [[nodiscard]] static const QStringList &identifiers();
    /// The titles of the columns, in order.
    [[nodiscard]] static const QStringList &titles();

    void reload();

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    [[nodiscard]] QColor backgroundOf(int row) const;

    TaskTableSource &m_source;
    int m_rows = 0;
    mutable QHash<int, QColor> m_backgrounds; // of the rows that were painted
};

} // namespace oblino
