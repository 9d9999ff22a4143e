#pragma once

#include <base/color.h>

#include <QDateTime>
#include <QList>
#include <QString>

namespace oblino {

/// Times of day that a new task gets; see TaskManager.
struct DefaultTimes
{
    qint64 startHour = 8;
    qint64 startMin = 0;
    qint64 endHour = 17;
    qint64 endMin = 0;
};

/// The default times of the shared task store at this moment.
[[nodiscard]] DefaultTimes sharedDefaultTimes();
/// The moment at which a task is made.
[[nodiscard]] QDateTime creationTime();

/// One task: a plain value. The dates carry the day, the four integers the time of day; nothing ties them
/// together.
struct task
{
    QString key = QStringLiteral("NoKey");         ///< unique; usually 36 characters of an upper-case UUID
    QDateTime date = creationTime();               ///< start date
    QString name = QStringLiteral("Unnamed");      ///< short title
    QString desc = QStringLiteral("UnDescribed");  ///< may hold several lines
    QString client = QStringLiteral("UnAssigned"); ///< a copy of the client's name
    QString teamMember = QStringLiteral("UnAssigned"); ///< a copy of the team member's name
    Color color = {};
    QDateTime due = creationTime();                      ///< due date
    qint64 status = 0;                                   ///< index into the forms' status list
    qint64 priority = 0;                                 ///< index into the forms' priority list
    QString statusName = QStringLiteral("NoStatus");     ///< display text of the status
    QString priorityName = QStringLiteral("NoPriority"); ///< display text of the priority
    bool hidden = false;                                 ///< left out of the ordinary views
    qint64 startHour = sharedDefaultTimes().startHour;   ///< 0..23
    qint64 startMin = sharedDefaultTimes().startMin;     ///< 0..59
    qint64 endHour = sharedDefaultTimes().endHour;       ///< 0..23
    qint64 endMin = sharedDefaultTimes().endMin;         ///< 0..59

    [[nodiscard]] bool operator==(const task &other) const = default;
};

/// A task put together from its fields.
[[nodiscard]] task makeTask(const QString &key, const QDateTime &date, const QString &name,
                            const QString &desc, const Color &color, const QDateTime &due, qint64 status,
                            qint64 priority, const QString &statusName, const QString &priorityName,
                            bool hidden, qint64 startHour, qint64 startMin, qint64 endHour, qint64 endMin,
                            const QString &client, const QString &teamMember);

/// The two values of task::status that have a meaning of their own.
enum TaskStatus : qint64 { OpenStatus = 0, ClosedStatus = 1 };

/// Sets a task to status 1, "Closed".
void closeTask(task &t);
/// Sets a task to status 0, "Open".
void reopenTask(task &t);

/// The trace form of a task: its key and its name.
void appendTrace(QByteArray &line, const task &t);

} // namespace oblino

Q_DECLARE_TYPEINFO(oblino::task, Q_RELOCATABLE_TYPE);
