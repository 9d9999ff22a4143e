#include "../contacts/storecontacts.h"
#include "mainwindowfixture.h"

#include <config.h>

#include <base/sharingpicker.h>
#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/descriptionview.h>
#include <controls/timefield.h>
#include <ui/windows/taskwindow.h>

namespace {

const QList<Row> oneTask = {{.name = "apple",
                             .client = "Harbor Cafe",
                             .color = "0.1|0.5019607843137255|0.0|1.0",
                             .desc = "a & b\nc %1\n"}};

struct RecordingPicker : SharingPicker
{
    void show(const QVariantList &items, QObject *, Edge edge) override
    {
        QCOMPARE(edge, Edge::Left);
        texts += items.at(0).toString();
    }
    QStringList texts;
};

// The form to add a task, or to edit the task "apple", over the main window.
struct Form : MainWindow
{
    using MainWindow::MainWindow;

    void open(bool isEdit)
    {
        showActive(*window);
        if (isEdit)
            clickRow(u"apple"_s);
        QTest::keySequence(&table(), isEdit ? Qt::Key_Return : QKeySequence(QKeySequence::New));
        form = window->findChild<TaskWindow *>();
        QVERIFY(form && QTest::qWaitFor([this] { return QApplication::activeWindow() == form; }));
    }
    template<typename Field>
    [[nodiscard]] Field &field(const char *name) const
    {
        return find<Field>(*form, name);
    }
    [[nodiscard]] DateField &date() const { return field<DateField>("dtTaskDate"); }
    [[nodiscard]] DateField &due() const { return field<DateField>("dtTaskDueDate"); }
    [[nodiscard]] QLineEdit &name() const { return field<QLineEdit>("txtTaskName"); }
    [[nodiscard]] Color color() const { return field<ColorButton>("color").color(); }
    [[nodiscard]] QByteArray savedCell(int index) const { return file().split('|').value(index); }

    TaskWindow *form = nullptr;
};

} // namespace

class tst_taskforms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QLocale::setDefault(QLocale(u"en_US"_s)); }

    // Fields are reached by their shortcuts; the last is still being typed when the task is added.
    void addsWhatWasTypedDownToTheFile()
    {
        QLocale::setDefault(QLocale(u"de_DE"_s));
        Form add;
        add.open(false);
        QTRY_VERIFY(add.name().hasFocus());
        QTest::keyClicks(&add.name(), u"Paint|^ fence"_s);
        QTest::keyClick(&add.field<QComboBox>("inTaskPriority"), Qt::Key_H);
        QTest::keyClicks(&add.field<QComboBox>("client"), u"Harbor Cafe"_s);
        QTest::keyClicks(&add.field<DescriptionView>("txtTaskDescription"), u"Two^ coats"_s);
        type(add.field<TimeField>("endTime"), u"7.30"_s);
        auto &timesNotice = add.field<NoticeLabel>("timesNotice");
        QVERIFY(timesNotice.isVisible()); // it ends before it starts
        for (const auto &[key, text] : {std::pair(Qt::Key_S, u"25.12.2026"_s),
                                        {Qt::Key_U, u"31.12.75"_s},
                                        {Qt::Key_T, u"930"_s},
                                        {Qt::Key_E, u"8p"_s}}) {
            QTest::keyClick(add.form, key, Qt::AltModifier);
            QTest::keyClicks(add.form->focusWidget(), text);
        }
        QVERIFY(!timesNotice.isVisible());
        QTest::keyClick(add.form, Qt::Key_D, Qt::AltModifier); // Add
        QTRY_COMPARE(add.shown(), u"Paint fence"_s);
        const QByteArray key = add.store.fullList().value(0).key.toUtf8();
        QCOMPARE(key.size(), 36);
        QCOMPARE(add.file(), "12/25/26|Paint fence|Two coats|1.0|1.0|1.0|1.0|12/31/75|0|2|Open|High|" + key +
                                 "|false|9|30|20|0|Harbor Cafe|^");
        QCOMPARE(add.store.defaultStartHour(), 9);
        QVERIFY(add.questions.asked.isEmpty());
    }

    void holdsBackWhatCannotBeRead()
    {
        Form add;
        add.open(false);
        for (const QString &typed : {u"2/31/2026"_s, u"3/7/1812"_s, u" "_s}) {
            type(add.due(), typed, Qt::Key_Return);
            QTest::keyClick(add.form, Qt::Key_D, Qt::AltModifier);
            QVERIFY(add.form->isVisible() && add.due().isMarked() && add.due().lineEdit()->hasFocus());
            QCOMPARE(add.due().lineEdit()->text(), typed);
            QCOMPARE(add.file(), "");
        }
        type(add.due(), u"12/31/2050"_s, Qt::Key_Return);
        QCOMPARE(add.savedCell(7), "12/31/50");
    }

    void leavesEverythingAsItWasWhenNothingIsTouched()
    {
        // Numbers, times and texts that the controls cannot show stay; texts that they show become theirs.
        const QByteArray odd = "3/7/26|apple|a\r\nb\n|0.1|0.3|0.7|0.5|3/9/26|5|-2|Waiting|Whenever|K|true|25|"
                               "-1|100|99| x |" +
                               QByteArray(40000, 'y') + '^';
        const QByteArray other = "3/7/26|apple||1.0|1.0|1.0|1.0|3/9/26|1|0|Done|low|K|false|9|30|17|0||^";
        for (const QByteArray &row : {odd, other}) {
            Form edit(row);
            edit.views().setCurrentIndex(6);
            edit.open(true);
            click(*edit.form, "saveButton");
            QCOMPARE(edit.file(), QByteArray(row).replace("Done|low", "Closed|Low"));
        }
    }

    void checksDatesEachFormInItsWay()
    {
        const QString start = u"Select a Start Date prior to Due Date"_s;
        const QString due = u"Select a Due Date after Start Date"_s;
        for (const auto &[isEdit, name, days, message] : {std::tuple(false, "dtTaskDate", 1, start),
                                                          {false, "dtTaskDueDate", -1, due},
                                                          {true, "dtTaskDate", 3, start},
                                                          {true, "dtTaskDate", 2, QString()}, // the due day
                                                          {true, "dtTaskDueDate", -3, due}}) {
            Form form(oneTask);
            form.open(isEdit);
            auto &field = form.field<DateField>(name);
            const QDate before = field.date();
            type(field, QLocale().toString(before.addDays(days), u"M/d/yyyy"_s));
            QVERIFY(form.questions.asked.isEmpty()); // the other date may follow
            QTest::keyClick(form.form->focusWidget(), Qt::Key_Return);
            QCOMPARE(form.questions.asked.value(0).informativeText, message);
            QCOMPARE(field.date(), message.isEmpty() ? before.addDays(days) : before);
            QCOMPARE(form.file() == form.listAtStart, !message.isEmpty());
        }
    }

    void asksOnceAndMayMoveTheDueDate()
    {
        for (const bool moves : {false, true}) {
            Form edit(oneTask); // from 3/7 to 3/9
            edit.open(true);
            edit.questions.answer = moves ? 1 : 0;
            type(edit.date(), u"4/1/2026"_s, moves ? Qt::Key_Return : Qt::Key_Tab);
            if (!moves) {
                type(edit.due(), u"3/31/2026"_s);
                QTRY_COMPARE(edit.questions.asked.size(), 1);
                QCOMPARE(edit.questions.asked.at(0).informativeText, u"Select a Due Date after Start Date"_s);
                type(edit.due(), u"4/3/2026"_s, Qt::Key_Return);
            }
            QCOMPARE(edit.questions.asked.size(), 1);
            QCOMPARE(edit.savedCell(0) + ' ' + edit.savedCell(7), "4/1/26 4/3/26");
        }
    }

    void takesColoursThatShowTheDescriptionInEitherAppearance()
    {
        Form add;
        add.open(false);
        for (const QColor &color : {QColor(10, 20, 30), QColor(Qt::black)}) {
            click(*add.form, "color");
            click(add.field<QWidget>("colorPopup"), "moreColors");
            auto &panel = add.field<QColorDialog>("colorPanel");
            panel.setCurrentColor(color);
            panel.accept();
            QVERIFY(add.color() == Color(10 / 255.0, 20 / 255.0, 30 / 255.0, 1));
        }
        Form edit(oneTask);
        edit.open(true);
        edit.appearance.setInterfaceStyle(u"Dark"_s);
        QVERIFY(edit.color() == Color(0.9, 1 - 0.5019607843137255, 1, 1));
        edit.appearance.setInterfaceStyle(std::nullopt);
        click(*edit.form, "saveButton");
        QCOMPARE(edit.file(), edit.listAtStart);
    }

    void writesToTheTaskItWasOpenedForOrToNone()
    {
        Form edit({{.name = "apple"}, {.name = "pear"}});
        edit.open(true);
        edit.store.setSelected(u"KEY-pear"_s);
        edit.name().setText(u"plum"_s);
        click(*edit.form, "shareTaskButton"); // which saves, and leaves the form open
        QCOMPARE(edit.saved(), u"plum pear"_s);
        edit.store.setSelected(u"KEY-apple"_s);
        edit.store.removeSelected();
        edit.store.setSelected(u"KEY-pear"_s);
        edit.name().setText(u"fig"_s);
        click(*edit.form, "saveButton");
        QCOMPARE(edit.questions.asked.size(), 1);
        QVERIFY(edit.form->isVisible() && edit.store.fullList().value(0).name == u"pear"_s);
    }

    void takesNamesAsTheUserMeansThem()
    {
        for (const auto &[typed, key, saved] : {std::tuple(u"ltd"_s, Qt::Key_Tab, "Acme Ltd"),
                                                {u"bo"_s, Qt::Key_Tab, "bo"},   // one of several, so unknown
                                                {u"bob"_s, Qt::Key_Tab, "Bob"}, // apart from case
                                                {u""_s, Qt::Key_Down, "Bob"}}) {
            Form add;
            storeContacts<Clients>(add.home.privateFolder(),
                                   {{u"Bob"_s, {}}, {u"Bobby"_s, {}}, {u"Acme Ltd"_s, {}}});
            add.open(false);
            auto &client = add.field<QComboBox>("client");
            client.setFocus();
            QTest::keyClicks(&client, typed);
            QWidget *popup = QApplication::activePopupWidget(); // of completions, to which the keys go
            QTest::keyClick(popup ? popup : add.form->focusWidget(), key);
            auto &unknown = add.field<QWidget>("unknownClient");
            QCOMPARE(unknown.isVisible(), typed == QLatin1String(saved));
            if (unknown.isVisible()) {
                QTest::mouseClick(unknown.findChild<QPushButton *>(), Qt::LeftButton);
                auto &number = add.field<QInputDialog>("phoneNumber");
                number.setTextValue(u"+1 555"_s);
                number.accept();
                QVERIFY(!unknown.isVisible() && !add.home.filesWith("+1 555").isEmpty());
            }
            click(*add.form, "addButton");
            QCOMPARE(add.savedCell(18), saved);
        }
    }

    void asksOnceBeforeWhatWasEnteredIsLost()
    {
        for (const auto &[isEdit, answer] : {std::pair(false, std::optional(0)), {true, 1}, {true, {}}}) {
            Form form(oneTask);
            form.open(isEdit);
            form.questions.answer = answer;
            QTest::keyClicks(form.date().lineEdit(), u"x"_s);
            QTest::keyClick(form.form, Qt::Key_Escape);
            QCOMPARE(form.questions.asked.size(), 1);
            QCOMPARE(form.form->isVisible(), answer != 0);
            QCOMPARE(form.window->close(), answer == 0);
        }
    }

    void sharesWhatTheFormShowsUnderANewKeyAndKeepsIt()
    {
        Form edit(oneTask);
        RecordingPicker picker;
        edit.store.setSharingPicker(&picker);
        edit.store.setMessageTitle(u"Plan"_s);
        edit.store.setMessageFooter(u"Bye\n%3"_s);
        edit.clickRow(u"apple"_s);
        QTest::mousePress(&edit.button("shareButton"), Qt::LeftButton);
        QTRY_COMPARE(picker.texts.size(), 1);
        edit.open(true);
        edit.name().setText(u"plum"_s);
        click(*edit.form, "shareTaskButton");
        QTRY_COMPARE(picker.texts.size(), 2);
        const QRegularExpression newKey(u"[0-9A-F]{8}-[-0-9A-F]{27}"_s);
        QVERIFY(newKey.match(picker.texts.at(0)).captured() != newKey.match(picker.texts.at(1)).captured());
        QCOMPARE(picker.texts.last().replace(newKey, u"NEW"_s),
                 u"Plan\n\nSchedule: plum\nStart Date: 3/7/26\nStart Time: 09:30\nEnd Time: 17:00\n"
                 "Due Date: 3/9/26\nDescription: a & b\nc %1\n\n\nClient: Harbor Cafe\nTeam Member: Dana\n\n"
                 "Task Key: KEY-apple\nMessage Key: NEW\n\nBye\n%3\n\n"
                 "Sent with Oblino. Download from the App Store for Mac:\n\n" OBLINO_STORE_ADDRESS ""_s);
        QTest::keyClick(edit.form, Qt::Key_Escape);
        QCOMPARE(edit.saved(), u"plum"_s);
        QVERIFY(edit.questions.asked.isEmpty()); // nothing is lost
    }
};

OBLINO_TEST(tst_taskforms, QApplication)

#include "tst_taskforms.moc"
