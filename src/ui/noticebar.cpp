#include <ui/noticebar.h>

#include <platform/widgets/noticelabel.h>
#include <ui/icons.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace oblino {

NoticeBar::NoticeBar(QWidget *parent)
    : QWidget(parent)
    , m_notice(new NoticeLabel(this))
    , m_mark(new QLabel(this))
{
    m_notice->setObjectName(QStringLiteral("notice"));
    const int side = fontMetrics().height();
    m_mark->setPixmap(themedIcon(QStringLiteral("warning")).pixmap(side));
    m_mark->setAccessibleName(tr("Warning"));
    auto *away = new QToolButton(this);
    away->setObjectName(QStringLiteral("putNoticeAway"));
    away->setIcon(themedIcon(QStringLiteral("clear")));
    away->setAutoRaise(true);
    away->setToolTip(tr("Put this notice away. It can be read again in Tools ▸ Earlier Versions…"));
    away->setAccessibleName(tr("Put the notice away"));
    connect(away, &QToolButton::clicked, this, &NoticeBar::putAway);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 8, 8, 8);
    layout->setSpacing(8);
    layout->addWidget(m_mark, 0, Qt::AlignTop);
    layout->addWidget(m_notice, 1);
    layout->addWidget(away, 0, Qt::AlignTop);
    putAway();
}

void NoticeBar::tell(const QStringList &notices, bool isFailing)
{
    if (!notices.isEmpty()) {
        m_notice->setNotice(notices.join(QLatin1Char(' ')));
        m_mark->setVisible(isFailing);
        show();
    } else if (m_wasFailing && !isFailing) {
        putAway();
    }
    m_wasFailing = isFailing;
}

QString NoticeBar::notice() const
{
    return m_notice->notice();
}

void NoticeBar::putAway()
{
    m_notice->setNotice({});
    hide();
}

} // namespace oblino
