#include <ui/windows/taskundo.h>

#include <ui/steptext.h>

#include <core/taskmanager.h>

#include <QAction>

#include <algorithm>
#include <utility>

namespace oblino {

namespace {

// A text of the user's in a menu.
QString inMenu(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

class TaskUndo::Command : public QUndoCommand
{
public:
    Command(TaskUndo &owner, TaskStep step)
        : QUndoCommand(stepText(step))
        , m_owner(owner)
        , m_step(std::move(step))
        , m_isInverted(owner.m_invertedColors())
    {
    }

    void undo() override { replay(true); }
    void redo() override
    {
        if (!std::exchange(m_isNew, false)) // it was done before it was told of
            replay(false);
    }
    [[nodiscard]] int id() const override { return m_step.kind == ChangeKind::Sort ? 1 : -1; }
    bool mergeWith(const QUndoCommand *other) override
    {
        m_step.changes =
            ListChange::joined(m_step.changes + static_cast<const Command *>(other)->m_step.changes);
        setObsolete(m_step.changes.isEmpty());
        return true;
    }

private:
    void replay(bool back)
    {
        if (m_isInverted != m_owner.m_invertedColors()) {
            m_isInverted = !m_isInverted;
            for (ListChange &change : m_step.changes)
                change.invertColors();
        }
        m_owner.replay(m_step, back);
    }

    TaskUndo &m_owner;
    TaskStep m_step;
    bool m_isInverted;
    bool m_isNew = true;
};

TaskUndo::TaskUndo(TaskManager &store, std::function<bool()> invertedColors, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_invertedColors(std::move(invertedColors))
{
    constexpr int mostSteps = 10000; // at 10,000 tasks they take some 30 MB
    m_stack.setUndoLimit(mostSteps);
}

void TaskUndo::drive(QAction &undo, QAction &redo)
{
    const auto follow = [this](QAction &action, auto changed, auto can, const QString &verb) {
        connect(&m_stack, changed, &action, [this, &action, can, verb](const QString &text) {
            action.setText(text.isEmpty() ? verb : verb + QLatin1Char(' ') + inMenu(text));
            action.setEnabled((m_stack.*can)());
        });
        action.setText(verb);
        action.setEnabled(false);
    };
    follow(undo, &QUndoStack::undoTextChanged, &QUndoStack::canUndo, tr("&Undo"));
    follow(redo, &QUndoStack::redoTextChanged, &QUndoStack::canRedo, tr("&Redo"));
    connect(&undo, &QAction::triggered, &m_stack, &QUndoStack::undo);
    connect(&redo, &QAction::triggered, &m_stack, &QUndoStack::redo);
}

void TaskUndo::take(Sorting sorting)
{
    QList<TaskStep> steps = m_store.takeSteps();
    const auto erased = std::ranges::find(steps.rbegin(), steps.rend(), ChangeKind::Erase, &TaskStep::kind);
    if (erased != steps.rend()) {
        m_stack.clear();
        steps.erase(steps.begin(), erased.base());
    }
    if (sorting == Sorting::OfTheStepBefore && steps.size() > 1 &&
        steps.constLast().kind == ChangeKind::Sort) {
        const TaskStep sorted = steps.takeLast();
        steps.last().changes += sorted.changes;
    }
    for (TaskStep &step : steps)
        m_stack.push(new Command(*this, std::move(step)));
}

void TaskUndo::replay(const TaskStep &step, bool back)
{
    m_store.replay(step, back);
    QString key;
    for (const ListChange &change : step.changes) {
        for (const task &t : step.kind == ChangeKind::Delete ? change.taken() : QList<task>()) {
            if (back)
                m_store.restoreTaskToCloud(t);
            else
                m_store.deleteTaskToCloud(t.key);
        }
        if (key.isEmpty() && !change.tasks().isEmpty())
            key = change.tasks().first().key;
    }
    Q_EMIT replayed(key, (back ? tr("Undone: %1.") : tr("Done again: %1.")).arg(stepText(step)));
}

} // namespace oblino
