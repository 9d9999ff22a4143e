#include <controls/colorbutton.h>
#include <controls/datefield.h>
#include <controls/descriptionview.h>
#include <controls/namebox.h>
#include <controls/noticebar.h>
#include <controls/searchfield.h>
#include <controls/timefield.h>
#include <support/test.h>
#include <support/widgets.h>

class tst_names : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsInsideANamedFieldHasANameToo()
    {
        QWidget window;
        QList<QWidget *> fields = {new SearchField(&window), new NameBox(&window),
                                   new DateField(&window),   new TimeField(&window),
                                   new NoticeBar(&window),   new DescriptionView(&window),
                                   new ColorButton(&window)};
        for (QWidget *field : fields)
            field->setAccessibleName(u"Client"_s);
        showActive(window);
        auto &names = *window.findChild<NameBox *>();
        names.setNames({u"Ann"_s});
        names.showPopup();
        names.hidePopup();
        QCOMPARE(namelessIn(window), QString());
    }
};

OBLINO_TEST(tst_names, QApplication)

#include "tst_names.moc"
