#pragma once

#include <QString>

class QAction;

namespace oblino {

/// Lets the text and the tool tip of an Undo or Redo command say which step it takes, and disables it where
/// there is none.
/// @param step  such as "Remove “Ann”"; empty for none
void showUndoStep(QAction &undo, const QString &step);
void showRedoStep(QAction &redo, const QString &step);

} // namespace oblino
