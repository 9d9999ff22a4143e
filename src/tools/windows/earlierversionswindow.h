#pragma once

#include <base/datakind.h>
#include <controls/toolwindow.h>
#include <files/earlierversions.h>
#include <tools/versioncontent.h>
#include <tools/windows/versiontablemodel.h>

#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

namespace oblino {

namespace Ui {
class EarlierVersionsWindow;
}

class Documents;
class EmptyState;
class NoticeLog;
class NotificationCenter;
class TaskListFile;
class TaskManager;
class UIUtil;

/// What the window of earlier versions works on.
struct EarlierVersionsData
{
    TaskManager &store;
    const TaskListFile &taskList;
    Documents &documents;
    NotificationCenter &notifications; ///< told "reload" when tasks were restored
    UIUtil &utilities;
    NoticeLog &notices;
    QString privateFolder; ///< where earlier versions lie
    /// Has an open window of the kind save what it holds, since it will read its file again.
    /// @return an error in words for the user, empty when nothing of it is unsaved
    std::function<QString(DataKind kind)> saveOpen = [](DataKind) { return QString(); };
    /// Called when an earlier version has taken the place of what the file of that kind held, or of the list
    /// in memory.
    std::function<void(DataKind kind)> restored = [](DataKind) {};
};

/// The earlier versions of the list, the notes and the whiteboard: a table of them, a look at the selected
/// one, and commands that restore or delete it. What a restored version replaces is kept first. Beside them
/// stands what the user was told in this run.
class EarlierVersionsWindow : public ToolWindow
{
    Q_OBJECT

public:
    explicit EarlierVersionsWindow(EarlierVersionsData data, QWidget *parent = nullptr);
    ~EarlierVersionsWindow() override;

    /// Lists the versions anew, and holds nothing of those that are gone.
    void refresh();
    void dataErased(DataKind /*kind*/) override { refresh(); }

protected:
    void viewDidAppear() override;
    void changeEvent(QEvent *event) override;

private:
    void prepareTabs();
    void prepareTable();
    void connectControls();

    [[nodiscard]] bool showsNotices() const;
    [[nodiscard]] DataKind kind() const;
    [[nodiscard]] EarlierVersions versions() const;
    [[nodiscard]] QString filePath() const;
    [[nodiscard]] Today today() const;
    [[nodiscard]] VersionContent contentOf(const EarlierVersion &version) const;
    [[nodiscard]] int selectedRow() const;

    void list(int row);
    void refreshIfChanged();
    void summariseNext();
    void showSelected();
    void showNotices();
    void enableButtons();

    void restore();
    void restoreSelectedTasks();
    void finishRestoring(const QString &error);
    [[nodiscard]] QString restoreBytes();
    void removeSavedRescues();
    void removeSelected();

    EarlierVersionsData m_data;
    std::unique_ptr<Ui::EarlierVersionsWindow> m_ui;
    EmptyState *m_emptyState;
    VersionTableModel m_model;
    Today m_today;
    QList<task> m_comparedTasks; // the list that m_today was made of
    VersionContent m_content;    // of the selected version
    QTimer m_work;               // fills in one row after the other
};

} // namespace oblino
