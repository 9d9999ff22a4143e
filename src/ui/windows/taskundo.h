#pragma once

#include <core/taskstep.h>

#include <QObject>
#include <QUndoStack>

#include <functional>

class QAction;

namespace oblino {

class TaskManager;

/// The steps of the user's on a task store, to be undone and done again. The store must record them.
class TaskUndo : public QObject
{
    Q_OBJECT

public:
    /// @param invertedColors  whether the list holds the inverted colours of the dark appearance at this
    /// moment
    TaskUndo(TaskManager &store, std::function<bool()> invertedColors, QObject *parent = nullptr);

    /// Has two actions undo and do again, and say what.
    void drive(QAction &undo, QAction &redo);

    /// What it means that the list was sorted last.
    enum class Sorting { OwnStep, OfTheStepBefore };
    /// Takes over what was done to the list since this was last called. What was erased takes all steps with
    /// it.
    void take(Sorting sorting = Sorting::OwnStep);
    /// The list as it is now was saved; sorting goes on as a step of its own.
    void setSaved() { m_stack.setClean(); }

    [[nodiscard]] const QUndoStack &stack() const { return m_stack; }

Q_SIGNALS:
    /// The list has changed by a step.
    /// @param key   of the first task that was concerned; empty where it was all
    /// @param said  what was done, a sentence
    void replayed(const QString &key, const QString &said);

private:
    class Command;

    void replay(const TaskStep &step, bool back);

    TaskManager &m_store;
    std::function<bool()> m_invertedColors;
    QUndoStack m_stack;
};

} // namespace oblino
