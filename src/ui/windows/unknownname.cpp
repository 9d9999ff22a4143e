#include <ui/windows/unknownname.h>

#include <controls/elidedlabel.h>

#include <QHBoxLayout>
#include <QPushButton>

namespace oblino {

UnknownName::UnknownName(QWidget *parent)
    : QWidget(parent)
    , m_label(new ElidedLabel(this))
{
    auto *add = new QPushButton(tr("Add…"), this);
    add->setAutoDefault(false);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_label, 1);
    layout->addWidget(add);
    connect(add, &QPushButton::clicked, this, &UnknownName::addRequested);
    hide();
}

void UnknownName::setNotice(const QString &sentence)
{
    m_label->setText(sentence);
    setVisible(!sentence.isEmpty());
}

} // namespace oblino
