// What another program makes of the task list file while it is open.
#include <core/tasklistfile.h>

#include <base/trace.h>
#include <core/changescope.h>
#include <core/listdifference.h>
#include <core/taskkey.h>
#include <core/tasklistreader.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <core/taskmerge.h>
#include <core/taskrowreader.h>
#include <files/earlierversions.h>

#include <QSet>

#include <algorithm>

namespace oblino {

namespace {

QString taskCount(qsizetype tasks)
{
    return tasks == 1 ? QStringLiteral("1 task") : QStringLiteral("%1 tasks").arg(tasks);
}

QSet<QString> keysOf(const QList<task> &tasks)
{
    QSet<QString> keys;
    for (const task &t : tasks)
        keys.insert(t.key);
    return keys;
}

qsizetype unreadableRowsIn(const QByteArray &bytes)
{
    const QByteArrayList rows = bytes.split(separatorRowsFile);
    const auto filled = std::count_if(rows.cbegin(), rows.cend(),
                                      [](const QByteArray &row) { return !row.trimmed().isEmpty(); });
    return filled - tasksInText(bytes, {}, false).size();
}

bool hasLongRows(const QByteArray &bytes)
{
    const QByteArrayList rows = bytes.split(separatorRowsFile);
    return std::ranges::any_of(rows, [](const QByteArray &row) {
        return row.count(separatorFieldsFile) >= TaskRowReader::knownFields;
    });
}

bool isLastSeen(const SafeFile &file, const FileReading &reading)
{
    return file.hasSeen() && reading.bytes == file.lastSeen();
}

} // namespace

bool TaskListFile::takeUpChanges()
{
    SafeFile *file = m_documents.file(name);
    return file && takeUp(*file);
}

bool TaskListFile::takeUp(SafeFile &file)
{
    if (file.isAsSeen() && m_onlyHere.isEmpty())
        return false;
    const FileReading reading = file.look();
    if (reading.outcome == FileReading::Outcome::Missing) {
        setOnlyHere(file, QStringLiteral("the file is gone"));
        if (!m_onlyHere.isEmpty())
            m_trouble = QStringLiteral(
                            "“%1” is gone. The list stays here, and is written again with the next change.")
                            .arg(name);
        return false;
    }
    if (reading.outcome == FileReading::Outcome::Failed) {
        setOnlyHere(file, QStringLiteral("the file cannot be read"));
        if (!m_unsaved)
            m_trouble = reading.error + QStringLiteral(" The list stays here.");
        return false;
    }
    if (file.isOfUnfinished(reading.bytes))
        return false;
    if (isLastSeen(file, reading)) {
        file.take(reading); // only touched
        m_onlyHere.clear();
        if (!m_unsaved)
            m_trouble.clear();
        return false;
    }
    if (const QString fault = faultOf(file, reading.bytes); !fault.isEmpty()) {
        setOnlyHere(file, QStringLiteral("another program has damaged the file"));
        m_trouble = fault.arg(name) +
                    QStringLiteral(" The list stays here; the next change keeps that version among the "
                                   "earlier ones.");
        return false;
    }
    return m_unsaved ? merge(file, reading) : readAgain(file, reading);
}

void TaskListFile::setOnlyHere(SafeFile &file, const QString &reason)
{
    m_onlyHere = file.hasSeen() && !m_store.fullList().isEmpty() ? reason : QString();
}

bool TaskListFile::mergeForeign(SafeFile &file)
{
    if (file.isAsSeen())
        return false;
    const FileReading reading = file.look();
    return reading.outcome == FileReading::Outcome::Read && !isLastSeen(file, reading) &&
           !file.isOfUnfinished(reading.bytes) && faultOf(file, reading.bytes).isEmpty() &&
           merge(file, reading);
}

// The list in memory does not give way to one that is shorter by accident: what was written halfway ends
// within a row. @return what is wrong with it, with a place for the file's name, or nothing
QString TaskListFile::faultOf(SafeFile &file, const QByteArray &bytes) const
{
    if (!file.hasSeen() || m_store.fullList().isEmpty())
        return {};
    if (!bytes.trimmed().endsWith(separatorRowsFile))
        return QStringLiteral("“%1” was cut short by another program.");
    return unreadableRowsIn(bytes) > unreadableRowsIn(file.lastSeen())
               ? QStringLiteral("Another program wrote rows into “%1” that cannot be read.")
               : QString();
}

bool TaskListFile::readAgain(SafeFile &file, const FileReading &reading)
{
    if (!keepWhatGoes(tasksInText(reading.bytes, m_store.defaultTimes(), m_invertedColors)))
        return false;
    const ComparedList before(m_store.fullList(), m_invertedColors);
    replaceList(file, reading);
    m_theirs = reading.bytes;
    const ListDifference difference = ComparedList(m_store.fullList(), m_invertedColors).since(before);
    m_notices += QStringLiteral("Another program changed the list (%1); it was read again.")
                     .arg(differenceText(difference));
    return true;
}

void TaskListFile::replaceList(SafeFile &file, const FileReading &reading)
{
    file.take(reading);
    m_onlyHere.clear();
    m_trouble.clear();
    const ChangeScope scope(m_store, ChangeKind::OtherProgram);
    // The rows are added to the full list, which is `tasks` only outside a search.
    const bool searching = m_store.isSearching();
    m_store.setIsSearching(false);
    m_store.setTasks({});
    splitStringFile(decoded(reading.bytes));
    m_store.setIsSearching(searching);
}

bool TaskListFile::merge(SafeFile &file, const FileReading &reading)
{
    const DefaultTimes times = m_store.defaultTimes();
    QList<task> theirs = tasksInText(reading.bytes, times, m_invertedColors);
    const bool holdsMore = unreadableRowsIn(reading.bytes) > 0 || hasLongRows(reading.bytes);
    if (holdsMore && !kept(reading.bytes, VersionReason::OtherProgram))
        return false;
    for (task &t : theirs) {
        if (t.key.isEmpty())
            t.key = newUuidText();
    }
    const QByteArray known = file.hasSeen() ? file.lastSeen() : QByteArray();
    TaskMerge merge = mergedTasks(tasksInText(known, times, m_invertedColors), m_store.fullList(), theirs,
                                  m_invertedColors);
    if (!keepWhatGoes(merge.tasks))
        return false;
    if (!merge.overruled.isEmpty() &&
        !kept(taskListText(merge.overruled, m_invertedColors), VersionReason::Conflict))
        return false;
    file.take(reading);
    m_theirs = reading.bytes;
    m_onlyHere.clear();
    const ChangeScope scope(m_store, ChangeKind::OtherProgram);
    if (m_store.isSearching())
        m_store.setBackupTasks(merge.tasks);
    else
        m_store.setTasks(merge.tasks);
    m_notices += QStringLiteral("Another program changed the list; its changes were taken up.");
    if (!merge.overruled.isEmpty()) {
        m_notices +=
            QStringLiteral("%1 had been changed here and there: it stays as it is here, and the other is "
                           "among the earlier versions.")
                .arg(taskCount(merge.overruled.size()));
    }
    return true;
}

// Keeps the list where tasks of it, or what was changed here since another program last wrote, are not in the
// next one.
bool TaskListFile::keepWhatGoes(const QList<task> &next)
{
    const auto rowsOf = [this](const QList<task> &tasks) {
        const QByteArrayList rows = taskRows(tasks, m_invertedColors);
        return QSet<QByteArray>(rows.cbegin(), rows.cend());
    };
    const QList<task> &here = m_store.fullList();
    const QSet<QByteArray> changedHere =
        rowsOf(here) - rowsOf(tasksInText(m_theirs, m_store.defaultTimes(), m_invertedColors));
    const bool isAllInNext = next.size() >= here.size() && keysOf(next).contains(keysOf(here)) &&
                             rowsOf(next).contains(changedHere);
    return isAllInNext || kept(text(), VersionReason::Replaced);
}

bool TaskListFile::kept(const QByteArray &bytes, VersionReason reason)
{
    const QString error = m_documents.versions(name).keep(bytes, reason);
    if (!error.isEmpty())
        m_trouble = QStringLiteral("Another program changed the list, which cannot be taken up: ") + error;
    return error.isEmpty();
}

void TaskListFile::interfaceModeChanged()
{
    ChangeScope scope(m_store, ChangeKind::OtherProgram);
    const bool wasInverted = m_invertedColors;
    SafeFile *file = m_documents.file(name);
    if (file && (!m_unsaved || saveToFile())) {
        const FileReading reading = file->look();
        if (reading.outcome != FileReading::Outcome::Read)
            trace("Error");
        if (reading.outcome == FileReading::Outcome::Read && isLastSeen(*file, reading))
            replaceList(*file, reading);
        else
            (void)takeUp(*file);
    }
    followAppearance();
    if (m_invertedColors != wasInverted)
        scope.invertColors();
}

} // namespace oblino
