#include "../contacts/storecontacts.h"
#include "mainwindowfixture.h"

#include <support/table.h>
#include <support/testmain.h>
#include <support/timezone.h>

#include <platform/sharingpicker.h>
#include <platform/widgets/sharingmenu.h>
#include <ui/colorbutton.h>
#include <ui/descriptionview.h>
#include <ui/viewcontrolleradd.h>
#include <ui/viewcontrolleredit.h>

using namespace oblino;
using Bytes = Table<QByteArray>;
using Checks = Table<bool, const char *, int, QString>;

namespace {

const QList<Row> oneTask = {{.name = "apple",
                             .client = "Harbor Cafe",
                             .color = "0.1|0.5019607843137255|0.0|1.0",
                             .desc = "a & b\nc %1\n"}};

class RecordingPicker : public SharingPicker
{
public:
    void show(const QList<SharingItem> &items, QObject *) override
    {
        texts += std::get<QString>(items.at(0));
    }
    QStringList texts;
};

template<typename Form>
Form &opened(const MainWindow &main)
{
    auto *form = main.window->findChild<Form *>();
    Q_ASSERT(form);
    (void)QTest::qWaitForWindowActive(form);
    return *form;
}

ViewControllerAdd &openAdd(const MainWindow &main)
{
    QTest::keyClick(main.window.get(), Qt::Key_N, Qt::ControlModifier);
    return opened<ViewControllerAdd>(main);
}

ViewControllerEdit &openEdit(const MainWindow &main)
{
    main.clickRow(u"apple"_s);
    QTest::keyClick(&main.table(), Qt::Key_Return);
    return opened<ViewControllerEdit>(main);
}

// Picks a colour in the panel, as the user does.
void pick(QWidget &form, const QColor &color)
{
    QTest::mouseClick(&find<ColorButton>(form, "color"), Qt::LeftButton);
    auto &panel = find<QColorDialog>(form, "colorPanel");
    panel.setCurrentColor(color);
    panel.accept();
}

} // namespace

class tst_taskforms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addsWhatWasTypedDownToTheFile()
    {
        MainWindow main({});
        QWidget &form = openAdd(main);
        QTRY_VERIFY(find<QLineEdit>(form, "txtTaskName").hasFocus());
        QTest::keyClicks(&find<QLineEdit>(form, "txtTaskName"), u"Paint|^ fence"_s);
        find<QDateEdit>(form, "dtTaskDueDate").setDate(QDate(2030, 3, 9));
        find<QDateEdit>(form, "dtTaskDate").setDate(QDate(2030, 3, 7));
        QTest::keyClick(&find<QComboBox>(form, "inTaskPriority"), Qt::Key_H);
        find<QTimeEdit>(form, "startTime").setTime(QTime(9, 30));
        QTest::keyClicks(&find<QComboBox>(form, "client"), u"Harbor Cafe"_s);
        QTest::keyClicks(&find<DescriptionView>(form, "txtTaskDescription"), u"Two^ coats"_s);
        QTest::keyClick(&find<QLineEdit>(form, "txtTaskName"), Qt::Key_Return);

        const QString key = main.store.tasks().value(0).key;
        QCOMPARE(key.size(), 36);
        QCOMPARE(TemporaryHome::content(main.home.listPath()),
                 "3/7/30|Paint fence|Two coats|1.0|1.0|1.0|1.0|3/9/30|0|2|Open|High|" + key.toUtf8() +
                     "|false|9|30|17|0|Harbor Cafe|^");
        QCOMPARE(main.shown(), u"Paint fence"_s);
        QCOMPARE(main.store.defaultStartHour(), 9);
    }

    void takesNoYearThatTheFileCannotHold_data()
    {
        const Bytes zone;
        for (const char *name : timeZones)
            zone(name, name);
    }
    void takesNoYearThatTheFileCannotHold()
    {
        const auto [zone] = Bytes::cells();
        const TimeZone there(zone);
        MainWindow main({});
        QWidget &form = openAdd(main);
        QTRY_VERIFY(find<QLineEdit>(form, "txtTaskName").hasFocus());
        QByteArrayList shown;
        for (const auto &[name, year] : {std::pair("dtTaskDueDate", u"2200"_s), {"dtTaskDate", u"1812"_s}}) {
            auto &field = find<QDateEdit>(form, name);
            field.setFocus();
            field.setSelectedSection(QDateEdit::YearSection);
            QTest::keyClicks(&field, year);
            QTest::keyClick(&field, Qt::Key_Tab);
            QVERIFY(!field.hasFocus());
            const int thisYear = QDate::currentDate().year();
            const QDate day = QLocale().toDate(field.text(), field.displayFormat());
            QVERIFY2(day.year() >= thisYear - 50 && day.year() < thisYear + 50, qPrintable(field.text()));
            shown.prepend(QStringLiteral("%1/%2/").arg(day.month()).arg(day.day()).toUtf8() +
                          QByteArray::number(100 + day.year() % 100).sliced(1));
        }
        QTest::keyClick(&find<QLineEdit>(form, "txtTaskName"), Qt::Key_Return);
        const QByteArrayList saved = TemporaryHome::content(main.home.listPath()).split('|');
        QCOMPARE((QByteArrayList{saved.value(0), saved.value(7)}), shown);
    }

    void leavesEverythingAsItWasWhenNothingIsTouched_data()
    {
        const Bytes row;
        row("usual",
            Row{.name = "apple", .client = "Gone from the directory", .color = "0.1|0.3|0.7|0.5"}.bytes());
        row("status and priority outside the lists",
            "3/7/26|apple||1.0|1.0|1.0|1.0|3/9/26|5|-2|Waiting|Whenever|K|true|9|30|17|0||^");
        row("names of other making",
            "3/7/26|apple||1.0|1.0|1.0|1.0|3/9/26|1|0|Done|low|K|false|9|30|17|0||^");
        row("times and texts that the controls cannot show",
            "3/7/26|apple|a\r\nb\n|1.0|1.0|1.0|1.0|3/9/26|0|0|Open|Low|K|false|25|-1|100|99| x | y ^");
    }

    void leavesEverythingAsItWasWhenNothingIsTouched()
    {
        const auto [row] = Bytes::cells();
        MainWindow main({{.name = "apple"}});
        TemporaryHome::write(main.home.listPath(), row);
        main.interfaceChange();
        main.views().setCurrentIndex(6);
        click(openEdit(main), "saveButton");
        QCOMPARE(TemporaryHome::content(main.home.listPath()), row);
    }

    void checksDatesEachFormInItsWay_data()
    {
        const Checks row;
        const QString start = u"Select a Start Date prior to Due Date"_s;
        const QString due = u"Select a Due Date after Start Date"_s;
        row("add: start a day late", false, "dtTaskDate", 1, start);
        row("add: due a day early", false, "dtTaskDueDate", -1, due);
        row("edit: start a day late", true, "dtTaskDate", 3, start);
        row("edit: start on the due day", true, "dtTaskDate", 2, {});
        row("edit: due a day early", true, "dtTaskDueDate", -3, due);
    }

    void checksDatesEachFormInItsWay()
    {
        const auto [edit, name, days, message] = Checks::cells();
        MainWindow main(oneTask);
        QWidget *form = edit ? static_cast<QWidget *>(&openEdit(main)) : &openAdd(main);
        auto &picker = find<QDateEdit>(*form, name);
        const QDate before = picker.date();
        picker.setDate(before.addDays(days));
        QCOMPARE(main.questions.asked.value(0).informativeText, message);
        QCOMPARE(picker.date(), message.isEmpty() ? before.addDays(days) : before);
    }

    void refusesAColourThatHidesTheDescription()
    {
        MainWindow main({});
        QWidget &form = openAdd(main);
        for (const QColor &color : {QColor(10, 20, 30), QColor(Qt::black)}) {
            pick(form, color);
            QVERIFY(find<ColorButton>(form, "color").color() == Color(10 / 255.0, 20 / 255.0, 30 / 255.0, 1));
        }
    }

    void followsTheAppearanceWhileItIsOpen()
    {
        MainWindow main(oneTask);
        QWidget &edit = openEdit(main);
        main.appearance.setInterfaceStyle(u"Dark"_s);
        QVERIFY(find<ColorButton>(edit, "color").color() == Color(0.9, 1 - 0.5019607843137255, 1, 1));
        QVERIFY(find<DescriptionView>(edit, "txtTaskDescription").textColor() == Color(1, 1, 1, 1));
        main.appearance.setInterfaceStyle(std::nullopt);
        click(edit, "saveButton");
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);

        QWidget &add = openAdd(main);
        pick(add, Qt::red);
        main.appearance.setInterfaceStyle(u"Dark"_s);
        QVERIFY(find<ColorButton>(add, "color").color() == Color(0, 0, 0, 1));
    }

    void writesToTheTaskItWasOpenedFor()
    {
        for (const bool isGone : {false, true}) {
            MainWindow main({{.name = "apple"}, {.name = "pear"}});
            QWidget &form = openEdit(main);
            if (isGone) {
                main.store.setSelected(u"KEY-apple"_s);
                main.store.removeSelected();
                main.notifications.post(u"reload"_s);
            }
            main.store.setSelected(u"KEY-pear"_s);
            find<QLineEdit>(form, "txtTaskName").setText(u"plum"_s);
            click(form, "saveButton");
            QCOMPARE(main.questions.asked.size(), isGone ? 1 : 0);
            QCOMPARE(form.isVisible(), isGone);
            QCOMPARE(main.saved(), isGone ? u"pear"_s : u"plum pear"_s);
        }
    }

    void offersTheNamesOfTheContacts()
    {
        MainWindow main({});
        storeContacts<Clients>(main.home.privateFolder(), {{u"Acme Ltd"_s, {}}});
        const auto &client = find<QComboBox>(openAdd(main), "client");
        QCOMPARE(client.currentText(), QString());
        QCOMPARE(client.itemText(0), u"Acme Ltd"_s);
    }

    void sharesWhatTheFormShowsUnderANewKeyAndKeepsIt()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        MainWindow main(oneTask);
        RecordingPicker picker;
        main.store.setSharingPicker(&picker);
        main.store.setMessageTitle(u"Plan"_s);
        main.store.setMessageFooter(u"Bye\n%3"_s);
        QWidget &form = openEdit(main);
        find<QLineEdit>(form, "txtTaskName").setText(u"plum"_s);
        click(form, "shareTaskButton");
        click(form, "shareTaskButton");
        QTRY_COMPARE(picker.texts.size(), 2);
        QVERIFY(picker.texts.first() != picker.texts.last());
        const QRegularExpression newKey(u"[0-9A-F]{8}-[-0-9A-F]{27}"_s);
        QCOMPARE(picker.texts.first().replace(newKey, u"NEW"_s),
                 u"Plan\n\nSchedule: plum\nStart Date: 3/7/26\nStart Time: 09:30\nEnd Time: 17:00\n"
                 "Due Date: 3/9/26\nDescription: a & b\nc %1\n\n\nClient: Harbor Cafe\nTeam Member: Dana\n\n"
                 "Task Key: KEY-apple\nMessage Key: NEW\n\nBye\n%3\n\n"
                 "Sent with Oblino. Download from the App Store for Mac:\n\n" STORE ""_s);
        QTest::keyClick(&form, Qt::Key_Escape);
        QCOMPARE(main.saved(), u"plum"_s);
    }

    void sharesFromTheListWhenTheMouseGoesDown()
    {
        MainWindow main(oneTask);
        RecordingPicker picker;
        main.store.setSharingPicker(&picker);
        main.clickRow(u"apple"_s);
        QTest::mousePress(&main.button("shareButton"), Qt::LeftButton);
        QTRY_COMPARE(picker.texts.size(), 1);
    }

    void putsAWholeTextIntoTheDraft()
    {
        const QString text = u"a & b + 100% #1 ?=é🎉\n\nsecond line\nlast"_s;
        const QUrl draft = SharingMenu::draftOf(text);
        QCOMPARE(draft.scheme(), u"mailto"_s);
        QByteArray body = draft.toEncoded();
        body = QByteArray::fromPercentEncoding(body.sliced(QByteArray("mailto:?body=").size()));
        QCOMPARE(QString::fromUtf8(body).replace(QLatin1String("\r\n"), QLatin1String("\n")), text);
        QVERIFY(!draft.toEncoded().contains('+'));
    }
};

OBLINO_TEST(tst_taskforms, QApplication)

#include "tst_taskforms.moc"
