#pragma once

#include <tools/versioncontent.h>
#include <ui/windows/tasktablemodel.h>

#include <QStackedWidget>

#include <memory>

namespace oblino {

namespace Ui {
class VersionLook;
}

/// A read-only look at an earlier version: a table of tasks, a text, or a picture.
class VersionLook : public QStackedWidget
{
    Q_OBJECT

public:
    explicit VersionLook(QWidget *parent = nullptr);
    ~VersionLook() override;

    /// @param dark    whether tasks are shown in the inverted colours of the dark appearance
    /// @param asText  whether a list is shown as the bytes that were kept, rows that are no tasks included
    void show(const VersionContent &content, bool dark, bool asText);
    /// Shows a sentence, and holds nothing of a version any more.
    void showMessage(const QString &sentence);

    /// The tasks whose rows are selected, in their order and in the colours of the light appearance.
    [[nodiscard]] QList<task> selectedTasks() const;

Q_SIGNALS:
    void selectionChanged();

private:
    void prepareTable();
    void clear();
    void fill(const VersionContent &content, bool dark, bool asText);

    QList<task> m_tasks;      // in the colours of the light appearance
    QList<task> m_shownTasks; // in those of the present one
    TaskTableModel m_model;
    std::unique_ptr<Ui::VersionLook> m_ui;
};

} // namespace oblino
