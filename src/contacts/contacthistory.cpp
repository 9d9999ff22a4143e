#include <contacts/contacthistory.h>

#include <QUndoCommand>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

constexpr qsizetype shownLength = 40; // characters of a name

QString shortened(const QString &name)
{
    const QString start = name.left(shownLength).simplified();
    return name.size() > shownLength ? start + QChar(u'…') : start;
}

} // namespace

class ContactHistory::Change : public QUndoCommand
{
public:
    Change(ContactHistory &history, const QString &text)
        : QUndoCommand(text)
        , m_history(history)
    {
    }

protected:
    [[nodiscard]] ContactModel &contacts() const { return *m_history.m_contacts; }
    void touch(int row) { m_history.m_touchedRow = row; }

private:
    ContactHistory &m_history;
};

class ContactHistory::Adding : public Change
{
public:
    using Change::Change;

    void redo() override
    {
        touch(contacts().rowCount());
        contacts().insert(contacts().rowCount(), {});
    }
    void undo() override
    {
        contacts().removeRow(contacts().rowCount() - 1);
        touch(contacts().rowCount() - 1);
    }
};

class ContactHistory::Editing : public Change
{
public:
    Editing(ContactHistory &history, const QString &text, const QModelIndex &cell, QString after)
        : Change(history, text)
        , m_row(cell.row())
        , m_column(cell.column())
        , m_before(cell.data().toString())
        , m_after(std::move(after))
    {
    }

    void redo() override { show(m_after); }
    void undo() override { show(m_before); }

private:
    void show(const QString &text)
    {
        contacts().setData(contacts().index(m_row, m_column), text);
        touch(m_row);
    }

    int m_row;
    int m_column;
    QString m_before;
    QString m_after;
};

class ContactHistory::Removing : public Change
{
public:
    /// @param rows  rising
    Removing(ContactHistory &history, const QString &text, QList<int> rows)
        : Change(history, text)
        , m_rows(std::move(rows))
    {
    }

    void redo() override
    {
        std::for_each(m_rows.crbegin(), m_rows.crend(), [this](int row) { m_taken += contacts().take(row); });
        touch(std::min(m_rows.first(), contacts().rowCount() - 1));
    }
    void undo() override
    {
        for (const int row : std::as_const(m_rows))
            contacts().insert(row, m_taken.takeLast());
        touch(m_rows.first());
    }

private:
    QList<int> m_rows;
    QList<ContactModel::Contact> m_taken; // from the last to the first
};

void ContactHistory::add()
{
    push(new Adding(*this, tr("Add")));
}

void ContactHistory::setText(int row, ContactColumn column, const QString &text)
{
    const QString before = m_contacts->text(row, column);
    if (text == before)
        return;
    const QString name = m_contacts->text(row, NameColumn);
    QString step = name.isEmpty() ? tr("Change Number") : tr("Change Number of “%1”").arg(shortened(name));
    if (column == NameColumn)
        step = (before.isEmpty() ? tr("Enter “%1”") : tr("Rename “%1”"))
                   .arg(shortened(before.isEmpty() ? text : before));
    push(new Editing(*this, step, m_contacts->index(row, column), text));
}

void ContactHistory::remove(QList<int> rows)
{
    std::sort(rows.begin(), rows.end());
    if (rows.isEmpty())
        return;
    const QString name = m_contacts->text(rows.first(), NameColumn);
    QString step = name.isEmpty() ? tr("Remove") : tr("Remove “%1”").arg(shortened(name));
    if (rows.size() > 1)
        step = tr("Remove %1 Contacts").arg(rows.size());
    push(new Removing(*this, step, rows));
}

} // namespace oblino
