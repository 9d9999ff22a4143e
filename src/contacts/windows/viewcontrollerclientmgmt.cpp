#include <contacts/windows/viewcontrollerclientmgmt.h>

#include <base/trace.h>
#include <contacts/windows/contactdelegate.h>
#include <contacts/windows/contacttable.h>
#include <ui_viewcontrollerclientmgmt.h>

namespace oblino {

ViewControllerClientMgmt::ViewControllerClientMgmt(const QString &folder, QWidget *parent,
                                                   std::chrono::milliseconds retryInterval)
    : ContactWindow(folder, parent, retryInterval)
    , m_ui(std::make_unique<Ui::ViewControllerClientMgmt>())
{
    loadView();
}

ViewControllerClientMgmt::~ViewControllerClientMgmt()
{
    saveAtEnd();
}

void ViewControllerClientMgmt::loadView()
{
    m_ui->setupUi(this);
    clientTable = m_ui->clientTable;
    clientTableArray = new ContactList(this);
    clientTableArray->setObjectName(QStringLiteral("clientTableArray"));
    connect(m_ui->addButton, &QPushButton::clicked, this, [this] { AddCient(m_ui->addButton); });
    connect(m_ui->removeButton, &QPushButton::clicked, this, [this] { RemoveClient(m_ui->removeButton); });
    connect(m_ui->okButton, &QPushButton::clicked, this, [this] { okpressed(m_ui->okButton); });
    connect(&clientTable->delegate(), &ContactDelegate::nameChanged, this,
            [this] { nameChange(clientTable); });
    openStore({clientTable, clientTableArray, m_ui->addButton, m_ui->removeButton}, Clients::fetchRequest(),
              {.plural = tr("clients"), .title = tr("The clients"), .file = Clients::rescueFile});
}

void ViewControllerClientMgmt::AddCient(QObject * /*sender*/)
{
    addContact();
}

void ViewControllerClientMgmt::RemoveClient(QObject * /*sender*/)
{
    removeContacts();
}

void ViewControllerClientMgmt::resetData(QObject * /*sender*/) {}

void ViewControllerClientMgmt::nameChange(QObject * /*sender*/)
{
    trace("Name Change");
}

void ViewControllerClientMgmt::okpressed(QObject * /*sender*/)
{
    close();
}

} // namespace oblino
