#include "tasksupport.h"

#include <core/tasklistfile.h>
#include <core/tasklistwriter.h>
#include <core/taskrowreader.h>

using Bytes = Table<QByteArray>;
using Rows = Table<QByteArray, QByteArray, QByteArray>;

namespace {

// Real files, but nobody waits for the disk itself.
struct Disk : FileCalls
{
    int fsync(int) override { return 0; }
};

// One run of the program on a home: a store, and the file that it reads and saves.
struct Run
{
    explicit Run(const TemporaryHome &home, bool dark = false, bool hasDocuments = true)
        : defaults(home.path(u"settings.ini"_s))
        , documents(hasDocuments ? std::optional(home.documents()) : std::nullopt, home.privateFolder(), disk)
    {
        setDark(dark);
    }

    void setDark(bool dark) { appearance.setInterfaceStyle(dark ? std::optional(u"Dark"_s) : std::nullopt); }

    void read()
    {
        store.setTasks({});
        file.splitStringFile(file.readFromFile());
    }

    // What was set aside, the first of it first.
    QByteArray aside()
    {
        QByteArray bytes;
        for (const EarlierVersion &version : documents.versions(u"ltodolist.txt"_s).list()) {
            if (version.reason == VersionReason::Quarantined)
                bytes.prepend(TemporaryHome::content(version.path));
        }
        return bytes;
    }

    Defaults defaults;
    Appearance appearance;
    TaskManager store{defaults, appearance};
    Disk disk;
    Documents documents;
    TaskListFile file{store, documents};
};

// A row of that many fields, some of them changed, by their positions from 1.
QByteArray row(const QList<std::pair<int, QByteArray>> &changes = {}, qsizetype count = 20)
{
    QByteArrayList fields =
        "3/7/24|Paint fence|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|KEY|true|9|30|16|45|"
        "Harbor Cafe|Dana|more"_ba.split('|');
    for (const auto &[position, text] : changes)
        fields[position - 1] = text;
    return fields.first(count).join('|') + '^';
}

} // namespace

class tst_tasklistfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { moveWhereMidnightsAreOdd(); }

    void writesBackTheBytesThatItRead_data()
    {
        Bytes bytes;
        bytes("empty list", "");
        bytes("two rows with one key", row() + row({{2, "Second"}}));
        bytes("line feeds, tab and NUL", row({{2, "\ta\0b"_ba}, {3, "one\r\n\ntwo\n"}, {20, " \n"}}));
        bytes("emoji, marks, odd code points",
              row({{2, "🎉e\u0301é"}, {3, "\u200b\ufeff\uffff\U0010ffff¦ˆ"}}));
        bytes("empty texts", row({{2, ""}, {3, ""}, {11, ""}, {12, ""}, {14, "false"}, {19, ""}, {20, ""}}));
        bytes("rounded by inversion",
              row({{4, "0.1"}, {5, "1e-07"}, {6, "0.5019607843137255"}, {7, "0.0001"}}));
        bytes("past both ends", row({{4, "-0.1"}, {5, "1.7976931348623157e+308"}, {7, "-0.0"}}));
        bytes("extreme integers", row({{9, "-9223372036854775808"}, {10, "9223372036854775807"}}));
        bytes("days without midnight and with two", row({{1, "3/10/24"}, {8, "11/3/24"}}));
        bytes("first and last year, leap day", row({{1, "1/1/00"}, {8, "12/31/99"}}) + row({{1, "2/29/24"}}));
        QByteArray many;
        for (int i = 0; i < 2'000; ++i) {
            const QByteArray number = QByteArray::number(i);
            many += row({{4, number + ".5"}, {11, "State " + number}, {19, "Client " + number}});
        }
        bytes("more colours and clients than can be remembered", many);
    }

    void writesBackTheBytesThatItRead()
    {
        const auto [bytes] = Bytes::cells();
        for (const bool dark : {false, true}) {
            TemporaryHome home;
            TemporaryHome::write(home.listPath(), bytes);
            Run run(home, dark);
            run.read();
            QCOMPARE(run.file.invertedColors(), dark);
            QCOMPARE(keysOf(run.store.backupTasks()), keysOf(run.store.tasks()));
            QVERIFY(run.file.saveToFile());
            QCOMPARE(TemporaryHome::content(home.listPath()), bytes);
            QCOMPARE(run.file.takeNotices(), QStringList());
        }
    }

    void readsRows_data()
    {
        Rows rows; // what is read, what is saved then (NEW stands for a key that was made), what lies aside
        addRowsByLength(rows);
        addReadableRows(rows);
        addUnreadableRows(rows);
    }

    void readsRows()
    {
        const auto [bytes, expected, aside] = Rows::cells();
        TemporaryHome home;
        TemporaryHome::write(home.listPath(), bytes);
        for (int time = 1; time <= 2; ++time) { // the second run finds nothing that is not in the list
            Run run(home);
            run.read();
            run.read();
            QCOMPARE(run.file.takeNotices().isEmpty(), aside.isEmpty() || time == 2);
            QVERIFY(run.file.saveToFile() && run.file.saveToFile());
            const QRegularExpression newKey(u"[0-9A-F]{8}-[-0-9A-F]{27}"_s);
            QString saved = QString::fromUtf8(TemporaryHome::content(home.listPath()));
            QCOMPARE(saved.replace(newKey, u"NEW"_s).toUtf8(), expected);
            QCOMPARE(run.aside(), aside);
        }
    }

    void putsTwoDigitYearsAroundToday()
    {
        const auto dayOf = [](QDate today, const QByteArray &text) {
            TaskRowReader reader(today);
            const QString line = QString::fromUtf8(row({{1, text}}).chopped(1));
            reader.split(line);
            return reader.read({}, false).value().date.date();
        };
        QCOMPARE(dayOf(QDate(2026, 7, 1), "1/1/76"), QDate(1976, 1, 1));
        QCOMPARE(dayOf(QDate(2026, 7, 1), "12/31/75"), QDate(2075, 12, 31));
        QCOMPARE(dayOf(QDate(2050, 1, 1), "1/1/00"), QDate(2000, 1, 1));
    }

    void writesLookAlikesOfWhatWouldBreakARowOrTheText()
    {
        TemporaryHome home;
        Run run(home);
        const QString bars = u"|a||"_s, caret = u"^"_s, half = caret + QChar(0xd83c); // half an emoji
        const QDateTime day = QDate(2024, 3, 7).startOfDay();
        add(run.store, {bars, day, half, bars, caret, bars, {}, day, 0, 0, caret, bars, false, 9, 5, 17});
        QVERIFY(run.file.saveToFile());
        QCOMPARE(TemporaryHome::content(home.listPath()),
                 "3/7/24|ˆ\ufffd|¦a¦¦|1.0|1.0|1.0|1.0|3/7/24|0|0|ˆ|¦a¦¦|¦a¦¦|false|9|5|17|0|ˆ|¦a¦¦^"_ba);
    }

    void keepsTheColoursOfTheLightAppearance_data()
    {
        Bytes steps; // D(ark), L(ight), R(ead), S(ave); ? starts a search that finds nothing
        for (const char *letters : {"DSLS", "DRSLS", "DRLRS", "DRSLSDS", "?S", "?DSLS"})
            steps(letters, letters);
    }

    void keepsTheColoursOfTheLightAppearance()
    {
        const auto [steps] = Bytes::cells();
        const QByteArray bytes = row({{4, "0.25"}, {5, "0.1"}, {6, "1e-07"}, {7, "0.3"}});
        TemporaryHome home;
        TemporaryHome::write(home.listPath(), bytes);
        Run run(home);
        run.read();
        for (const char step : steps) {
            if (step == 'R')
                run.read();
            else if (step == 'S')
                QVERIFY(run.file.saveToFile());
            else if (step == '?')
                run.store.setIsSearching(true);
            else
                run.setDark(step == 'D');
            if (step == '?')
                run.store.setTasks({});
            const Color &color = run.store.fullList().first().color;
            QCOMPARE(color.red(), run.file.invertedColors() ? 0.75 : 0.25);
            QCOMPARE(color.alpha(), 0.3);
            QCOMPARE(TemporaryHome::content(home.listPath()), bytes);
        }
        QCOMPARE(run.file.invertedColors(), run.store.inDarkMode());
    }

    void tracesWhatItReadsAndWrites()
    {
        TemporaryHome home;
        Run run(home, true);
        const QByteArray bytes = "1/2/24|a|b|1.0|1.0|1.0|1.0|1/2/24|0|0|c|d|e|false|1|2|3|4||^"_ba;
        const QByteArray lines = tracesOf([&] {
            run.read();
            TemporaryHome::write(home.listPath(), bytes);
            run.read();
            run.file.saveToFile();
            run.store.setFilter(0);
        });
        QCOMPARE(lines,
                 "Error\nNo of Rows: 1\nRead File " + bytes +
                     "\nNo of Rows: 2\nIn dark mode -> Invert\nNo of Fields: 20\nAdd Task, hidden: false\n"
                     "20 fields\nRow: " +
                     bytes.chopped(1) + "\nFields: [" + bytes.chopped(1).replace("|", ", ") +
                     "]\nInverted -> Switch to original\nWrite File " + bytes +
                     "\nNumber if tasks in view: 1\n");
    }

private:
    static void addRowsByLength(const Rows &rows)
    {
        const QByteArray task = row({}, 12).chopped(1) + '|';
        rows("12 fields have no key", row({}, 12), task + "NEW|false|8|0|17|0||^", "");
        rows("13 fields are not hidden", row({}, 13), task + "KEY|false|8|0|17|0||^", "");
        rows("14 fields have no times", row({}, 14), task + "KEY|true|8|0|17|0||^", "");
        rows("18 fields have no people", row({}, 18), task + "KEY|true|9|30|16|45||^", "");
        rows("19 fields have no client", row({}, 19), task + "KEY|true|9|30|16|45||^", "");
        rows("21 fields have no key", row({}, 21), task + "NEW|false|8|0|17|0||^", row({}, 21));
        const QByteArray odd = "odd^", wide = row({{2, "wide"}}, 21);
        rows("too many fields and too few", row({}, 21) + odd + wide,
             task + "NEW|false|8|0|17|0||^" + QByteArray(task).replace("Paint fence", "wide") +
                 "NEW|false|8|0|17|0||^",
             odd + row({}, 21) + wide);
        for (const int count : {1, 11, 15, 16, 17})
            rows(qPrintable(u"%1 fields are no row"_s.arg(count)), row({}, count) + row(), row(),
                 row({}, count));
        rows("times of the task before", row() + row({}, 13), row() + task + "KEY|false|9|30|16|45||^", "");
    }

    static void addReadableRows(const Rows &rows)
    {
        rows("a capital letter is not hidden", row({{14, "True"}}), row({{14, "false"}}), "");
        rows("an empty key is replaced", row({{13, ""}}), row({{13, "NEW"}}), "");
        rows("leading zeros", row({{1, "03/07/24"}, {8, "03/9/24"}, {9, "00"}, {15, "09"}}), row(), "");
        rows("longer numbers", row({{4, "1"}, {5, "0.500"}, {6, "0e5"}, {7, "10E-1"}}), row(), "");
        rows("blanks around numbers", row({{1, " 3/7/24 "}, {5, " 0.5"}, {9, "0\t"}, {18, "45\r"}}), row(),
             "");
        for (const char *text : {"nan", "-nan", "NaN", "inf", "-inf", "infinity", "1e999", "-1e999"}) {
            rows(qPrintable(u"'%1' is a missing colour"_s.arg(QLatin1String(text))),
                 row({{4, text}, {6, text}}) + row({{5, text}, {7, text}}),
                 row({{4, "1.0"}, {6, "1.0"}}) + row({{5, "1.0"}, {7, "1.0"}}), "");
        }
        rows("next to nothing", row({{6, "1e-999"}}), row(), "");
        rows("byte-order mark", "\xef\xbb\xbf" + row(), row(), "");
        rows("CRLF and blank rows", row() + "\r\n^ ^" + row() + "\r\n", row() + row(), "");
    }

    static void addUnreadableRows(const Rows &rows)
    {
        const auto unreadable = [&rows](const QList<int> &fields, const QList<const char *> &texts) {
            for (const int field : fields) {
                for (const char *text : texts) {
                    const QByteArray bad = row({{field, text}});
                    rows(qPrintable(u"field %1 is '%2'"_s.arg(field).arg(QString::fromUtf8(text))),
                         row() + bad + row({{2, "b"}}), row() + row({{2, "b"}}), bad);
                }
            }
        };
        unreadable({1, 8}, {"", "13/1/24", "0/1/24", "2/29/23", "4/0/24", "3/7/2024", "3/7/4", "3/7",
                            "3/7/24/1", "3-7-24", "003/7/24", "-3/7/24"});
        unreadable({4, 5, 6, 7}, {"", "1,5", "0x1", "red", "nano", "1e999x"});
        unreadable({9, 10, 15, 16, 17, 18}, {"", "1.5", "9223372036854775808", "1 1"});
        const QByteArray bad = row({{2, "caf\xe9"}}), surrogate = row({{3, "\xed\xa0\x80"}});
        rows("an encoded surrogate", surrogate + row(), row(), surrogate);
        rows("no last separator", row() + row().chopped(1), row(), row());
        rows("no UTF-8 after the last separator", row() + "\xff\n", row(), "\xff\n^");
        rows("rows of both kinds", bad + "odd\n^" + row() + bad, row(), bad + bad + "odd\n^");
        rows("NUL alone", row() + "\0"_ba, row(), "\0^"_ba);
    }
};

OBLINO_TEST(tst_tasklistfile, QCoreApplication)

#include "tst_tasklistfile.moc"
