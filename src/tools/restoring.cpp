#include <tools/restoring.h>

#include <core/taskkey.h>
#include <core/tasklistfile.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <files/earlierversions.h>
#include <files/safefile.h>

#include <QHash>

namespace oblino {

namespace {

// @return why nothing may be replaced
QString keepPresent(EarlierVersions &versions, const QByteArray &bytes)
{
    const QString error = bytes.isEmpty() ? QString() : versions.keep(bytes, VersionReason::Restored);
    return error.isEmpty()
               ? QString()
               : QStringLiteral("What is there now could not be kept, so nothing was restored. %1")
                     .arg(error);
}

QList<task> withInvertedColors(QList<task> tasks)
{
    for (task &t : tasks)
        t.color = t.color.inverted();
    return tasks;
}

void replaceList(TaskManager &store, const QList<task> &tasks)
{
    const bool hasSelection = store.selected() >= 0;
    const QString selected = store.getSelectedTask().key;
    if (store.isSearching())
        store.setBackupTasks(tasks);
    else
        store.setTasks(tasks);
    // The index of before may lead to any other task now.
    store.setSelected(hasSelection ? selected : QString());
}

} // namespace

QList<task> withTasks(QList<task> list, const QList<task> &added)
{
    QHash<QString, qsizetype> places;
    for (qsizetype place = list.size() - 1; place >= 0; --place)
        places.insert(list.at(place).key, place);
    for (const task &t : added) {
        if (const qsizetype place = places.value(t.key, -1); place >= 0)
            list[place] = t;
        else
            list.append(t);
    }
    return list;
}

QString restoreList(TaskManager &store, const TaskListFile &file, EarlierVersions &versions,
                    QList<task> tasks)
{
    QString error = keepPresent(versions, taskListText(store.fullList(), file.invertedColors()));
    if (!error.isEmpty())
        return error;
    for (task &t : tasks) {
        if (t.key.isEmpty())
            t.key = newUuidText();
    }
    replaceList(store, file.invertedColors() ? withInvertedColors(std::move(tasks)) : tasks);
    return {};
}

QString restoreTasks(TaskManager &store, const TaskListFile &file, EarlierVersions &versions,
                     const QList<task> &tasks)
{
    const QList<task> present = store.fullList();
    QString error =
        restoreList(store, file, versions,
                    withTasks(file.invertedColors() ? withInvertedColors(present) : present, tasks));
    for (qsizetype place = present.size(); error.isEmpty() && place < store.fullList().size(); ++place)
        store.tellAdded(store.fullList().at(place).key);
    return error;
}

QString restoreFile(SafeFile &file, EarlierVersions &versions, const QByteArray &bytes)
{
    const FileReading present = file.read();
    if (present.outcome == FileReading::Outcome::Failed)
        return QStringLiteral("What is there now could not be read, so nothing was restored. %1")
            .arg(present.error);
    QString error = keepPresent(versions, present.bytes);
    if (!error.isEmpty())
        return error;
    FileWriting writing = file.write(bytes);
    return writing.written ? QString() : std::move(writing.error);
}

} // namespace oblino
