#pragma once

#include <QPixmap>
#include <QTextBrowser>

namespace oblino {

/// Shows a page of the program's own in the colours of the palette, and opens its links to the world in the
/// user's browser. In drawings (SVG) `currentColor` stands for the colour of texts, `accentColor`,
/// `paperColor` and `mutedColor` for those of selections, of the ground and of what matters less.
class StartPageView : public QTextBrowser
{
    Q_OBJECT

public:
    explicit StartPageView(QWidget *parent = nullptr);

    [[nodiscard]] QVariant loadResource(int type, const QUrl &name) override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void prepareStyle();
    [[nodiscard]] QPixmap drawn(QByteArray svg) const;
};

} // namespace oblino
