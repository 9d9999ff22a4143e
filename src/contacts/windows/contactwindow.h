#pragma once

#include <contacts/contactmodel.h>
#include <contacts/windows/contactlist.h>

#include <QDialog>

#include <memory>

class QPushButton;

namespace oblino {

class ContactTable;

/// What the two management windows have in common: a table of the contacts of one entity, with a container
/// of the window's own. Edits are pending until the window goes away, by whatever way; then they are saved.
class ContactWindow : public QDialog
{
    Q_OBJECT

public:
    void viewWillAppear();
    void viewWillDisappear();

    /// Shows what the store holds of the entity, in place of what is pending, where the window is for it.
    void reload(const FetchRequest &request);

protected:
    struct Outlets
    {
        ContactTable *table;
        ContactList *list;
        QPushButton *add;
        QPushButton *remove;
    };

    /// @param folder  where the contacts lie
    ContactWindow(const QString &folder, QWidget *parent);
    ~ContactWindow() override;

    /// Opens the container and shows the objects of the entity.
    /// @param plural  what they are called in the middle of a sentence
    void openStore(const Outlets &outlets, const FetchRequest &request, const QString &plural);

    void addContact();
    void removeContacts();

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showUnopened(const QString &error, const QString &plural);
    void enableRemoving();

    std::unique_ptr<PersistentContainer> m_container;
    ManagedObjectContext *managedObjectContext = nullptr;
    Outlets m_outlets = {};
    FetchRequest m_request;
    QString m_removeToolTip;  // while something is selected
    QString m_nothingToolTip; // while nothing is
};

} // namespace oblino
