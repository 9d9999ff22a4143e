#pragma once

#include <tools/notesfile.h>

#include <QDialog>

#include <chrono>
#include <memory>

class QPlainTextEdit;
class QTimer;

namespace oblino {

namespace Ui {
class ViewControllerNotes;
}

class TaskManager;

/// The notes pad: one text, loaded when the window is made, saved every 30 seconds while it is shown and once
/// more when it goes away. With Qt::WA_DeleteOnClose the window all the same outlives its closing while its
/// text is in no file.
class ViewControllerNotes : public QDialog
{
    Q_OBJECT

public:
    /// @param store     says whether the appearance is dark
    /// @param interval  between two savings
    ViewControllerNotes(TaskManager &store, Documents &documents, QWidget *parent = nullptr,
                        std::chrono::milliseconds interval = std::chrono::seconds(30));
    ~ViewControllerNotes() override;

    /// @return false when writing failed; without a documents folder nothing is written
    bool saveToFile();

    /// Puts the file's text into the pad, where it can be read.
    /// @return nothing of use: an empty text
    QString readFromFile();

    void tick(const QTimer &firing);

    /// Gives up a text that is in no file.
    void discard();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void viewDidLoad();
    void viewDidAppear();
    void viewWillDisappear();
    void viewDidDisappear();

    TaskManager &m_store;
    NotesFile m_file;
    std::chrono::milliseconds m_interval;
    std::unique_ptr<Ui::ViewControllerNotes> m_ui;
    QPlainTextEdit *textEdit = nullptr;
    std::unique_ptr<QTimer> timer; // none while the window is not shown
};

} // namespace oblino
