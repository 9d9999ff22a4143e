#include <core/tasklistfile.h>

#include <core/tasklistreader.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <platform/trace.h>

#include <utility>

namespace oblino {

namespace {

QString rowCount(qsizetype rows)
{
    return rows == 1 ? QStringLiteral("1 row") : QStringLiteral("%1 rows").arg(rows);
}

} // namespace

TaskListFile::TaskListFile(TaskManager &store, Documents &documents)
    : m_store(store)
    , m_documents(documents)
{
}

bool TaskListFile::saveToFile()
{
    const QByteArray text = taskListText(m_store.fullList(), m_invertedColors);
    if (SafeFile *file = m_documents.file(name)) {
        if (!keepUnreadableRows(*file))
            return false;
        const FileWriting writing = file->write(text);
        m_notices += writing.notices;
        if (!writing.written)
            return failed(writing.error);
        trace("Write File", text);
    } else {
        m_notices += QStringLiteral("There is no documents folder, so the list is not kept.");
    }
    m_unsaved = false;
    followAppearance();
    return true;
}

QString TaskListFile::readFromFile()
{
    m_unreadableRows.clear();
    SafeFile *file = m_documents.file(name);
    m_notices += m_documents.takeNotices();
    if (!file)
        return {};
    const FileReading reading = file->read();
    if (reading.outcome != FileReading::Outcome::Read) {
        trace("Error");
        if (reading.outcome == FileReading::Outcome::Failed)
            m_notices += QStringLiteral("%1 could not be read: %2").arg(name, reading.error);
        return {};
    }
    TaskListText list = decodedTaskList(reading.bytes);
    m_unreadableRows = std::move(list.unreadableRows);
    trace("Read File", list.text);
    return std::move(list.text);
}

QString TaskListFile::splitStringFile(const QString &joinedStr)
{
    const TaskListReading reading = addTaskList(joinedStr, m_store);
    m_invertedColors = reading.invertedColors;
    m_unreadableRows += reading.unreadableRows;
    m_unsaved = false;
    if (!m_unreadableRows.isEmpty()) {
        m_notices +=
            QStringLiteral("%1 of %2 cannot be read. Nothing is lost: the next save keeps what they hold "
                           "in a file of its own.")
                .arg(rowCount(m_unreadableRows.size()), name);
    }
    return {};
}

void TaskListFile::followAppearance()
{
    if (m_invertedColors == m_store.inDarkMode())
        return;
    m_store.invertColors();
    m_invertedColors = m_store.inDarkMode();
}

QString TaskListFile::path() const
{
    return m_documents.path(name);
}

QString TaskListFile::erase()
{
    QString error = m_documents.erase(name);
    if (error.isEmpty())
        m_unreadableRows.clear();
    return error;
}

QStringList TaskListFile::takeNotices()
{
    return std::exchange(m_notices, {});
}

bool TaskListFile::keepUnreadableRows(SafeFile &file)
{
    if (m_unreadableRows.isEmpty())
        return true;
    const SettingAside kept = file.setAside(m_unreadableRows.join(separatorRowsFile) + separatorRowsFile);
    if (!kept.error.isEmpty())
        return failed(kept.error);
    m_notices += QStringLiteral("%1 of %2 could not be read and now lie in %3.")
                     .arg(rowCount(m_unreadableRows.size()), name, kept.path);
    m_unreadableRows.clear();
    return true;
}

bool TaskListFile::failed(const QString &error)
{
    trace("Error");
    m_unsaved = true;
    m_notices += QStringLiteral("The list could not be saved: %1 Your changes stay in this window; the next "
                                "change tries again.")
                     .arg(error);
    return false;
}

} // namespace oblino
