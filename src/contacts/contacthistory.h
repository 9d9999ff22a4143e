#pragma once

#include <contacts/contactmodel.h>

#include <QList>
#include <QString>
#include <QUndoStack>

namespace oblino {

/// The steps by which contacts were added, edited and removed, to be undone and redone. While it has any, the
/// contacts change by nothing else; once they are written or loaded anew it is to be cleared, as a contact
/// that comes back would be another one on disk. The texts of the steps name the contact.
class ContactHistory : public QUndoStack
{
    Q_OBJECT

public:
    using QUndoStack::QUndoStack;

    /// Nothing can be done before.
    void setContacts(ContactModel &contacts) { m_contacts = &contacts; }

    /// Adds an empty contact at the end.
    void add();
    void setText(int row, ContactColumn column, const QString &text);
    /// Removes the contacts of these rows, in any order, as one step.
    void remove(QList<int> rows);

    /// Where the last step happened, be it done, undone or redone.
    [[nodiscard]] int touchedRow() const { return m_touchedRow; }

private:
    class Change;
    class Adding;
    class Editing;
    class Removing;

    ContactModel *m_contacts = nullptr;
    int m_touchedRow = 0;
};

} // namespace oblino
