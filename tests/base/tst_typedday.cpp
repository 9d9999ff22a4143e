#include <base/typedday.h>
#include <base/typedtime.h>
#include <support/testmain.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QDate today(2026, 11, 23); // a Monday
constexpr std::array locales = {"en_US", "en_GB", "de_DE", "fr_FR", "sv_SE", "ja_JP"};

} // namespace

class tst_typedday : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // One row a text; what it means in each locale, in the order of the list above. "-" for nothing.
    void readsADay_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("meant");
        const auto row = [](const QString &typed, const QString &meant) {
            QTest::newRow(qPrintable(typed)) << typed << meant;
        };
        const auto same = [&](const QString &typed, const QString &meant) {
            row(typed, QStringList(static_cast<qsizetype>(locales.size()), meant).join(u' '));
        };
        for (const QString &typed :
             {u"2026-12-25"_s, u"20261225"_s, u"2026/12/25"_s, u"25 Dec 2026"_s, u"25 dec 26"_s,
              u"December 25, 2026"_s, u"25th of December 2026"_s, u"  25.  DEC  "_s, u"2026年12月25日"_s,
              u"12月25日"_s, u"２０２６-１２-２５"_s, u"Friday 25 December 2026"_s, u"+32"_s})
            same(typed, u"2026-12-25"_s);
        same(u"today"_s, u"2026-11-23"_s);
        same(u"Tomorrow"_s, u"2026-11-24"_s);
        same(u"明日"_s, u"2026-11-24"_s);
        same(u"−1"_s, u"2026-11-22"_s);
        same(u"fri"_s, u"2026-11-27"_s);
        same(u"monday"_s, u"2026-11-30"_s); // not today
        for (const QString &nothing : {u""_s,
                                       u"soon"_s,
                                       u"25"_s,
                                       u"2026"_s,
                                       u"Dec 2026"_s,
                                       u"31.2.2026"_s,
                                       u"2026-02-29"_s,
                                       u"12/25/2520!"_s,
                                       u"25/12/026"_s,
                                       u"1/2/3/4"_s,
                                       u"Thursday 25 December 2026"_s,
                                       u"12:25"_s,
                                       u"25 Dec Jan"_s,
                                       u"2026-12-25 10:00"_s,
                                       u"5 |"_s,
                                       u"12//25/2026"_s,
                                       u"-12-25"_s,
                                       u"12/25/"_s,
                                       u"1-2/26"_s,
                                       u"26年12月25日"_s})
            same(nothing, u"-"_s);
        row(u"12/25/2026"_s, u"2026-12-25 - - - 2026-12-25 2026-12-25"_s);
        row(u"25.12.2026"_s, u"- 2026-12-25 2026-12-25 2026-12-25 2026-12-25 2026-12-25"_s);
        row(u"3/4/26"_s, u"2026-03-04 2026-04-03 2026-04-03 2026-04-03 - -"_s);
        row(u"03/04/2026"_s, u"2026-03-04 2026-04-03 2026-04-03 2026-04-03 - -"_s);
        row(u"25.12."_s, u"- 2026-12-25 2026-12-25 2026-12-25 - -"_s);
        row(u"12/25"_s, u"2026-12-25 - - - 2026-12-25 2026-12-25"_s);
        row(u"4-1"_s, u"2027-04-01 2027-01-04 2027-01-04 2027-01-04 2027-04-01 2027-04-01"_s);
        row(u"251226"_s, u"- 2026-12-25 2026-12-25 2026-12-25 2025-12-26 2025-12-26"_s);
        row(u"1/1/76"_s, u"1976-01-01 1976-01-01 1976-01-01 1976-01-01 - -"_s);
        row(u"1/1/75"_s, u"2075-01-01 2075-01-01 2075-01-01 2075-01-01 - -"_s);
        row(u"heute"_s, QStringList(6, u"2026-11-23"_s).join(u' '));
        row(u"Fr."_s, u"- - 2026-11-27 - - -"_s);
        row(u"ven."_s, u"- - - 2026-11-27 - -"_s);
        row(u"金曜日"_s, u"- - - - - 2026-11-27"_s);
        row(u"2026年12月25日金曜日"_s, u"- - - - - 2026-12-25"_s);
        row(u"25. Dezember 2026"_s, u"- - 2026-12-25 - - -"_s);
        row(u"3. März"_s, u"- - 2027-03-03 - - -"_s);
        row(u"1er février 27"_s, u"- - - 2027-02-01 - -"_s);
        row(u"24 juil"_s, u"- - - 2026-07-24 - -"_s);
        row(u"25 mar"_s, u"2027-03-25 2027-03-25 2027-03-25 - 2027-03-25 2027-03-25"_s); // mardi or mars
    }

    void readsADay()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, meant);
        QStringList read;
        for (const char *name : locales) {
            const auto day = readDay(typed, QLocale(QLatin1String(name)), today);
            read += day ? day->toString(Qt::ISODate) : u"-"_s;
        }
        QCOMPARE(read.join(u' '), meant);
    }

    void readsATime_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("meant");
        const auto row = [](const char *typed, const char *meant) {
            QTest::newRow(typed) << QString::fromUtf8(typed) << QString::fromUtf8(meant);
        };
        for (const char *typed :
             {"930", "0930", "9:30", "9.30", "09:30:00", "9h30", "9:30 am", "9:30a", "930 AM", "9 h 30",
              "9:30 Uhr", "kl 9.30", "9時30分", "９：３０", "9:30 a.m."})
            row(typed, "09:30");
        for (const char *typed : {"14:30", "1430", "2:30p", "2:30 PM", "230pm", "14h30", "14.30 Uhr"})
            row(typed, "14:30");
        row("1630", "16:30");
        row("9", "09:00");
        row("14h", "14:00");
        row("12 am", "00:00");
        row("12p", "12:00");
        for (const char *typed : {"0:05", "12:05 am", "0:05am"})
            row(typed, "00:05");
        for (const char *nothing : {"", "24:00", "9:75", "9:5", "9:", "14:30 pm", "13 am", "9:30:30", "930x",
                                    "99", "12345", "a", "-9", "fri"})
            row(nothing, "-");
    }

    void readsATime()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, meant);
        for (const char *name : locales) {
            const auto time = readTime(typed, QLocale(QLatin1String(name)));
            QCOMPARE(time ? time->toString(u"HH:mm"_s) : u"-"_s, meant);
        }
    }

    void readsWhatTheLocaleWrites()
    {
        for (const char *name : {"en_US", "en_GB", "de_DE", "fr_FR", "sv_SE", "ja_JP", "es_ES", "pt_BR",
                                 "ar_EG", "bg_BG", "zh_TW"}) {
            const QLocale locale{QLatin1String(name)};
            for (QDate day(1976, 1, 1); day.year() < 2076; day = day.addDays(day.year() == 2026 ? 1 : 61)) {
                for (const QString &text : {shortDay(day, locale), locale.toString(day, QLocale::ShortFormat),
                                            locale.toString(day, QLocale::LongFormat)}) {
                    QVERIFY2(readDay(text, locale, today) == day, qPrintable(text));
                }
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
