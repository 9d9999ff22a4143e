#include <base/typedday.h>
#include <base/typedtime.h>
#include <support/test.h>

namespace {

const QDate today(2026, 11, 23); // a Monday
const QStringList locales = {u"en_US"_s, u"en_GB"_s, u"de_DE"_s, u"fr_FR"_s, u"sv_SE"_s, u"ja_JP"_s};

using Typed = Table<QString, QString>;

// A row a text: what it means in each locale, in the order of that list, or in all. "-" for nothing.
void addRows(const QList<const char *> &texts, const char *meant)
{
    const Typed row;
    for (const char *typed : texts)
        row(typed, QString::fromUtf8(typed), QString::fromUtf8(meant));
}

// What is read in each locale, once where it is the same.
template<typename Read>
QString readInAll(Read read)
{
    QStringList texts;
    for (const QString &name : locales)
        texts += read(QLocale(name));
    return texts.count(texts.first()) == texts.size() ? texts.first() : texts.join(u' ');
}

} // namespace

class tst_typedday : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsADay_data()
    {
        addRows({"2026-12-25", "20261225", "2026/12/25", "25 Dec 2026", "25 dec 26", "December 25, 2026",
                 "25th of December 2026", "  25.  DEC  ", "2026年12月25日", "12月25日", "２０２６-１２-２５",
                 "Friday 25 December 2026", "+32"},
                "2026-12-25");
        addRows({"today", "heute"}, "2026-11-23");
        addRows({"Tomorrow", "明日"}, "2026-11-24");
        addRows({"fri"}, "2026-11-27");
        addRows({"monday"}, "2026-11-30"); // not today
        addRows({"",
                 "soon",
                 "25",
                 "2026",
                 "Dec 2026",
                 "31.2.2026",
                 "2026-02-29",
                 "12/25/2520!",
                 "25/12/026",
                 "1/2/3/4",
                 "Thursday 25 December 2026",
                 "12:25",
                 "25 Dec Jan",
                 "2026-12-25 10:00",
                 "5 |",
                 "12//25/2026",
                 "-12-25",
                 "12/25/",
                 "1-2/26",
                 "26年12月25日"},
                "-");
        addRows({"12/25/2026", "12/25"}, "2026-12-25 - - - 2026-12-25 2026-12-25");
        addRows({"25.12.2026"}, "- 2026-12-25 2026-12-25 2026-12-25 2026-12-25 2026-12-25");
        addRows({"3/4/26", "03/04/2026"}, "2026-03-04 2026-04-03 2026-04-03 2026-04-03 - -");
        addRows({"25.12."}, "- 2026-12-25 2026-12-25 2026-12-25 - -");
        addRows({"4-1"}, "2027-04-01 2027-01-04 2027-01-04 2027-01-04 2027-04-01 2027-04-01");
        addRows({"251226"}, "- 2026-12-25 2026-12-25 2026-12-25 2025-12-26 2025-12-26");
        addRows({"1/1/76"}, "1976-01-01 1976-01-01 1976-01-01 1976-01-01 - -");
        addRows({"1/1/75"}, "2075-01-01 2075-01-01 2075-01-01 2075-01-01 - -");
        addRows({"Fr."}, "- - 2026-11-27 - - -");
        addRows({"金曜日"}, "- - - - - 2026-11-27");
        addRows({"2026年12月25日金曜日"}, "- - - - - 2026-12-25");
        addRows({"1er février 27"}, "- - - 2027-02-01 - -");
        addRows({"25 mar"}, "2027-03-25 2027-03-25 2027-03-25 - 2027-03-25 2027-03-25"); // mardi or mars
    }
    void readsADay()
    {
        const auto [typed, meant] = Typed::cells();
        const QString read = readInAll([typed = typed](const QLocale &locale) {
            const auto day = readDay(typed, locale, today);
            return day ? day->toString(Qt::ISODate) : u"-"_s;
        });
        QCOMPARE(read, meant);
    }

    void readsATime_data()
    {
        addRows({"930", "0930", "9:30", "9.30", "09:30:00", "9h30", "9:30 am", "9:30a", "930 AM", "9 h 30",
                 "9:30 Uhr", "kl 9.30", "9時30分", "９：３０", "9:30 a.m."},
                "09:30");
        addRows({"14:30", "1430", "2:30p", "2:30 PM", "230pm", "14h30", "14.30 Uhr"}, "14:30");
        addRows({"9"}, "09:00");
        addRows({"12p"}, "12:00");
        addRows({"0:05", "12:05 am", "0:05am"}, "00:05");
        addRows({"", "24:00", "9:75", "9:5", "9:", "14:30 pm", "13 am", "9:30:30", "930x", "99", "12345", "a",
                 "-9", "fri"},
                "-");
    }
    void readsATime()
    {
        const auto [typed, meant] = Typed::cells();
        const QString read = readInAll([typed = typed](const QLocale &locale) {
            const auto time = readTime(typed, locale);
            return time ? time->toString(u"HH:mm"_s) : u"-"_s;
        });
        QCOMPARE(read, meant);
    }

    void readsWhatTheLocaleWrites()
    {
        for (const QString &name :
             locales + QStringList{u"es_ES"_s, u"pt_BR"_s, u"ar_EG"_s, u"bg_BG"_s, u"zh_TW"_s}) {
            const QLocale locale(name);
            for (QDate day(1976, 1, 1); day.year() < 2076; day = day.addDays(day.year() == 2026 ? 1 : 61)) {
                for (const QString &text : {shortDay(day, locale), locale.toString(day, QLocale::ShortFormat),
                                            locale.toString(day, QLocale::LongFormat)})
                    QVERIFY2(readDay(text, locale, today) == day, qPrintable(text));
            }
            for (int minute = 0; minute < 24 * 60; minute += 7) {
                const QTime time(minute / 60, minute % 60);
                QVERIFY2(readTime(shortTime(time, locale), locale) == time,
                         qPrintable(shortTime(time, locale)));
            }
        }
    }
};

OBLINO_TEST(tst_typedday, QCoreApplication)

#include "tst_typedday.moc"
