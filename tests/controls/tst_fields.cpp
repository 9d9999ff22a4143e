#include <controls/colorbutton.h>
#include <controls/colorname.h>
#include <controls/datefield.h>
#include <controls/namebox.h>
#include <controls/noticebar.h>
#include <controls/searchfield.h>
#include <controls/swatches.h>
#include <controls/theme.h>
#include <support/test.h>
#include <support/widgets.h>

namespace {

// As the Web Content Accessibility Guidelines 2.1 define it.
double contrast(const Color &color, bool toWhite)
{
    double luminance = 0.05;
    for (const auto &[component, share] :
         {std::pair(color.red(), 0.2126), {color.green(), 0.7152}, {color.blue(), 0.0722}})
        luminance += share * (component > 0.04 ? std::pow((component + 0.055) / 1.055, 2.4) : component / 13);
    return toWhite ? 1.05 / luminance : luminance / 0.05;
}

} // namespace

class tst_fields : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsColorsByName_data()
    {
        const Table<Color, QString> row;
        row("nearly white", {0.99, 1, 0.98, 1}, u"White"_s);
        row("dark red", {0.55, 0.02, 0, 1}, u"Dark red"_s);
        row("the screen's blue", {0, 0, 1, 1}, u"Bright blue"_s);
        row("almost sky, and see-through", {0.65, 0.8, 0.99, 0.5}, u"Sky, 50% opaque"_s);
    }
    void tellsColorsByName()
    {
        const auto [color, name] = Table<Color, QString>::cells();
        QCOMPARE(colorName(color), name);
    }

    void offersColorsThatDifferAndCanBeWrittenOnOrWith()
    {
        for (const QList<Color> &colors : {taskSwatches(false), taskSwatches(true), penSwatches()}) {
            QSet<QString> names;
            for (const Color &color : colors) {
                names += colorName(color);
                QVERIFY(colors == penSwatches()
                            ? contrast(color, true) >= 3
                            : std::max(contrast(color, true), contrast(color, false)) >= 9);
            }
            QCOMPARE(names.size(), 12);
        }
    }

    void takesAColorByKeysAndByClick()
    {
        QWidget window;
        ColorButton button(&window);
        button.setColor({1, 1, 1, 1});
        showActive(window);
        const QSignalSpy picks(&button, &ColorButton::picked);
        const auto press = [](const QList<Qt::Key> &keys) {
            for (const Qt::Key key : keys)
                QTest::keyClick(QApplication::focusWidget(), key);
        };
        button.setFocus();
        QTest::keyClick(&button, Qt::Key_Down, Qt::AltModifier);
        press({Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Left, Qt::Key_Return});
        QVERIFY(!QApplication::activePopupWidget() && picks.size() == 1);
        QVERIFY(button.color() ==
                Color(251 / 255.0, 238 / 255.0, 125 / 255.0, 1)); // below and right of white
        QCOMPARE(button.accessibleName(), u"Color: Lemon"_s);
        press({Qt::Key_Space});
        QCOMPARE(QApplication::focusWidget()->accessibleName(), u"Lemon"_s);
        press({Qt::Key_Up, Qt::Key_Escape});
        QVERIFY(!QApplication::activePopupWidget() && picks.size() == 1);

        button.setPalette(calmPalette(true));
        QTest::mouseClick(&button, Qt::LeftButton);
        QTest::mouseClick(QApplication::focusWidget(), Qt::LeftButton); // the first, as none is the current
        QVERIFY(button.color() == Color(0, 0, 0, 1) && picks.size() == 2);
        press({Qt::Key_Space, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
        QVERIFY(find<QColorDialog>(window, "colorPanel").isVisible());
    }

    void whatIsInsideANamedFieldHasANameToo()
    {
        QWidget window;
        auto *names = new NameBox(&window);
        for (QWidget *field : std::initializer_list<QWidget *>{
                 new SearchField(&window), names, new DateField(&window), new NoticeBar(&window)})
            field->setAccessibleName(u"Client"_s);
        showActive(window);
        names->setNames({u"Ann"_s});
        names->showPopup();
        names->hidePopup();
        QCOMPARE(namelessIn(window), QString());
    }
};

OBLINO_TEST(tst_fields, QApplication)

#include "tst_fields.moc"
