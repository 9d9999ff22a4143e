#include <app/viewcontrollerenhancement.h>

#include <config.h>
#include <controls/windowsize.h>
#include <ui_viewcontrollerenhancement.h>

namespace oblino {

ViewControllerEnhancement::ViewControllerEnhancement(QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::ViewControllerEnhancement>())
{
    m_ui->setupUi(this);
    viewDidLoad();
}

ViewControllerEnhancement::~ViewControllerEnhancement() = default;

void ViewControllerEnhancement::viewDidLoad()
{
    setLeastSize(*this, {400, 300});
    m_ui->webView->setSource(QUrl(QStringLiteral(OBLINO_START_PAGE)));
}

} // namespace oblino
