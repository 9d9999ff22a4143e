#include <support/scriptedalert.h>
#include <support/testmain.h>

#include <platform/widgets/messageboxalert.h>
#include <ui/theme.h>
#include <ui/uiutil.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimeEdit>
#include <QTimer>

using namespace oblino;

class tst_uiutil : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comparesDaysNotMoments_data()
    {
        QTest::addColumn<QDateTime>("date1");
        QTest::addColumn<QDateTime>("date2");
        QTest::addColumn<int>("number");
        QTest::addColumn<bool>("onOrBefore");
        const QDate day(2026, 3, 7);
        const QDateTime morning(day, QTime(0, 0));
        const QDateTime night(day, QTime(23, 59, 59));
        QTest::newRow("two times of one day, the later first") << night << morning << 0 << true;
        QTest::newRow("a second before midnight and the next day")
            << night << morning.addDays(1) << 1 << true;
        QTest::newRow("the next day first") << morning.addDays(1) << night << -1 << false;
    }

    void comparesDaysNotMoments()
    {
        QFETCH(QDateTime, date1);
        QFETCH(QDateTime, date2);
        QTEST(uiUtil().compareDate<int>(date1, date2), "number");
        QTEST(uiUtil().compareDate<bool>(date1, date2), "onOrBefore");
    }

    void setsAndReadsATimePicker_data()
    {
        QTest::addColumn<int>("hour");
        QTest::addColumn<int>("minute");
        QTest::addColumn<QTime>("shown");
        QTest::newRow("usual") << 7 << 5 << QTime(7, 5);
        QTest::newRow("from a file with an hour that is none") << 100 << -1 << QTime(23, 0);
    }

    void setsAndReadsATimePicker()
    {
        QFETCH(int, hour);
        QFETCH(int, minute);
        QFETCH(QTime, shown);
        QTimeEdit picker;
        uiUtil().setTimeDatePicker(picker, hour, minute);
        QCOMPARE(uiUtil().getHourFromDatePicker(picker), shown.hour());
        QCOMPARE(uiUtil().getMinuteFromDatePicker(picker), shown.minute());
    }

    void asksWithTheFixedTitles_data()
    {
        QTest::addColumn<std::optional<int>>("answer");
        QTest::addColumn<bool>("result");
        QTest::newRow("first button") << std::optional(0) << true;
        QTest::newRow("second button") << std::optional(1) << false;
        QTest::newRow("no answer") << std::optional<int>() << false;
    }

    void asksWithTheFixedTitles()
    {
        QFETCH(std::optional<int>, answer);
        QFETCH(bool, result);
        ScriptedAlert::Script script{.asked = {}, .answer = answer, .whileAsked = {}};
        UIUtil utilities(std::make_unique<ScriptedAlert>(script));
        QCOMPARE(utilities.dialogOKCancel(QStringLiteral("q"), QStringLiteral("t")), result);
        QCOMPARE(utilities.dialogYesNo(QStringLiteral("q"), QStringLiteral("t")), result);
        QVERIFY(utilities.dialogOK(QStringLiteral("t")));
        QCOMPARE(script.asked.at(0).buttons, QStringList({QStringLiteral("OK"), QStringLiteral("Cancel")}));
        QCOMPARE(script.asked.at(1).buttons, QStringList({QStringLiteral("Yes"), QStringLiteral("No")}));
        QCOMPARE(script.asked.at(2).messageText, QString());
    }

    void answersOnlyWhatWasPressed_data()
    {
        using Act = std::function<void(QMessageBox *)>;
        QTest::addColumn<Act>("act");
        QTest::addColumn<std::optional<int>>("answer");
        QTest::newRow("Yes by mouse")
            << Act([](QMessageBox *box) { QTest::mouseClick(box->buttons().at(0), Qt::LeftButton); })
            << std::optional(0);
        QTest::newRow("Return takes the harmless one")
            << Act([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Return); }) << std::optional(1);
        QTest::newRow("Escape too") << Act([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); })
                                    << std::optional(1);
        QTest::newRow("the event loop ends")
            << Act([](QMessageBox *) { QCoreApplication::exit(0); }) << std::optional<int>();
    }

    void answersOnlyWhatWasPressed()
    {
        QFETCH(std::function<void(QMessageBox *)>, act);
        std::optional<int> answer = -2;
        // In an event loop of the application's, as in the program.
        QTimer::singleShot(0, this, [&] {
            QTimer::singleShot(
                0, this, [&act] { act(qobject_cast<QMessageBox *>(QApplication::activeModalWidget())); });
            answer = MessageBoxAlert().ask(
                {QStringLiteral("<b>?</b>"), {}, {QStringLiteral("Yes"), QStringLiteral("No")}, 1});
            QCoreApplication::exit(0);
        });
        QApplication::exec();
        QTEST(answer, "answer");
    }

    void keepsTextReadableOnEveryColour()
    {
        const auto linear = [](float c) {
            return c <= 0.04045F ? c / 12.92F : std::pow((c + 0.055F) / 1.055F, 2.4F);
        };
        const auto luminance = [&linear](const QColor &c) {
            return 0.2126F * linear(c.redF()) + 0.7152F * linear(c.greenF()) + 0.0722F * linear(c.blueF());
        };
        for (int i = 0; i < 216; ++i) {
            const QColor background(i / 36 * 51, i / 6 % 6 * 51, i % 6 * 51);
            const float a = luminance(background) + 0.05F;
            const float b = luminance(readableOn(background)) + 0.05F;
            QVERIFY2(std::max(a, b) / std::min(a, b) >= 4.5F, qPrintable(background.name()));
        }
    }

    void drawsColoursFromOutsideTheScreensRange()
    {
        QCOMPARE(screenColor(Color(1.5, -0.25, 0.5, 1)), QColor::fromRgbF(1, 0, 0.5F, 1));
        QCOMPARE(laidOver(QColor(0, 0, 0, 0), Qt::white).name(), QStringLiteral("#ffffff"));
    }
};

OBLINO_TEST(tst_uiutil, QApplication)

#include "tst_uiutil.moc"
