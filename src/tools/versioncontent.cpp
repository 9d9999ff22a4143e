#include <tools/versioncontent.h>

#include <core/tasklistreader.h>
#include <core/tasklistwriter.h>
#include <files/safefile.h>

#include <QLocale>
#include <QUtf8StringView>

#include <algorithm>

namespace oblino {

namespace {

bool isPartOfList(const VersionContent &content)
{
    return content.kind == DataKind::Tasks && !isWhole(content.reason);
}

// Rows that are not blank, with what follows the last separator.
qsizetype rowsIn(const QByteArray &bytes)
{
    const QList<QByteArray> rows = bytes.split(separatorRowsFile);
    return std::count_if(rows.cbegin(), rows.cend(),
                         [](const QByteArray &row) { return !row.trimmed().isEmpty(); });
}

QString counted(qsizetype count, const QString &one, const QString &many)
{
    return count == 1 ? one : many.arg(count);
}

} // namespace

QString reasonText(VersionReason reason)
{
    switch (reason) {
    case VersionReason::Daily:
        return QStringLiteral("Before the first change of the day");
    case VersionReason::OtherProgram:
        return QStringLiteral("Another program had changed the file");
    case VersionReason::Unread:
        return QStringLiteral("Replaced without having been read");
    case VersionReason::Interrupted:
        return QStringLiteral("A save that was not completed");
    case VersionReason::Damaged:
        return QStringLiteral("Damaged record of a save");
    case VersionReason::Quarantined:
        return QStringLiteral("Rows that could not be read");
    case VersionReason::Conflict:
        return QStringLiteral("Changed here and elsewhere: from elsewhere");
    case VersionReason::Replaced:
        return QStringLiteral("Before another program’s version took its place");
    case VersionReason::Restored:
        return QStringLiteral("Before an earlier version was restored");
    case VersionReason::Rescued:
        return QStringLiteral("Could not be saved when Oblino ended");
    }
    return {};
}

bool isWhole(VersionReason reason)
{
    return reason != VersionReason::Quarantined && reason != VersionReason::Conflict &&
           reason != VersionReason::Damaged;
}

VersionContent versionContent(DataKind kind, VersionReason reason, const FileReading &reading)
{
    VersionContent content{.kind = kind, .reason = reason, .bytes = reading.bytes};
    if (reading.outcome == FileReading::Outcome::Missing)
        content.error = QStringLiteral("It is no longer there.");
    else if (reading.outcome == FileReading::Outcome::Failed)
        content.error = reading.error;
    else if (kind == DataKind::Whiteboard)
        content.picture = QImage::fromData(reading.bytes, "PNG");
    if (kind == DataKind::Tasks) {
        content.tasks = tasksInText(reading.bytes, {}, false);
        content.unreadableRows = rowsIn(reading.bytes) - content.tasks.size();
    }
    return content;
}

VersionSummary versionSummary(const VersionContent &content, const Today &today)
{
    if (!content.error.isEmpty())
        return {QStringLiteral("?"), QStringLiteral("?"), content.error};
    if (content.kind != DataKind::Tasks) {
        const bool isSame = content.bytes == today.bytes;
        return {QLocale().formattedDataSize(content.bytes.size(), 1, QLocale::DataSizeTraditionalFormat),
                isSame ? QStringLiteral("same") : QStringLiteral("differs"),
                isSame ? QStringLiteral("today: the same") : QStringLiteral("today: something else")};
    }
    if (content.tasks.isEmpty() && content.unreadableRows > 0)
        return {QLocale().toString(0), QStringLiteral("–"), QStringLiteral("No task in it can be read.")};
    ListDifference difference = today.list.since(ComparedList(content.tasks));
    if (isPartOfList(content))
        difference.added = 0; // the others were never in it
    return {QLocale().toString(content.tasks.size()), differenceText(difference),
            differenceWords(difference)};
}

QString versionNote(const VersionContent &content)
{
    QStringList sentences;
    if (!content.error.isEmpty())
        return content.error;
    if (content.unreadableRows > 0 && !content.tasks.isEmpty())
        sentences += counted(content.unreadableRows,
                             QStringLiteral("1 row of it is no task that can be read; it stays here."),
                             QStringLiteral("%1 rows of it are no tasks that can be read; they stay here."));
    if (isPartOfList(content) && !content.tasks.isEmpty())
        sentences += QStringLiteral("These are single tasks: restoring them leaves all others as they are.");
    return sentences.join(QLatin1Char(' '));
}

QString restoringError(const VersionContent &content)
{
    if (!content.error.isEmpty())
        return content.error;
    switch (content.kind) {
    case DataKind::Tasks:
        return content.tasks.isEmpty() && content.unreadableRows > 0
                   ? QStringLiteral("No task in it can be read.")
                   : QString();
    case DataKind::Notes:
        return isWhole(content.reason) && QUtf8StringView(content.bytes).isValidUtf8()
                   ? QString()
                   : QStringLiteral("It is not a text that the notes pad can read.");
    case DataKind::Whiteboard:
        return content.picture.isNull() ? QStringLiteral("It is not a picture that the whiteboard can show.")
                                        : QString();
    default:
        return {};
    }
}

} // namespace oblino
