#include <support/table.h>
#include <support/testmain.h>
#include <support/widgets.h>

#include <platform/widgets/messageboxalert.h>
#include <ui/theme.h>

#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Presses = Table<std::function<void(QMessageBox *)>, std::optional<int>>;

class tst_uiutil : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersOnlyWhatWasPressed_data()
    {
        const Presses row;
        row(
            "Yes by mouse", [](QMessageBox *box) { QTest::mouseClick(box->buttons().at(0), Qt::LeftButton); },
            0);
        row(
            "Return takes the harmless one", [](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Return); },
            1);
        row(
            "Escape too", [](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); }, 1);
        row(
            "the event loop ends", [](QMessageBox *) { QCoreApplication::exit(0); }, std::nullopt);
    }

    void answersOnlyWhatWasPressed()
    {
        const auto [press, expected] = Presses::cells();
        std::optional<int> answer = -2;
        // In an event loop of the application's, as in the program.
        QTimer::singleShot(0, this, [&, press = press] {
            QTimer::singleShot(
                0, this, [&press] { press(qobject_cast<QMessageBox *>(QApplication::activeModalWidget())); });
            answer = MessageBoxAlert().ask({u"<b>?</b>"_s, {}, {u"Yes"_s, u"No"_s}, 1});
            QCoreApplication::exit(0);
        });
        QApplication::exec();
        QCOMPARE(answer, expected);
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
};

OBLINO_TEST(tst_uiutil, QApplication)

#include "tst_uiutil.moc"
