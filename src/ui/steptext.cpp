#include <ui/steptext.h>

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <array>

namespace oblino {

namespace {

struct StepTexts
{
    ChangeKind kind;
    const char *one;  // with a place for the name of the task
    const char *many; // with a place for their number
};

constexpr auto stepTexts = std::to_array<StepTexts>({
    {ChangeKind::Add, QT_TRANSLATE_NOOP("StepText", "Add “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Add %1 Tasks")},
    {ChangeKind::Edit, QT_TRANSLATE_NOOP("StepText", "Edit “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Edit %1 Tasks")},
    {ChangeKind::Close, QT_TRANSLATE_NOOP("StepText", "Close “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Close %1 Tasks")},
    {ChangeKind::Reopen, QT_TRANSLATE_NOOP("StepText", "Reopen “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Reopen %1 Tasks")},
    {ChangeKind::Hide, QT_TRANSLATE_NOOP("StepText", "Hide “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Hide %1 Tasks")},
    {ChangeKind::Unhide, QT_TRANSLATE_NOOP("StepText", "Unhide “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Unhide %1 Tasks")},
    {ChangeKind::Clone, QT_TRANSLATE_NOOP("StepText", "Clone “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Clone %1 Tasks")},
    {ChangeKind::Delete, QT_TRANSLATE_NOOP("StepText", "Delete “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Delete %1 Tasks")},
    {ChangeKind::Move, QT_TRANSLATE_NOOP("StepText", "Move “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Move %1 Tasks")},
    {ChangeKind::Sort, QT_TRANSLATE_NOOP("StepText", "Sort"), QT_TRANSLATE_NOOP("StepText", "Sort")},
    {ChangeKind::Repeat, QT_TRANSLATE_NOOP("StepText", "Repeat “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Repeat “%1”")},
    {ChangeKind::Restore, QT_TRANSLATE_NOOP("StepText", "Restore “%1”"),
     QT_TRANSLATE_NOOP("StepText", "Restore %1 Tasks")},
    {ChangeKind::Merge, QT_TRANSLATE_NOOP("StepText", "Update from Cloud"),
     QT_TRANSLATE_NOOP("StepText", "Update from Cloud")},
    {ChangeKind::OtherProgram, QT_TRANSLATE_NOOP("StepText", "Changes of Another Program"),
     QT_TRANSLATE_NOOP("StepText", "Changes of Another Program")},
});

} // namespace

QString stepText(const TaskStep &step)
{
    constexpr qsizetype longest = 40; // of a name in a menu
    const auto *const texts = std::ranges::find(stepTexts, step.kind, &StepTexts::kind);
    if (texts == stepTexts.end())
        return {};
    qsizetype count = 0;
    for (const ListChange &change : step.changes)
        count += change.tasks().size();
    const bool isOne = count <= 1;
    QString text = QCoreApplication::translate("StepText", isOne ? texts->one : texts->many);
    if (count == 0 || !text.contains(QLatin1String("%1")))
        return text;
    QString name = step.changes.first().tasks().value(0).name.simplified();
    if (name.size() > longest)
        name = name.first(longest - 1) + QChar(u'…');
    const bool isNamed = isOne || step.kind == ChangeKind::Repeat;
    return text.arg(isNamed ? name : QLocale().toString(count));
}

} // namespace oblino
