#include <support/table.h>
#include <support/testmain.h>

#include <controls/oblinostyle.h>
#include <controls/theme.h>

#include <QtWidgets>

#include <cmath>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

// The contrast ratio of the Web Content Accessibility Guidelines 2.1, 1 to 21.
double contrast(const QColor &a, const QColor &b)
{
    const auto luminance = [](const QColor &color) {
        const auto linear = [](float part) {
            return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

template<typename Widget>
QWidget *make()
{
    return new Widget;
}

using Row = Table<QWidget *(*)(), QStyle::SubElement>;

} // namespace

class tst_theme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QApplication::setStyle(new OblinoStyle); }

    void controlsStandOutFromADarkGround_data()
    {
        const Row row;
        row("check box", make<QCheckBox>, QStyle::SE_CheckBoxIndicator);
        row("radio button", make<QRadioButton>, QStyle::SE_RadioButtonIndicator);
        row("line edit", make<QLineEdit>, QStyle::SE_CustomBase);
        row("list of names", make<QComboBox>, QStyle::SE_CustomBase);
    }
    // Along the line through their middle, something contrasts with the ground before the field begins.
    void controlsStandOutFromADarkGround()
    {
        const auto [make, element] = Row::cells();
        const QPalette palette = calmPalette(true);
        QApplication::setPalette(palette);
        const std::unique_ptr<QWidget> control(make());
        control->resize(control->sizeHint());
        QRect place = control->rect();
        if (element != QStyle::SE_CustomBase) {
            QStyleOptionButton option;
            option.initFrom(control.get());
            place = control->style()->subElementRect(element, &option, control.get());
        }
        const QImage image = control->grab().toImage();
        double best = 0;
        for (int x = place.left(); x < place.left() + 3; ++x)
            best = std::max(
                best, contrast(image.pixelColor(x, place.center().y()), palette.color(QPalette::Window)));
        QVERIFY2(best >= 3, qPrintable(QString::number(best)));
    }
};

OBLINO_TEST(tst_theme, QApplication)

#include "tst_theme.moc"
