#include <support/testmain.h>

#include <core/sharetext.h>

using namespace oblino;

namespace {

task audit()
{
    return {.key = QStringLiteral("K-1"),
            .date = QDate(2019, 3, 7).startOfDay(),
            .name = QStringLiteral("Audit"),
            .desc = QStringLiteral("Check the books"),
            .client = QStringLiteral("Smith Ltd"),
            .teamMember = QStringLiteral("Ann"),
            .due = QDate(2019, 3, 8).startOfDay(),
            .startHour = 9,
            .startMin = 5,
            .endHour = 17,
            .endMin = 30};
}

} // namespace

class tst_sharetext : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laysOutATask_data()
    {
        QTest::addColumn<task>("shared");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("footer");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("lines");
        QTest::newRow("title, no footer")
            << audit() << "Weekly plan"
            << ""
            << "en_US"
            << "Weekly plan\n\nSchedule: Audit\nStart Date: 3/7/19\nStart Time: 09:05\nEnd Time: 17:30\n"
               "Due Date: 3/8/19\nDescription: Check the books\n\nClient: Smith Ltd\nTeam Member: Ann\n\n"
               "Task Key: K-1\nMessage Key: M-1\n\n\n\n";
        task odd = audit();
        odd.desc = QStringLiteral("a & b\nc %1\n");
        odd.client = QStringLiteral("%2 é🎉");
        odd.startHour = 7;
        odd.endHour = 100;
        odd.endMin = 0;
        QTest::newRow("no title, a footer, lines and marks in the fields")
            << odd << ""
            << "Bye\n%3"
            << "de_DE"
            << "\n\nSchedule: Audit\nStart Date: 07.03.19\nStart Time: 07:05\nEnd Time: 100:00\n"
               "Due Date: 08.03.19\nDescription: a & b\nc %1\n\n\nClient: %2 é🎉\nTeam Member: Ann\n\n"
               "Task Key: K-1\nMessage Key: M-1\n\nBye\n%3\n\n";
    }

    void laysOutATask()
    {
        QFETCH(task, shared);
        QFETCH(QString, title);
        QFETCH(QString, footer);
        QFETCH(QString, locale);
        QFETCH(QString, lines);
        QCOMPARE(shareText(shared, title, footer, QStringLiteral("M-1"), QLocale(locale)),
                 lines + QStringLiteral("Sent with Oblino. Download from the App Store for Mac:\n\n" STORE));
    }
};

OBLINO_TEST(tst_sharetext, QCoreApplication)

#include "tst_sharetext.moc"
