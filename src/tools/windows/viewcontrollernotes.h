#pragma once

#include <files/filewatch.h>
#include <tools/notesfile.h>
#include <tools/windows/filewindow.h>

#include <QTimer>

#include <chrono>
#include <memory>

namespace oblino {

namespace Ui {
class ViewControllerNotes;
}

class TaskManager;

/// The notes pad: one text, loaded when the window is made, saved while it is shown, every 30 seconds and
/// soon after the last key, and once more when it goes away. What another program makes of the file is shown,
/// unless the text here is not saved.
class ViewControllerNotes final : public FileWindow
{
    Q_OBJECT

public:
    /// @param store         says whether the appearance is dark
    /// @param interval      between two savings
    /// @param afterLastKey  how long nothing more must be typed before what was is saved
    ViewControllerNotes(TaskManager &store, Documents &documents, QWidget *parent = nullptr,
                        std::chrono::milliseconds interval = std::chrono::seconds(30),
                        std::chrono::milliseconds afterLastKey = std::chrono::seconds(2));
    ~ViewControllerNotes() override;

    /// @return false when writing failed; without a documents folder nothing is written
    bool saveToFile();

    /// Puts the file's text into the pad, where it can be read.
    /// @return nothing of use: an empty text
    QString readFromFile();

    void tick(const QTimer &firing);

    void discard() override;
    [[nodiscard]] QString workTitle() const override;
    [[nodiscard]] bool isUnsaved() const override;
    [[nodiscard]] QByteArray unsavedContent() const override;
    [[nodiscard]] QString unsavedFileName() const override;

protected:
    void viewDidAppear() override;
    void viewWillDisappear() override;
    void viewDidDisappear() override;
    void save() override { saveToFile(); }
    void revert() override { readFromFile(); }
    void showNotice(const QString &notice) override;
    void forgetSteps() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void viewDidLoad();
    [[nodiscard]] bool isEdited() const;
    void readWhatOthersWrote();
    void showText(const QString &text);

    TaskManager &m_store;
    NotesFile m_file;
    std::unique_ptr<Ui::ViewControllerNotes> m_ui;
    QTimer timer; // while the window is shown
    QTimer m_afterLastKey;
    std::unique_ptr<FileWatch> m_watch; // none without a documents folder
    bool m_isOnlyHere = false;          // the file no longer has the text that it had
};

} // namespace oblino
