#include "mainwindowfixture.h"

#include <support/testmain.h>

#include <contacts/contactmodel.h>
#include <platform/sharingpicker.h>
#include <platform/widgets/sharingmenu.h>
#include <ui/colorbutton.h>
#include <ui/descriptionview.h>
#include <ui/viewcontrolleradd.h>
#include <ui/viewcontrolleredit.h>

#include <QColorDialog>
#include <QDateEdit>
#include <QPushButton>
#include <QTimeEdit>
#include <QUrlQuery>

using namespace oblino;

namespace {

const QList<Row> oneTask = {
    {.name = "apple", .client = "Harbor Cafe", .color = "0.1|0.5019607843137255|0.0|1.0"}};

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
    main.clickRow(QStringLiteral("apple"));
    QTest::keyClick(&main.table(), Qt::Key_Return);
    return opened<ViewControllerEdit>(main);
}

template<typename Control>
Control &find(QWidget &form, const char *name)
{
    auto *control = form.findChild<Control *>(QLatin1String(name));
    Q_ASSERT(control);
    return *control;
}

void press(QWidget &form, const char *name)
{
    QTest::mouseClick(&find<QPushButton>(form, name), Qt::LeftButton);
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
        QTest::keyClicks(&find<QLineEdit>(form, "txtTaskName"), QStringLiteral("Paint|^ fence"));
        find<QDateEdit>(form, "dtTaskDueDate").setDate(QDate(2030, 3, 9));
        find<QDateEdit>(form, "dtTaskDate").setDate(QDate(2030, 3, 7));
        QTest::keyClick(&find<QComboBox>(form, "inTaskPriority"), Qt::Key_H);
        find<QTimeEdit>(form, "startTime").setTime(QTime(9, 30));
        QTest::keyClicks(&find<QComboBox>(form, "client"), QStringLiteral("Harbor Cafe"));
        QTest::keyClicks(&find<DescriptionView>(form, "txtTaskDescription"), QStringLiteral("Two^ coats"));
        QTest::keyClick(&find<QLineEdit>(form, "txtTaskName"), Qt::Key_Return);

        const QString key = main.store.tasks().value(0).key;
        QCOMPARE(key.size(), 36);
        QCOMPARE(TemporaryHome::content(main.home.listPath()),
                 "3/7/30|Paint fence|Two coats|1.0|1.0|1.0|1.0|3/9/30|0|2|Open|High|" + key.toUtf8() +
                     "|false|9|30|17|0|Harbor Cafe|^");
        QCOMPARE(main.shown(), QStringLiteral("Paint fence"));
        QCOMPARE(main.store.defaultStartHour(), 9);
    }

    void leavesEverythingAsItWasWhenNothingIsTouched_data()
    {
        QTest::addColumn<QByteArray>("row");
        QTest::newRow("usual")
            << Row{.name = "apple", .client = "Gone from the directory", .color = "0.1|0.3|0.7|0.5"}.bytes();
        QTest::newRow("status and priority outside the lists")
            << QByteArray("3/7/26|apple||1.0|1.0|1.0|1.0|3/9/26|5|-2|Waiting|Whenever|K|true|9|30|17|0||^");
        QTest::newRow("names of other making")
            << QByteArray("3/7/26|apple||1.0|1.0|1.0|1.0|3/9/26|1|0|Done|low|K|false|9|30|17|0||^");
        QTest::newRow("times and texts that the controls cannot show") << QByteArray(
            "3/7/26|apple|a\r\nb\n|1.0|1.0|1.0|1.0|3/9/26|0|0|Open|Low|K|false|25|-1|100|99| x | y ^");
    }

    void leavesEverythingAsItWasWhenNothingIsTouched()
    {
        QFETCH(QByteArray, row);
        MainWindow main({{.name = "apple"}});
        TemporaryHome::write(main.home.listPath(), row);
        main.interfaceChange();
        main.views().setCurrentIndex(6);
        QWidget &form = openEdit(main);
        press(form, "saveButton");
        QCOMPARE(TemporaryHome::content(main.home.listPath()), row);
    }

    void checksDatesEachFormInItsWay_data()
    {
        QTest::addColumn<bool>("edit");
        QTest::addColumn<bool>("due");
        QTest::addColumn<int>("days");
        QTest::addColumn<QString>("message");
        const QString start = QStringLiteral("Select a Start Date prior to Due Date");
        const QString due = QStringLiteral("Select a Due Date after Start Date");
        QTest::newRow("add: start a day late") << false << false << 1 << start;
        QTest::newRow("add: start on the due day") << false << false << 0 << QString();
        QTest::newRow("add: due a day early") << false << true << -1 << due;
        QTest::newRow("edit: start a day late") << true << false << 3 << start;
        QTest::newRow("edit: start on the due day") << true << false << 2 << QString();
        QTest::newRow("edit: due a day early") << true << true << -3 << due;
    }

    void checksDatesEachFormInItsWay()
    {
        QFETCH(bool, edit);
        QFETCH(bool, due);
        QFETCH(int, days);
        QFETCH(QString, message);
        MainWindow main(oneTask);
        QWidget *form = edit ? static_cast<QWidget *>(&openEdit(main)) : &openAdd(main);
        auto &picker = find<QDateEdit>(*form, due ? "dtTaskDueDate" : "dtTaskDate");
        const QDate before = picker.date();
        picker.setDate(before.addDays(days));
        QCOMPARE(main.questions.asked.isEmpty() ? QString() : main.questions.asked.last().informativeText,
                 message);
        QCOMPARE(picker.date(), message.isEmpty() ? before.addDays(days) : before);
    }

    void comparesMomentsOnlyInTheEditForm()
    {
        MainWindow main({});
        const QDateTime noon(QDate(2030, 3, 7), QTime(12, 0));
        main.store.addTask(QStringLiteral("K"), noon, QStringLiteral("apple"), {}, Color(), noon.addDays(1),
                           0, 0, {}, {}, false, 8, 0, 9, 0, {}, {});
        main.notifications.post(QStringLiteral("reload"));
        QWidget &form = openEdit(main);
        auto &dueDate = find<QDateEdit>(form, "dtTaskDueDate");
        dueDate.setDateTime(noon.addSecs(-1));
        QCOMPARE(main.questions.asked.size(), 1);
        QCOMPARE(dueDate.dateTime(), noon.addDays(1));
        dueDate.setDateTime(noon);
        QCOMPARE(main.questions.asked.size(), 1);
    }

    void refusesAColourThatHidesTheDescription()
    {
        MainWindow main({});
        QWidget &form = openAdd(main);
        auto &color = find<ColorButton>(form, "color");
        pick(form, QColor(10, 20, 30));
        QVERIFY(color.color() == Color(10 / 255.0, 20 / 255.0, 30 / 255.0, 1));
        pick(form, Qt::black);
        QVERIFY(color.color() == Color(10 / 255.0, 20 / 255.0, 30 / 255.0, 1));
    }

    void followsTheAppearanceWhileItIsOpen()
    {
        MainWindow main(oneTask);
        QWidget &edit = openEdit(main);
        main.appearance.setInterfaceStyle(QStringLiteral("Dark"));
        QVERIFY(find<ColorButton>(edit, "color").color() == Color(0.9, 1 - 0.5019607843137255, 1, 1));
        QVERIFY(find<DescriptionView>(edit, "txtTaskDescription").textColor() == Color(1, 1, 1, 1));
        main.appearance.setInterfaceStyle(std::nullopt);
        press(edit, "saveButton");
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);

        QWidget &add = openAdd(main);
        pick(add, Qt::red);
        main.appearance.setInterfaceStyle(QStringLiteral("Dark"));
        QVERIFY(find<ColorButton>(add, "color").color() == Color(0, 0, 0, 1));
    }

    void writesToNoOtherTaskWhenItsOwnIsGone()
    {
        MainWindow main({{.name = "apple"}, {.name = "pear"}});
        QWidget &form = openEdit(main);
        main.store.setSelected(QStringLiteral("KEY-apple"));
        main.store.removeSelected();
        main.notifications.post(QStringLiteral("reload"));
        find<QLineEdit>(form, "txtTaskName").setText(QStringLiteral("plum"));
        press(form, "saveButton");
        QCOMPARE(main.questions.asked.size(), 1);
        QVERIFY(form.isVisible());
        QCOMPARE(main.saved(), QStringLiteral("pear"));
    }

    void offersTheNamesOfTheContacts()
    {
        MainWindow main({});
        const auto contacts = makeContactContainer(main.home.privateFolder());
        QVERIFY(contacts->loadPersistentStores().error.isEmpty());
        EntityModel *clients = contacts->viewContext()->objects(Clients::fetchRequest().entityName);
        QVERIFY(clients->insertRows(0, 1));
        QVERIFY(clients->setData(clients->index(0, NameColumn), QStringLiteral("Acme Ltd")));
        QVERIFY(contacts->viewContext()->save().isEmpty());
        QWidget &form = openAdd(main);
        auto &client = find<QComboBox>(form, "client");
        QCOMPARE(client.count(), 1);
        QCOMPARE(client.currentText(), QString());
        QCOMPARE(client.itemText(0), QStringLiteral("Acme Ltd"));
    }

    void sharesWhatTheFormShowsAndKeepsIt()
    {
        MainWindow main(oneTask);
        RecordingPicker picker;
        main.store.setSharingPicker(&picker);
        QWidget &form = openEdit(main);
        find<QLineEdit>(form, "txtTaskName").setText(QStringLiteral("plum"));
        press(form, "shareTaskButton");
        press(form, "shareTaskButton");
        QTRY_COMPARE(picker.texts.size(), 2);
        QVERIFY(picker.texts.first().startsWith(QStringLiteral("\n\nSchedule: plum\nStart Date: ")));
        const auto messageKey = [](const QString &text) {
            const QString label = QStringLiteral("Message Key: ");
            return text.mid(text.indexOf(label) + label.size(), 36);
        };
        const QString key = messageKey(picker.texts.first());
        QVERIFY(QUuid::fromString(key).version() == QUuid::Random && key == key.toUpper());
        QVERIFY(key != messageKey(picker.texts.last()));
        QCOMPARE(picker.texts.last().replace(messageKey(picker.texts.last()), key), picker.texts.first());
        QTest::keyClick(&form, Qt::Key_Escape);
        QCOMPARE(main.saved(), QStringLiteral("plum"));
    }

    void sharesFromTheListWhenTheMouseGoesDown()
    {
        MainWindow main(oneTask);
        RecordingPicker picker;
        main.store.setSharingPicker(&picker);
        main.clickRow(QStringLiteral("apple"));
        QTest::mousePress(&main.button("shareButton"), Qt::LeftButton);
        QTRY_COMPARE(picker.texts.size(), 1);
        QTest::mouseRelease(&main.button("shareButton"), Qt::LeftButton);
        QTest::keyClick(&main.button("shareButton"), Qt::Key_Space);
        QTRY_COMPARE(picker.texts.size(), 2);
    }

    void putsAWholeTextIntoTheDraft()
    {
        const QString text = QStringLiteral("a & b + 100% #1 ?=é🎉\n\nsecond line\nlast");
        const QUrl draft = SharingMenu::draftOf(text);
        QCOMPARE(draft.scheme(), QStringLiteral("mailto"));
        QByteArray body = draft.toEncoded();
        body = QByteArray::fromPercentEncoding(body.sliced(QByteArray("mailto:?body=").size()));
        QCOMPARE(QString::fromUtf8(body).replace(QLatin1String("\r\n"), QLatin1String("\n")), text);
        QVERIFY(!draft.toEncoded().contains('+'));
    }
};

OBLINO_TEST(tst_taskforms, QApplication)

#include "tst_taskforms.moc"
