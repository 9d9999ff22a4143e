#pragma once

#include <base/datakind.h>
#include <core/listdifference.h>
#include <core/task.h>
#include <files/versionname.h>

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

namespace oblino {

struct FileReading;

/// Why a version was kept, in words for a table.
[[nodiscard]] QString reasonText(VersionReason reason);

/// Whether a version of that reason is the whole of what a file held, not just some rows or a record.
[[nodiscard]] bool isWhole(VersionReason reason);

/// What an earlier version holds.
struct VersionContent
{
    DataKind kind = DataKind::Tasks;
    VersionReason reason = VersionReason::Daily;
    QByteArray bytes = {};
    QString error = {};     ///< why it could not be read
    QList<task> tasks = {}; ///< of a list, what can be read of it, in the colours of the light appearance
    qsizetype unreadableRows = 0; ///< of a list
    QImage picture = {};          ///< of the whiteboard
};

[[nodiscard]] VersionContent versionContent(DataKind kind, VersionReason reason, const FileReading &reading);

/// What an earlier version is compared with.
struct Today
{
    ComparedList list;
    QByteArray bytes; ///< of the notes or the whiteboard
};

/// What a table says of a version.
struct VersionSummary
{
    QString amount;     ///< how many tasks, or what size
    QString difference; ///< against today, in short
    QString words;      ///< the same in words
};

[[nodiscard]] VersionSummary versionSummary(const VersionContent &content, const Today &today);

/// What is to be known before a version is looked at or restored, in whole sentences; often nothing.
[[nodiscard]] QString versionNote(const VersionContent &content);

/// Why a version cannot be restored, in a sentence; empty when it can.
[[nodiscard]] QString restoringError(const VersionContent &content);

} // namespace oblino
