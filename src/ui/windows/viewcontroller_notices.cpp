// What the main window tells, in its status line and below its table.
#include <ui/windows/viewcontroller.h>

#include <controls/noticebar.h>
#include <ui/tabletexts.h>
#include <ui/windows/tasktable.h>

#include <base/clock.h>
#include <ui_viewcontroller.h>

#include <core/taskmanager.h>

#include <QLabel>
#include <QLocale>

#include <utility>

namespace oblino {

void ViewController::updateComplete()
{
    statusMessageLabel->setText(m_store.lastMessage());
}

// Leads to what was added, without selecting it.
void ViewController::showAdded()
{
    const QSet<QString> keys = std::exchange(m_added, {});
    QList<task> added;
    for (const task &t : m_store.fullList()) {
        if (keys.contains(t.key))
            added += t;
    }
    if (added.isEmpty())
        return;
    if (const int row = rowOfKey(added.last().key); row >= 0)
        m_ui->tblView->goToRow(row);
    showMessage(
        addedText(added, viewIndex(), m_store.isSearching() ? m_store.searchTerm() : QString(), today()));
}

// In the status line, where an empty message takes back the last one.
void ViewController::showMessage(const QString &message)
{
    if (!message.isEmpty())
        statusMessageLabel->setText(message);
    else if (!m_said.isEmpty() && statusMessageLabel->text() == m_said)
        statusMessageLabel->setText(m_store.lastMessage());
    m_said = message;
}

void ViewController::showNotices()
{
    m_saveState->setText(m_file.saveState(QLocale()));
    setTrouble(TaskListFile::name, m_file.trouble());
    if (const QStringList notices = m_file.takeNotices(); !notices.isEmpty())
        tell(notices);
}

void ViewController::tell(const QStringList &notices)
{
    m_ui->noticeBar->showNotices(notices);
    for (const QString &notice : notices)
        Q_EMIT told(notice);
}

void ViewController::setTrouble(const QString &thing, const QString &sentence)
{
    const QString before = m_ui->noticeBar->notice();
    m_ui->noticeBar->setTrouble(thing, sentence);
    if (!sentence.isEmpty() && m_ui->noticeBar->notice() != before)
        Q_EMIT told(sentence);
}

QString ViewController::notice() const
{
    return m_ui->noticeBar->notice();
}

} // namespace oblino
