#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/widgets.h>

#include <app/startpageview.h>
#include <app/viewcontrollerenhancement.h>
#include <controls/theme.h>

#include <QDesktopServices>
#include <QTextBlock>
#include <QUrl>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

QSet<QString> picturesOf(const QTextDocument &page)
{
    QSet<QString> names;
    for (const QTextFormat &format : page.allFormats()) {
        if (format.isImageFormat())
            names += format.toImageFormat().name();
    }
    return names;
}

// The middle of a link on the screen.
QPoint placeOf(const StartPageView &view, const QString &text)
{
    QTextCursor link = view.document()->find(text);
    link.setPosition((link.selectionStart() + link.selectionEnd()) / 2);
    return view.cursorRect(link).center();
}

} // namespace

class tst_startpage : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void takeAddress(const QUrl &address) { m_opened += address; }

private Q_SLOTS:
    void cleanup() { QApplication::setPalette(calmPalette(false)); }

    void drawsInTheColoursOfTheAppearance()
    {
        QApplication::setPalette(calmPalette(false));
        ViewControllerEnhancement panel;
        showActive(panel);
        const auto &view = find<StartPageView>(panel, "webView");
        const QSet<QString> pictures = picturesOf(*view.document());
        QVERIFY(pictures.size() > 10);
        const auto drawn = [&view](const QString &name) {
            const QVariant picture = view.document()->resource(QTextDocument::ImageResource, QUrl(name));
            return picture.value<QPixmap>().toImage();
        };
        QHash<QString, QImage> inLight;
        for (const QString &name : pictures) {
            inLight[name] = drawn(name);
            QVERIFY2(inLight[name].width() > 10, qPrintable(name));
        }
        view.verticalScrollBar()->setValue(500);
        QApplication::setPalette(calmPalette(true));
        QTRY_COMPARE(view.palette().color(QPalette::Base), QColor(Qt::black));
        for (const QString &name : pictures)
            QVERIFY2(drawn(name) != inLight[name], qPrintable(name));
        QCOMPARE(view.verticalScrollBar()->value(), 500);
    }

    void followsLinksInsideAndLeavesOthersToTheBrowser()
    {
        QDesktopServices::setUrlHandler(u"https"_s, this, "takeAddress");
        const TemporaryHome home;
        TemporaryHome::write(home.path(u"page.html"_s), "<p><a href='#end'>inside</a></p>"
                                                        "<p><a href='https://example.org/'>outside</a></p>" +
                                                            QByteArray("<p>more</p>").repeated(200) +
                                                            "<p><a name='end'></a>end</p>");
        StartPageView view;
        view.setSource(QUrl::fromLocalFile(home.path(u"page.html"_s)));
        showActive(view);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, placeOf(view, u"outside"_s));
        QCOMPARE(m_opened, QList<QUrl>{QUrl(u"https://example.org/"_s)});
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, placeOf(view, u"inside"_s));
        QVERIFY(view.verticalScrollBar()->value() > 1000);
        QDesktopServices::unsetUrlHandler(u"https"_s);
    }

private:
    QList<QUrl> m_opened;
};

OBLINO_TEST(tst_startpage, QApplication)

#include "tst_startpage.moc"
