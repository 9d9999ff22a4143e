#include <contacts/windows/viewcontrollerclientmgmt.h>

#include <base/trace.h>
#include <ui_contactwindow.h>

namespace oblino {

ViewControllerClientMgmt::ViewControllerClientMgmt(const QString &folder, QWidget *parent,
                                                   std::chrono::milliseconds retryInterval)
    : ContactWindow({.request = Clients::fetchRequest(),
                     .rescueFile = Clients::rescueFile,
                     .tableName = QStringLiteral("clientTable"),
                     .title = tr("Clients"),
                     .singular = tr("client"),
                     .plural = tr("clients")},
                    folder, parent, retryInterval)
{
    connect(m_ui->addButton, &QPushButton::clicked, this, [this] { AddCient(m_ui->addButton); });
    connect(m_ui->removeButton, &QPushButton::clicked, this, [this] { RemoveClient(m_ui->removeButton); });
    connect(m_ui->okButton, &QPushButton::clicked, this, [this] { okpressed(m_ui->okButton); });
    loadView();
}

void ViewControllerClientMgmt::nameChange(QObject * /*sender*/)
{
    trace("Name Change");
}

} // namespace oblino
