#include <support/testmain.h>
#include <support/traces.h>

#include <messaging/schedule.h>

#include <QLocale>

using namespace oblino;

namespace {

QDateTime at(int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(2026, 3, day), QTime(hour, minute));
}

task taskOn(const QDateTime &start, const char *name, const char *client = "ACME",
            const char *member = "Dana")
{
    return {.date = start,
            .name = QLatin1String(name),
            .client = QLatin1String(client),
            .teamMember = QLatin1String(member),
            .due = start.addDays(1),
            .startHour = 9,
            .startMin = 5,
            .endHour = 17,
            .endMin = 30};
}

ScheduleTerms march(int first, int last, const char *title = "Plan", const char *footer = "Bye")
{
    return {.rangeStart = at(first, 23, 59),
            .rangeEnd = at(last, 0, 0),
            .title = QLatin1String(title),
            .footer = QLatin1String(footer),
            .shortDate = [](const QDateTime &moment) {
                return QLocale(QLocale::English, QLocale::UnitedStates)
                    .toString(moment.date(), QLocale::ShortFormat);
            }};
}

struct Composed
{
    QStringList messages;
    qint64 steps = 0;
    qint64 schedules = 0;
};

Composed composed(RecipientKind kind, const Recipient &recipient, const QList<task> &tasks,
                  const ScheduleTerms &terms)
{
    Composed result;
    composeSchedule(kind, recipient, tasks, terms,
                    {.step = [&result] { return ++result.steps; },
                     .found = [&result] { ++result.schedules; },
                     .send = [&result](const QString &message) { result.messages += message; },
                     .stops = [] { return false; }});
    return result;
}

} // namespace

class tst_schedule : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void composesHeaderLinesAndFooter_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("footer");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("client, named in another case")
            << int(RecipientKind::Client) << "acme"
            << "Bye"
            << QStringList{QStringLiteral("Plan\nClient Schedule: ACME\n3/3/26-3/5/26\n\r"),
                           QStringLiteral("3/3/26 09:05AM-3/4/26 05:30PM first-Dana"),
                           QStringLiteral("3/5/26 09:05AM-3/6/26 05:30PM second-Bo"), QStringLiteral("Bye")};
        QTest::newRow("team member, no footer")
            << int(RecipientKind::TeamMember) << "DANA"
            << ""
            << QStringList{QStringLiteral("Plan\nTeam Member Schedule: Dana\n3/3/26-3/5/26\n\r"),
                           QStringLiteral("3/3/26 09:05AM-3/4/26 05:30PM first-ACME")};
        QTest::newRow("nobody's tasks") << int(RecipientKind::Client) << "acme "
                                        << "Bye" << QStringList();
        QTest::newRow("no name") << int(RecipientKind::Client) << ""
                                 << "Bye" << QStringList();
    }

    void composesHeaderLinesAndFooter()
    {
        QFETCH(int, kind);
        QFETCH(QString, name);
        QFETCH(QString, footer);
        QFETCH(QStringList, messages);
        const QList<task> tasks = {taskOn(at(3), "first"), taskOn(at(4), "other", "", "Nobody"),
                                   taskOn(at(5), "second", "ACME", "Bo")};
        ScheduleTerms terms = march(3, 5);
        terms.footer = footer;
        const Composed result = composed(RecipientKind(kind), {name, QStringLiteral("+1 555")}, tasks, terms);
        QCOMPARE(result.messages, messages);
        QCOMPARE(result.steps, 3);
        QCOMPARE(result.schedules, std::max<qint64>(0, messages.size() - (footer.isEmpty() ? 1 : 2)));
    }

    void takesTasksThatStartOnADayOfTheRange_data()
    {
        QTest::addColumn<QDateTime>("start");
        QTest::addColumn<bool>("taken");
        QTest::newRow("the day before, due within") << at(27, 23, 59) << false;
        QTest::newRow("first day, earlier than the range's time") << at(28, 0, 0) << true;
        QTest::newRow("the day without an hour") << QDate(2026, 3, 29).startOfDay() << true;
        QTest::newRow("last day, later than the range's time") << at(30, 23, 59) << true;
        QTest::newRow("the day after") << at(31) << false;
    }

    void takesTasksThatStartOnADayOfTheRange()
    {
        QFETCH(QDateTime, start);
        QFETCH(bool, taken);
        QCOMPARE(isScheduled(taskOn(start, "t"), RecipientKind::Client, {QStringLiteral("ACME"), {}},
                             march(28, 30)),
                 taken);
    }

    void takesHiddenAndClosedTasks()
    {
        task t = taskOn(at(3), "t");
        t.hidden = true;
        t.status = ClosedStatus;
        QVERIFY(isScheduled(t, RecipientKind::Client, {QStringLiteral("ACME"), {}}, march(3, 3)));
    }

    void ordersByStart()
    {
        QString names;
        for (const task &t : scheduledOrder(
                 {taskOn(at(4), "d"), taskOn(at(3, 9), "b"), taskOn(at(3, 9), "c"), taskOn(at(3, 8), "a")}))
            names += t.name;
        QCOMPARE(names, QStringLiteral("abcd"));
    }

    void tracesItsWay()
    {
        const QByteArray traces = tracesOf([] {
            (void)composed(RecipientKind::TeamMember, {QStringLiteral("dana"), QStringLiteral("+1")},
                           {taskOn(at(3), "t")}, march(3, 3));
        });
        QVERIFY(traces.startsWith("row value: dana\nrow value: +1\nSending messages ...\nSending step: 1\n"));
        QVERIFY(traces.contains("\nTask Found: t Dana +1\n"));
    }
};

OBLINO_TEST(tst_schedule, QCoreApplication)

#include "tst_schedule.moc"
