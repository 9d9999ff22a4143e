#pragma once

#include <core/task.h>

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>

namespace oblino {

/// Whose schedule it is; decides which of a task's two people is looked at.
enum class RecipientKind { Client, TeamMember };

/// Somebody who gets messages: a contact's name and phone number, either may be empty.
struct Recipient
{
    QString name;
    QString phoneNo;
};

/// What the schedules of one command have in common.
struct ScheduleTerms
{
    QDateTime rangeStart; ///< only its day matters, as with the end, which is within the range
    QDateTime rangeEnd;
    QString title;  ///< the first line of the header
    QString footer; ///< the last message; none where it is empty
    std::function<QString(const QDateTime &moment)> shortDate;
};

/// What a composition tells while it goes on, in the order in which it happens.
struct ScheduleEvents
{
    /// The next task is looked at. @return how many have been so far, over all recipients of the command
    std::function<qint64()> step;
    /// A task was found to be the recipient's.
    std::function<void()> found;
    /// A message is ready. The composition goes on when this returns.
    std::function<void(const QString &message)> send;
    /// Whether the composition is to be broken off.
    std::function<bool()> stops;
};

/// The tasks in the order in which schedules name them: by start date and time; equal ones stay as they are.
[[nodiscard]] QList<task> scheduledOrder(QList<task> tasks);

/// Whether a task goes into a recipient's schedule: its client or team member has the recipient's name, in
/// whatever case, and it starts on a day of the range. Nobody without a name has tasks.
[[nodiscard]] bool isScheduled(const task &t, RecipientKind kind, const Recipient &recipient,
                               const ScheduleTerms &terms);

/// Composes the messages of one recipient: before the first of their tasks a header, a line for each task,
/// and a footer after the last. Nothing at all for a recipient without tasks.
/// @param tasks  in the order of scheduledOrder()
void composeSchedule(RecipientKind kind, const Recipient &recipient, const QList<task> &tasks,
                     const ScheduleTerms &terms, const ScheduleEvents &events);

} // namespace oblino
