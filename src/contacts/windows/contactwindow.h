#pragma once

#include <base/unsavedwork.h>
#include <contacts/contacthistory.h>
#include <contacts/contacts.h>
#include <controls/toolwindow.h>

#include <QTimer>

#include <chrono>
#include <memory>

namespace oblino {

class ContactList;
class ContactStore;

namespace Ui {
class ContactWindow;
}

/// What the two management windows have in common: a table of the contacts of one entity, with a container
/// of the window's own. Edits are pending until the window goes away, by whatever way; then they are saved.
/// Until then they can be undone and redone, step by step.
/// Where that fails they stay, and it is tried again now and then; with Qt::WA_DeleteOnClose the window
/// outlives its closing until it has worked.
class ContactWindow : public ToolWindow, public UnsavedWork
{
    Q_OBJECT

public:
    void viewWillAppear() override;
    void viewWillDisappear() override;
    void dataErased(DataKind kind) override;

    /// Shows what the store holds of the entity, in place of what is pending, where the window is for it.
    /// What is pending goes even where the store cannot be read.
    void reload(const FetchRequest &request);

    [[nodiscard]] QString workTitle() const override;
    /// An editor that is open counts, whatever was typed there.
    [[nodiscard]] bool isUnsaved() const override;
    [[nodiscard]] QString saveNow() override;
    /// A line a contact: name, tab, number.
    [[nodiscard]] QByteArray unsavedContent() const override;
    [[nodiscard]] QString unsavedFileName() const override { return m_kind.rescueFile; }
    [[nodiscard]] QString rescue() override;

Q_SIGNALS:
    /// Edits could not be saved; they are kept, and saving is tried again.
    /// @param errorMessage  a sentence for the user
    void savingFailed(const QString &errorMessage);
    /// There are no such edits any more.
    void saved();

protected:
    /// What tells the windows apart.
    struct Kind
    {
        FetchRequest request;
        QString rescueFile;
        QString tableName; ///< the table's object name
        QString title;     ///< the window's
        QString singular;  ///< in the middle of a sentence
        QString plural;
    };

    /// @param folder         where the contacts lie
    /// @param retryInterval  between two attempts to save what could not be saved
    ContactWindow(Kind kind, const QString &folder, QWidget *parent, std::chrono::milliseconds retryInterval);
    ~ContactWindow() override;

    /// Opens the container and shows the contacts.
    void openStore();

    /// Called when the user has changed a name.
    virtual void nameChange(QObject * /*sender*/) {}

    void addContact();
    void removeContacts();

    std::unique_ptr<Ui::ContactWindow> m_ui;

private:
    void connectCommands();
    void enableCommands();
    void editContact();
    void step(void (QUndoStack::*direction)());
    void openMenu(const QPoint &place);
    [[nodiscard]] QStringList selectedNumbers() const;

    QString save(std::chrono::milliseconds timeout);
    void retry();
    void finishSaving();

    Kind m_kind;
    QString m_folder;
    std::unique_ptr<ContactStore> persistentContainer;
    ContactStore *managedObjectContext = nullptr; // none without a store
    ContactHistory m_history;
    ContactList *m_list;
    QTimer m_retry;
    QString m_problem;              // why the last saving failed; empty where it did not
    bool m_outlivesClosing = false; // and is to go once its edits are saved
};

} // namespace oblino
