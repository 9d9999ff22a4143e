#include <core/changescope.h>

#include <core/taskmanager.h>

namespace oblino {

ChangeScope::ChangeScope(TaskManager &store, ChangeKind kind)
    : m_store(store)
    , m_kind(kind)
    , m_isOuter(store.isRecording())
    , m_before(m_isOuter ? store.fullList() : QList<task>())
{
    m_store.setRecording(false);
}

ChangeScope::~ChangeScope()
{
    if (!m_isOuter)
        return;
    m_store.setRecording(true);
    if (m_store.fullList().constData() == m_before.constData())
        return;
    for (const ListChange &change : ListChange::between(m_before, m_store.fullList()))
        m_store.record(m_kind, change);
}

void ChangeScope::invertColors()
{
    for (task &t : m_before)
        t.color = t.color.inverted();
}

} // namespace oblino
