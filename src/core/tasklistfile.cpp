#include <core/tasklistfile.h>

#include <base/clock.h>
#include <base/trace.h>
#include <core/tasklistreader.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <files/earlierversions.h>

#include <QLocale>

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
    SafeFile *file = m_documents.file(name);
    m_isUnkept = !file && !m_store.fullList().isEmpty();
    if (!file) {
        m_notices += QStringLiteral("There is no documents folder, so the list is not kept.");
    } else {
        m_unsaved = true;
        m_isMerged = mergeForeign(*file) || m_isMerged;
        if (!keepRows(*file))
            return false;
        const QByteArray bytes = text();
        const FileWriting writing = file->write(bytes);
        m_notices += writing.notices;
        if (!writing.written)
            return failed(writing.error, writing.reason);
        trace("Write File", bytes);
        m_savedAt = now();
        m_failure.clear();
    }
    m_unsaved = false;
    m_onlyHere.clear();
    m_trouble.clear();
    followAppearance();
    return true;
}

QByteArray TaskListFile::text() const
{
    return taskListText(m_store.fullList(), m_invertedColors);
}

QString TaskListFile::rescue() const
{
    return m_documents.versions(name).rescue(text());
}

QString TaskListFile::failure() const
{
    if (m_isUnkept)
        return QStringLiteral("no documents folder");
    return m_failure.isEmpty() ? m_onlyHere : m_failure;
}

QString TaskListFile::saveState(const QLocale &locale) const
{
    if (const QString why = failure(); !why.isEmpty())
        return QStringLiteral("Not saved: ") + why;
    const bool isSaved = m_savedAt.isValid();
    return isSaved ? QStringLiteral("Saved ") + locale.toString(m_savedAt.time(), QLocale::ShortFormat)
                   : QString();
}

QString TaskListFile::readFromFile()
{
    m_unreadableRows.clear();
    m_longRows.clear();
    SafeFile *file = m_documents.file(name);
    m_notices += m_documents.takeNotices();
    if (!file)
        return {};
    const FileReading reading = file->read();
    if (reading.outcome != FileReading::Outcome::Read) {
        trace("Error");
        if (reading.outcome == FileReading::Outcome::Failed)
            m_trouble = reading.error;
        return {};
    }
    m_theirs = reading.bytes;
    return decoded(reading.bytes);
}

QString TaskListFile::decoded(const QByteArray &bytes)
{
    TaskListText list = decodedTaskList(bytes);
    m_unreadableRows = std::move(list.unreadableRows);
    m_longRows.clear();
    trace("Read File", list.text);
    return std::move(list.text);
}

QString TaskListFile::splitStringFile(const QString &joinedStr)
{
    const TaskListReading reading = addTaskList(joinedStr, m_store);
    m_invertedColors = reading.invertedColors;
    m_unreadableRows += reading.unreadableRows;
    m_longRows += reading.longRows;
    const SafeFile *file = m_documents.file(name);
    m_unsaved = file && file->isUnfinished();
    if (m_unsaved && m_failure.isEmpty())
        m_failure = QStringLiteral("an interrupted save could not be completed");
    if (!m_unreadableRows.isEmpty()) {
        m_notices +=
            QStringLiteral("%1 of %2 cannot be read. Nothing is lost: the next save keeps what they hold "
                           "among the earlier versions.")
                .arg(rowCount(m_unreadableRows.size()), name);
    }
    if (!m_longRows.isEmpty()) {
        m_notices += QStringLiteral("%1 of %2 with more than a task in them: the next save keeps them as "
                                    "they are among the earlier versions.")
                         .arg(rowCount(m_longRows.size()), name);
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
    if (error.isEmpty()) {
        m_theirs.clear();
        m_trouble.clear();
        m_unreadableRows.clear();
        m_longRows.clear();
        m_unsaved = false;
        m_onlyHere.clear();
        m_failure.clear();
    }
    return error;
}

QStringList TaskListFile::takeNotices()
{
    return std::exchange(m_notices, {});
}

bool TaskListFile::keepRows(SafeFile &file)
{
    const QList<QByteArray> rows = m_unreadableRows + m_longRows;
    if (rows.isEmpty())
        return true;
    const Quarantine kept = file.quarantine(rows.join(separatorRowsFile) + separatorRowsFile);
    if (!kept.error.isEmpty())
        return failed(kept.error, kept.error);
    if (const qsizetype unreadable = m_unreadableRows.size(); unreadable > 0) {
        m_notices += QStringLiteral("%1 of %2 could not be read and now lie in %3.")
                         .arg(rowCount(unreadable), name, kept.path);
    }
    if (!m_longRows.isEmpty()) {
        m_notices += QStringLiteral("%1 of %2 with more than a task in them now lie as found in %3.")
                         .arg(rowCount(m_longRows.size()), name, kept.path);
    }
    m_unreadableRows.clear();
    m_longRows.clear();
    return true;
}

bool TaskListFile::failed(const QString &error, const QString &reason)
{
    trace("Error");
    m_failure = reason;
    m_trouble = error + QStringLiteral(" Your changes stay in this window; the next change tries again.");
    return false;
}

} // namespace oblino
