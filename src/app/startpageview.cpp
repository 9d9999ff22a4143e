#include <app/startpageview.h>

#include <QEvent>
#include <QPainter>
#include <QPixmap>
#include <QScrollBar>
#include <QSvgRenderer>

#include <utility>

namespace oblino {

namespace {

constexpr int margin = 24; // pixels around the text

} // namespace

StartPageView::StartPageView(QWidget *parent)
    : QTextBrowser(parent)
{
    setOpenExternalLinks(true);
    document()->setDocumentMargin(margin);
    prepareStyle();
}

// A page takes the style that stands when it is loaded.
void StartPageView::prepareStyle()
{
    document()->setDefaultStyleSheet(
        QStringLiteral("a { color: %1; } h1, h2 { font-weight: 600; } h2 { margin-top: 28px; } "
                       "p { line-height: 135%; margin-bottom: 8px; } td { padding: 4px 24px 4px 0px; } "
                       "img { vertical-align: middle; }")
            .arg(palette().color(QPalette::Link).name()));
}

QVariant StartPageView::loadResource(int type, const QUrl &name)
{
    QVariant resource = QTextBrowser::loadResource(type, name);
    if (type == QTextDocument::ImageResource && name.path().endsWith(QLatin1String(".svg")))
        return drawn(resource.toByteArray());
    return resource;
}

QPixmap StartPageView::drawn(QByteArray svg) const
{
    const std::pair<const char *, QPalette::ColorRole> roles[] = {{"currentColor", QPalette::Text},
                                                                  {"accentColor", QPalette::Highlight},
                                                                  {"paperColor", QPalette::Base},
                                                                  {"mutedColor", QPalette::Mid}};
    for (const auto &[word, role] : roles)
        svg.replace(word, palette().color(QPalette::Active, role).name().toLatin1());
    QSvgRenderer renderer(svg);
    const qreal pixels = devicePixelRatioF();
    QPixmap pixmap(renderer.defaultSize() * pixels);
    pixmap.setDevicePixelRatio(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter, QRectF({}, renderer.defaultSize()));
    return pixmap;
}

void StartPageView::changeEvent(QEvent *event)
{
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || source().isEmpty())
        return;
    const int place = verticalScrollBar()->value();
    prepareStyle();
    reload();
    verticalScrollBar()->setValue(place);
}

} // namespace oblino
