#include <support/table.h>
#include <support/testmain.h>

#include <controls/noticelabel.h>

#include <QAccessible>
#include <QVBoxLayout>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_noticelabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isHiddenWhileItHasNothingToSay()
    {
        QWidget window;
        NoticeLabel label(&window);
        window.show();
        QVERIFY(!label.isVisible());
        label.setNotice(u"Not saved: disk full."_s);
        QVERIFY(label.isVisible());
        label.setNotice({});
        QVERIFY(!label.isVisible());
    }

    void staysInANarrowWindow_data()
    {
        const Table<QString> row;
        row("a path",
            u"It was copied to /home/dana/.local/share/Oblino/recovery/2026-03-01 10.31.00 a.txt"_s);
        row("one long word", u"x"_s.repeated(400));
        row("what looks like markup", u"<b>“a&b”</b> /tmp/<i>"_s);
        row("emoji", u"\U0001F600"_s.repeated(100));
    }
    void staysInANarrowWindow()
    {
        const auto [text] = Table<QString>::cells();
        QWidget window;
        QVBoxLayout layout(&window);
        layout.setContentsMargins({});
        auto *label = new NoticeLabel;
        layout.addWidget(label);
        layout.addStretch();
        QFont font = label->font();
        font.setPointSizeF(font.pointSizeF() * 1.5);
        label->setFont(font);
        label->setNotice(text);
        window.resize(320, 600);
        window.show();

        QCOMPARE(window.width(), 320);
        // The whole text lies inside the label.
        const QRect needed =
            label->fontMetrics().boundingRect(QRect(0, 0, 320, 10000), Qt::TextWordWrap, label->text());
        QVERIFY2(needed.width() <= 320 && needed.height() <= label->height(),
                 qPrintable(u"%1 x %2"_s.arg(needed.width()).arg(needed.height())));
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(label->notice(), text);
        QCOMPARE(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name), text);
        QVERIFY(!label->text().contains(u"\xd83d\u200b"_s)); // no character is cut in two
    }
};

OBLINO_TEST(tst_noticelabel, QApplication)

#include "tst_noticelabel.moc"
