#include <core/tasklistreader.h>

#include <base/clock.h>
#include <base/trace.h>
#include <base/utf8.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <core/taskrowreader.h>

#include <QUtf8StringView>

#include <string>
#include <utility>

namespace oblino {

namespace {

bool isBlank(QStringView text)
{
    return text.trimmed().isEmpty();
}

// The trace form of the list of a row's fields.
QByteArray listedFields(const QByteArray &row)
{
    std::string list = "[";
    for (const char c : row) {
        if (c == separatorFieldsFile)
            list += ", ";
        else
            list += c;
    }
    return QByteArray::fromStdString(list + ']');
}

void traceRow(QStringView row)
{
    const QByteArray text = row.toUtf8();
    trace("Row:", text);
    trace("Fields:", listedFields(text));
}

// Calls `each` with every row, in order. @return what follows the last separator, which is no row
template<typename Each>
QStringView forEachRow(QStringView text, Each each)
{
    for (qsizetype end = 0; (end = text.indexOf(QLatin1Char(separatorRowsFile))) >= 0;
         text = text.sliced(end + 1))
        each(text.first(end));
    return text;
}

// Rows that an earlier release set aside stand under heading lines, as in "== 2026-10-01 10:31:07 NAME ==".
QStringView withoutHeading(QStringView row)
{
    const QStringView start = row.trimmed();
    const qsizetype end = row.indexOf(QLatin1Char('\n'), row.indexOf(start));
    const bool hasHeading =
        start.startsWith(QLatin1String("== ")) && end >= 0 && row.first(end).endsWith(QLatin1String(" =="));
    return hasHeading ? row.sliced(end + 1) : row;
}

} // namespace

TaskListText decodedTaskList(const QByteArray &bytes)
{
    if (std::optional<QString> text = decodedUtf8(bytes))
        return {*std::move(text), {}};
    TaskListText result;
    QByteArray valid;
    const QList<QByteArray> rows = bytes.split(separatorRowsFile);
    for (const QByteArray &row : rows) {
        if (!QUtf8StringView(row).isValidUtf8())
            result.unreadableRows.append(row);
        else
            valid += row + separatorRowsFile;
    }
    if (QUtf8StringView(rows.last()).isValidUtf8())
        valid.chop(1); // what follows the last separator is no row
    result.text = QString::fromUtf8(valid);
    return result;
}

TaskListReading addTaskList(const QString &text, TaskManager &store)
{
    TaskListReading result;
    result.invertedColors = store.inDarkMode();
    TaskRowReader reader(today());
    const DefaultTimes times = store.defaultTimes(); // which the user's tasks set, not those that are read
    trace("No of Rows:", [&text] { return text.count(QLatin1Char(separatorRowsFile)) + 1; });

    const QStringView rest = forEachRow(text, [&](QStringView row) {
        reader.split(row);
        if (result.invertedColors)
            trace("In dark mode -> Invert");
        trace("No of Fields:", reader.fieldCount());
        if (auto t = reader.read(store.defaultTimes(), result.invertedColors)) {
            store.appendTask(std::move(*t));
            if (reader.fieldCount() > TaskRowReader::knownFields)
                result.longRows.append(row.toUtf8());
        } else if (!isBlank(row)) {
            result.unreadableRows.append(row.toUtf8());
        }
        if (reader.fieldCount() == 20)
            trace("20 fields");
        if (Trace::enabled())
            traceRow(row);
    });
    if (!isBlank(rest))
        result.unreadableRows.append(rest.toUtf8());
    store.setDefaultTimes(times);
    store.setBackupTasks(store.tasks());
    return result;
}

QList<task> tasksInText(const QByteArray &bytes, const DefaultTimes &defaults, bool dark)
{
    const QString text = decodedTaskList(bytes).text;
    QList<task> tasks;
    TaskRowReader reader(today());
    forEachRow(text, [&](QStringView row) {
        reader.split(withoutHeading(row));
        if (auto t = reader.read(defaults, dark))
            tasks.append(std::move(*t));
    });
    return tasks;
}

} // namespace oblino
