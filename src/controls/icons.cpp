#include <controls/icons.h>

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <utility>

namespace oblino {

namespace {

QColor colorFor(QIcon::Mode mode)
{
    const QPalette palette = QApplication::palette();
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::ButtonText);
    case QIcon::Selected:
        return palette.color(QPalette::Active, QPalette::HighlightedText);
    case QIcon::Normal:
    case QIcon::Active:
        break;
    }
    return palette.color(QPalette::Active, QPalette::ButtonText);
}

class ThemedIconEngine : public QIconEngine
{
public:
    explicit ThemedIconEngine(QString name)
        : m_name(std::move(name))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        QFile file(QStringLiteral(":/icons/%1.svg").arg(m_name));
        if (!file.open(QIODevice::ReadOnly))
            return;
        const QByteArray drawing = file.readAll().replace("currentColor", colorFor(mode).name().toLatin1());
        QSvgRenderer(drawing).render(painter, rect);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        const QString key = QStringLiteral("oblino-icon %1 %2x%3 %4")
                                .arg(m_name)
                                .arg(size.width())
                                .arg(size.height())
                                .arg(colorFor(mode).name());
        QPixmap pixmap;
        if (QPixmapCache::find(key, &pixmap))
            return pixmap;
        pixmap = QPixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        QPixmapCache::insert(key, pixmap);
        return pixmap;
    }

    QString iconName() override { return m_name; }
    bool isNull() override { return false; }
    QIconEngine *clone() const override { return new ThemedIconEngine(m_name); }

private:
    QString m_name;
};

} // namespace

QIcon themedIcon(const QString &name)
{
    return QIcon(new ThemedIconEngine(name));
}

} // namespace oblino
