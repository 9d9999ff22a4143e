#include <core/taskmanager.h>

#include <base/dispatch.h>
#include <base/sharingpicker.h>
#include <core/sharetext.h>
#include <core/taskkey.h>

#include <QLocale>
#include <QPointer>

namespace oblino {

bool TaskManager::shareSelected(QObject *sender)
{
    if (!m_list.selectedTask() || !m_sharingPicker)
        return false;
    Dispatch::main(this, [this, text = shareTextOfSelected(), control = QPointer<QObject>(sender)] {
        if (control)
            m_sharingPicker->show({text}, control, SharingPicker::Edge::Left);
    });
    return true;
}

QString TaskManager::shareTextOfSelected() const
{
    const task *const shared = m_list.selectedTask();
    return shared ? shareText(*shared, getMessageTitle(), getMessageFooter(), newUuidText(), QLocale())
                  : QString();
}

} // namespace oblino
