#include "../contacts/storecontacts.h"
#include "mainwindowfixture.h"

#include <config.h>

#include <base/sharingpicker.h>
#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/descriptionview.h>
#include <controls/noticelabel.h>
#include <controls/timefield.h>
#include <controls/wheelguard.h>
#include <ui/windows/viewcontrolleradd.h>
#include <ui/windows/viewcontrolleredit.h>

using Bytes = Table<QByteArray>;
using Typing = Table<const char *, QString, QByteArray>;
using Names = Table<QString, Qt::Key, QString, bool>;
using Closing = Table<QString, int, qsizetype, bool>;
using Checks = Table<bool, const char *, int, QString>;

namespace {

const QList<Row> oneTask = {{.name = "apple",
                             .client = "Harbor Cafe",
                             .color = "0.1|0.5019607843137255|0.0|1.0",
                             .desc = "a & b\nc %1\n"}};

class RecordingPicker : public SharingPicker
{
public:
    void show(const QVariantList &items, QObject *, Edge edge) override
    {
        QCOMPARE(edge, Edge::Left);
        texts += items.at(0).toString();
    }
    QStringList texts;
};

bool isActive(const QWidget *window)
{
    return QTest::qWaitFor([window] { return QApplication::activeWindow() == window; });
}

template<typename Form>
Form &opened(const MainWindow &main)
{
    auto *form = main.window->findChild<Form *>();
    Q_ASSERT(form);
    (void)isActive(form);
    return *form;
}

ViewControllerAdd &openAdd(const MainWindow &main)
{
    main.window->activateWindow();
    (void)isActive(main.window.get());
    QTest::keyClick(main.window.get(), Qt::Key_N, Qt::ControlModifier);
    return opened<ViewControllerAdd>(main);
}

ViewControllerEdit &openEdit(const MainWindow &main)
{
    main.clickRow(u"apple"_s);
    QTest::keyClick(&main.table(), Qt::Key_Return);
    return opened<ViewControllerEdit>(main);
}

// Where there is a list of completions, the keys go to it.
void pressOn(const QWidget &form, Qt::Key key)
{
    QWidget *popup = QApplication::activePopupWidget();
    QTest::keyClick(popup ? popup : form.focusWidget(), key);
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
    void init() { QLocale::setDefault(QLocale(u"en_US"_s)); }

    void addsWhatWasTypedDownToTheFile()
    {
        MainWindow main({});
        QWidget &form = openAdd(main);
        QTRY_VERIFY(find<QLineEdit>(form, "txtTaskName").hasFocus());
        QTest::keyClicks(&find<QLineEdit>(form, "txtTaskName"), u"Paint|^ fence"_s);
        type(find<DateField>(form, "dtTaskDueDate"), u"3/9/2030"_s);
        type(find<DateField>(form, "dtTaskDate"), u"Mar 7, 30"_s);
        QTest::keyClick(&find<QComboBox>(form, "inTaskPriority"), Qt::Key_H);
        type(find<TimeField>(form, "startTime"), u"930"_s);
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

    void keepsDatesAndTimesAsTheyAreTyped_data()
    {
        const Typing row;
        row("American", "en_US", u"12/25/2026 12/26/2026 9:30am 14:30"_s, "12/25/26 12/26/26 9|30|14|30");
        row("German", "de_DE", u"25.12.2026 26.12.26 9.30 1630"_s, "12/25/26 12/26/26 9|30|16|30");
        row("French", "fr_FR", u"25/12/2026 26/12/2026 8h 14h30"_s, "12/25/26 12/26/26 8|0|14|30");
        row("Japanese", "ja_JP", u"2026/12/25 12/26 9:05 2:30p"_s, "12/25/26 12/26/26 9|5|14|30");
        row("the last year of the file", "en_US", u"1/2/2027 12/31/75 7 8p"_s, "1/2/27 12/31/75 7|0|20|0");
    }
    // Each field is left as one leaves it by the shortcut of the next; the last is still being typed.
    void keepsDatesAndTimesAsTheyAreTyped()
    {
        const auto [locale, typed, saved] = Typing::cells();
        QLocale::setDefault(QLocale(QLatin1String(locale)));
        MainWindow main({});
        QWidget &form = openAdd(main);
        const QStringList texts = typed.split(u' ');
        const std::array keys = {Qt::Key_S, Qt::Key_U, Qt::Key_T, Qt::Key_E};
        for (size_t i = 0; i < keys.size(); ++i) {
            QTest::keyClick(&form, keys.at(i), Qt::AltModifier);
            QTest::keyClicks(form.focusWidget(), texts.at(static_cast<qsizetype>(i)));
        }
        QTest::keyClick(&form, Qt::Key_D, Qt::AltModifier); // Add
        const auto cells = [&main] { return TemporaryHome::content(main.home.listPath()).split('|'); };
        QTRY_COMPARE(cells().value(0) + ' ' + cells().value(7) + ' ' + cells().mid(14, 4).join('|'), saved);
        QVERIFY(main.questions.asked.isEmpty());
    }

    void holdsBackWhatCannotBeRead_data()
    {
        const Bytes row;
        row("no such day", "2/31/2026");
        row("a year that the file cannot hold", "3/7/1812");
        row("nothing", " ");
    }
    void holdsBackWhatCannotBeRead()
    {
        const auto [typed] = Bytes::cells();
        MainWindow main({});
        QWidget &form = openAdd(main);
        auto &field = find<DateField>(form, "dtTaskDueDate");
        type(field, QString::fromUtf8(typed), Qt::Key_Return);
        QTest::keyClick(&form, Qt::Key_D, Qt::AltModifier);
        QVERIFY(form.isVisible());
        QCOMPARE(field.lineEdit()->text(), QString::fromUtf8(typed));
        QVERIFY(field.isMarked() && field.lineEdit()->hasFocus());
        QCOMPARE(TemporaryHome::content(main.home.listPath()), "");
        type(field, u"12/31/2050"_s, Qt::Key_Return);
        QVERIFY(TemporaryHome::content(main.home.listPath()).contains("|12/31/50|"));
    }

    void leavesEverythingAsItWasWhenNothingIsTouched_data()
    {
        const Bytes row;
        row("usual",
            Row{.name = "apple", .client = "Gone from the directory", .color = "0.1|0.3|0.7|0.5"}.bytes());
        row("status and priority outside the lists",
            "3/7/26|apple||1.0|1.0|1.0|1.0|3/9/26|5|-2|Waiting|Whenever|K|true|9|30|17|0||^");
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
        auto &field = find<DateField>(*form, name);
        const QDate before = field.date();
        type(field, QLocale().toString(before.addDays(days), u"M/d/yyyy"_s));
        QVERIFY(main.questions.asked.isEmpty()); // the other date may follow
        const QByteArray saved = TemporaryHome::content(main.home.listPath());
        QTest::keyClick(form->focusWidget(), Qt::Key_Return);
        QCOMPARE(main.questions.asked.value(0).informativeText, message);
        QCOMPARE(field.date(), message.isEmpty() ? before.addDays(days) : before);
        QCOMPARE(TemporaryHome::content(main.home.listPath()) == saved, !message.isEmpty());
    }

    void movesTheDueDateWithTheStart()
    {
        MainWindow main(oneTask); // from 3/7 to 3/9
        QWidget &form = openEdit(main);
        main.questions.answer = 1;
        type(find<DateField>(form, "dtTaskDate"), u"4/1/2026"_s, Qt::Key_Return);
        QCOMPARE(main.questions.asked.size(), 1);
        const QByteArrayList cells = TemporaryHome::content(main.home.listPath()).split('|');
        QCOMPARE((QByteArrayList{cells.value(0), cells.value(7)}), (QByteArrayList{"4/1/26", "4/3/26"}));
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

    void takesNamesAsTheUserMeansThem_data()
    {
        const Names row;
        row("nothing is chosen by passing through", u""_s, Qt::Key_Tab, u""_s, false);
        row("the only one that contains it", u"ltd"_s, Qt::Key_Tab, u"Acme Ltd"_s, false);
        row("one of several", u"bo"_s, Qt::Key_Tab, u"bo"_s, true);
        row("equal apart from case", u"bob"_s, Qt::Key_Tab, u"Bob"_s, false);
        row("left with the mouse", u"acme ltd"_s, Qt::Key_unknown, u"acme ltd"_s, false);
        row("unknown", u"Zoe"_s, Qt::Key_Tab, u"Zoe"_s, true);
        row("the first one", u""_s, Qt::Key_Down, u"Bob"_s, false);
    }
    void takesNamesAsTheUserMeansThem()
    {
        const auto [typed, key, saved, isUnknown] = Names::cells();
        MainWindow main({});
        storeContacts<Clients>(main.home.privateFolder(),
                               {{u"Bob"_s, {}}, {u"Bobby"_s, {}}, {u"Acme Ltd"_s, {}}});
        QWidget &form = openAdd(main);
        auto &client = find<QComboBox>(form, "client");
        client.setFocus();
        QTest::keyClicks(&client, typed);
        key == Qt::Key_unknown ? find<QLineEdit>(form, "txtTaskName").setFocus(Qt::MouseFocusReason)
                               : pressOn(form, key);
        QCOMPARE(find<QWidget>(form, "unknownClient").isVisible(), isUnknown);
        click(form, "addButton");
        QCOMPARE(TemporaryHome::content(main.home.listPath()).split('|').value(18), saved.toUtf8());
    }

    void asksOnceBeforeWhatWasEnteredIsLost_data()
    {
        const Closing row;
        row("nothing entered", u""_s, 0, 0, false);
        row("given up", u"x"_s, 0, 1, false);
        row("kept", u"x"_s, 1, 1, true);
        row("without an answer", u"x"_s, -1, 1, true);
    }
    void asksOnceBeforeWhatWasEnteredIsLost()
    {
        const auto [typed, answer, questions, stays] = Closing::cells();
        for (const bool isEdit : {false, true}) {
            MainWindow main(oneTask);
            QWidget *form = isEdit ? static_cast<QWidget *>(&openEdit(main)) : &openAdd(main);
            main.questions.answer = answer < 0 ? std::nullopt : std::optional(answer);
            QTest::keyClicks(find<DateField>(*form, "dtTaskDate").lineEdit(), typed);
            QTest::keyClick(form, Qt::Key_Escape);
            QCOMPARE(main.questions.asked.size(), questions);
            QCOMPARE(form->isVisible(), stays);
            QCOMPARE(main.window->close(), !stays);
        }
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
                 "Sent with Oblino. Download from the App Store for Mac:\n\n" OBLINO_STORE_ADDRESS ""_s);
        QTest::keyClick(&form, Qt::Key_Escape);
        QCOMPARE(main.saved(), u"plum"_s);
    }
};

OBLINO_TEST(tst_taskforms, QApplication)

#include "tst_taskforms.moc"
