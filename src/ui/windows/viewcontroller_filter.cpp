// What of a view the table shows.
#include <ui/windows/viewcontroller.h>

#include <ui/windows/tasktable.h>
#include <ui_viewcontroller.h>

#include <base/clock.h>
#include <core/taskmanager.h>
#include <core/taskviews.h>

namespace oblino {

void ViewController::applyFilter(qsizetype rowsInView)
{
    const bool isGlobal = viewIndex() >= globalAllView && viewIndex() < globalAllView + 3;
    m_model.setMarks(today(), isGlobal);
    m_model.setRows(rowsInView, [this](int row) -> const task & { return m_store.taskInView(row); });
    m_ui->tblView->setReorderHint(reorderHint());
}

void ViewController::repeatTask() {}

} // namespace oblino
