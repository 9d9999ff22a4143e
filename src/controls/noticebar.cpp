#include <controls/noticebar.h>

#include <controls/icons.h>
#include <controls/noticelabel.h>

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
    layout->addWidget(m_mark);
    layout->addWidget(m_notice, 1);
    layout->addWidget(away);
    show();
}

void NoticeBar::showNotices(const QStringList &notices)
{
    if (notices == m_notices)
        return;
    m_notices = notices;
    show();
}

void NoticeBar::setTrouble(const QString &thing, const QString &sentence)
{
    if (sentence == m_troubles.value(thing))
        return;
    if (sentence.isEmpty())
        m_troubles.remove(thing);
    else
        m_troubles.insert(thing, sentence);
    show();
}

void NoticeBar::putAway()
{
    m_troubles.clear();
    m_notices.clear();
    show();
}

QString NoticeBar::notice() const
{
    return m_notice->notice();
}

void NoticeBar::show()
{
    m_notice->setNotice((m_troubles.values() + m_notices).join(QLatin1Char(' ')));
    m_mark->setVisible(!m_troubles.isEmpty());
    setVisible(!m_notice->notice().isEmpty());
}

} // namespace oblino
