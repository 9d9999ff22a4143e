#include <controls/undoaction.h>

#include <QAction>
#include <QTextDocument>

namespace oblino {

namespace {

/// @param verb  with a mnemonic, and a place for the step
void showStep(QAction &action, const QString &verb, const QString &step, const QString &otherwise)
{
    const QString sentence = QString(verb).remove(QLatin1Char('&')).arg(step);
    const QString toolTip = Qt::mightBeRichText(sentence) ? sentence.toHtmlEscaped() : sentence;
    action.setEnabled(!step.isEmpty());
    action.setText(verb.arg(QString(step).replace(QLatin1Char('&'), QLatin1String("&&"))).trimmed());
    action.setToolTip(step.isEmpty() ? otherwise : toolTip);
}

} // namespace

void showUndoStep(QAction &undo, const QString &step)
{
    showStep(undo, QObject::tr("&Undo %1"), step, QObject::tr("Nothing to undo."));
}

void showRedoStep(QAction &redo, const QString &step)
{
    showStep(redo, QObject::tr("Re&do %1"), step, QObject::tr("Nothing to redo."));
}

} // namespace oblino
