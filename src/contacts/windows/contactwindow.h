#pragma once

#include <base/unsavedwork.h>
#include <contacts/contactmodel.h>
#include <contacts/windows/contactlist.h>

#include <QDialog>
#include <QTimer>

#include <chrono>
#include <memory>

class QPushButton;

namespace oblino {

class ContactTable;

/// What the two management windows have in common: a table of the contacts of one entity, with a container
/// of the window's own. Edits are pending until the window goes away, by whatever way; then they are saved.
/// Where that fails they stay, and it is tried again now and then; with Qt::WA_DeleteOnClose the window
/// outlives its closing until it has worked.
class ContactWindow : public QDialog, public UnsavedWork
{
    Q_OBJECT

public:
    void viewWillAppear();
    void viewWillDisappear();

    /// Shows what the store holds of the entity, in place of what is pending, where the window is for it.
    /// What is pending goes even where the store cannot be read.
    void reload(const FetchRequest &request);

    [[nodiscard]] QString workTitle() const override { return m_names.title; }
    /// An editor that is open counts, whatever was typed there.
    [[nodiscard]] bool isUnsaved() const override;
    [[nodiscard]] QString saveNow() override;
    /// A line a contact: name, tab, number.
    [[nodiscard]] QByteArray unsavedContent() const override;
    [[nodiscard]] QString unsavedFileName() const override { return m_names.file; }
    [[nodiscard]] QString rescue() override;

Q_SIGNALS:
    /// Edits could not be saved; they are kept, and saving is tried again.
    /// @param errorInWords  a sentence for the user
    void savingFailed(const QString &errorInWords);
    /// There are no such edits any more.
    void saved();

protected:
    struct Outlets
    {
        ContactTable *table;
        ContactList *list;
        QPushButton *add;
        QPushButton *remove;
    };

    /// What the contacts are called.
    struct Names
    {
        QString plural; ///< in the middle of a sentence
        QString title;  ///< at its start, with the article
        QString file;   ///< for one with their text
    };

    /// @param folder         where the contacts lie
    /// @param retryInterval  between two attempts to save what could not be saved
    ContactWindow(const QString &folder, QWidget *parent, std::chrono::milliseconds retryInterval);
    ~ContactWindow() override;

    /// Opens the container and shows the objects of the entity.
    void openStore(const Outlets &outlets, const FetchRequest &request, const Names &names);

    /// For destructors: has the window go away as it does otherwise, and tells nobody any more.
    void saveAtEnd();

    void addContact();
    void removeContacts();

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showUnopened(const QString &error);
    void enableRemoving();

    QString save(std::chrono::milliseconds patience);
    void retry();
    void settle();

    QString m_folder;
    std::unique_ptr<PersistentContainer> m_container;
    ManagedObjectContext *managedObjectContext = nullptr;
    Outlets m_outlets = {};
    FetchRequest m_request;
    Names m_names;
    QTimer m_retry;
    QString m_problem;              // why the last saving failed; empty where it did not
    bool m_outlivesClosing = false; // and is to go once its edits are saved
    QString m_removeToolTip;        // while something is selected
    QString m_nothingToolTip;       // while nothing is
};

} // namespace oblino
