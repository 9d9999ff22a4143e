
#include <controls/noticelabel.h>
#include <support/test.h>

#include <QAccessible>

class tst_noticelabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void staysInANarrowWindow()
    {
        QWidget window;
        QVBoxLayout layout(&window);
        layout.setContentsMargins({});
        auto *label = new NoticeLabel;
        layout.addWidget(label);
        layout.addStretch();
        window.resize(320, 600);
        window.show();
        QVERIFY(!label->isVisible()); // while it has nothing to say
        for (const QString &text :
             {u"It was copied to /home/dana/.local/share/Oblino/recovery/2026-03-01 10.31.00 a.txt"_s,
              u"x"_s.repeated(400), u"<b>“a&b”</b> /tmp/<i>"_s, u"x"_s + u"\U0001F600"_s.repeated(100)}) {
            label->setNotice(text);
            QTRY_COMPARE(window.width(), 320);
            // The whole text lies inside the label.
            const auto needed = [label] {
                return label->fontMetrics().boundingRect({0, 0, 320, 10000}, Qt::TextWordWrap, label->text());
            };
            QTRY_VERIFY(needed().width() <= 320 && needed().height() <= label->height());
            QVERIFY(label->isVisible() && label->textFormat() == Qt::PlainText);
            QCOMPARE(QAccessible::queryAccessibleInterface(label)->text(QAccessible::Name), text);
            QVERIFY(!label->text().contains(u"\xd83d\u200b"_s)); // no character is cut in two
        }
    }
};

OBLINO_TEST(tst_noticelabel, QApplication)

#include "tst_noticelabel.moc"
