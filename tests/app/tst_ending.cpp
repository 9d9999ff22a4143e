#include "../contacts/storecontacts.h"

#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/widgets.h>

#include <app/application.h>
#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <core/taskmanager.h>
#include <messaging/windows/viewcontrollersending.h>
#include <platform/singleinstance.h>

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

#include <unistd.h>

#include <csignal>
#include <functional>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Acts = Table<QByteArray, std::function<void(QWidget *)>>;

namespace {

const QByteArray list = "3/7/24|Paint fence|Two "
                        "coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0|Harbor Cafe|Dana^";

QWidget *mainWindow()
{
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeIf([](QWidget *window) { return !window->inherits("QMainWindow"); });
    return windows.value(0);
}

void press(const QMessageBox &box, const QString &title)
{
    for (QAbstractButton *button : box.buttons()) {
        if (button->text() == title)
            button->click();
    }
}

} // namespace

class tst_ending : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("HOME", QFile::encodeName(m_home.path({})));
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        TemporaryHome::write(m_home.listPath(), list);
    }

    void init() { tskMgr().setTasks({}); }

    // The first test, as the gateway stops for good.
    void aRunOutlivesItsWindowAndEndsOnASignal()
    {
        QTcpServer proxy; // in the way of every message
        QVERIFY(proxy.listen(QHostAddress::LocalHost));
        QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, u"127.0.0.1"_s, proxy.serverPort()});
        storeContacts<Clients>(contactsFolder(), {{}});

        SingleInstance instance(m_home.privateFolder());
        auto application = std::make_unique<Application>(instance);
        application->start();
        QWidget *window = mainWindow();
        const auto send = [window] {
            window->findChild<QAction *>(u"sendAction"_s)->trigger();
            const auto *sending = window->findChild<ViewControllerSending *>();
            click(*sending, "allClients");
            click(*sending, "sendSMSClientsTeamMembers");
        };
        QStringList asked;
        QTimer questions;
        connect(&questions, &QTimer::timeout, window, [&] {
            const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            asked += box->text();
            press(*box, asked.size() < 4 ? u"OK"_s : u"No"_s);
            if (asked.size() == 2)
                QTimer::singleShot(0, window, send);
            else if (asked.size() == 4)
                QCOMPARE(::raise(SIGTERM), 0);
        });
        questions.start(10);
        connect(&proxy, &QTcpServer::newConnection, window, [&] {
            QTcpSocket *connection = proxy.nextPendingConnection();
            auto *sending = window->findChild<ViewControllerSending *>();
            if (asked.size() > 1) {
                window->close();
                QVERIFY(window->isVisible());
                return;
            }
            if (sending)
                sending->close();
            connection->write("HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\n\r\n");
            connection->disconnectFromHost();
        });
        QTimer::singleShot(0, window, send);
        QTimer::singleShot(20'000, window, [] { // rather than hang
            QCoreApplication::exit(1);
        });
        QCOMPARE(QApplication::exec(), 0);
        application.reset(); // within the time after which the signal kills
        QVERIFY(::alarm(0) > 0);
        const QString question = u"Are you sure that you want to send SMS messages using Twilio?"_s;
        QCOMPARE(asked, (QStringList{question, u"Error Sending Messages. Check Twilio Configuration.\n"_s,
                                     question, u"Messages are still being sent. End all the same?"_s}));
    }

    void comesToTheFrontWhenItIsStartedAgain()
    {
        SingleInstance instance(m_home.privateFolder());
        Application application(instance);
        application.start();
        mainWindow()->showMinimized();
        Q_EMIT instance.raiseRequested();
        QVERIFY(!mainWindow()->isMinimized());
    }

    void aSignalSavesAndAnswersNothing_data()
    {
        const Acts row;
        row("the question whether to delete", {}, [](QWidget *window) { click(*window, "deleteButton"); });
        row("a form", {}, [](QWidget *window) {
            click(*window, "editButton");
            find<QLineEdit>(*window, "txtTaskName").setText(u"typed"_s);
        });
        row("notes", "A note", [](QWidget *window) {
            window->findChild<QAction *>(u"notesAction"_s)->trigger();
            find<QPlainTextEdit>(*window, "textEdit").insertPlainText(u"A note"_s);
        });
        row("a contact that is being typed", "Ann", [](QWidget *window) {
            window->findChild<QAction *>(u"clientsAction"_s)->trigger();
            const auto *clients = window->findChild<ViewControllerClientMgmt *>();
            click(*clients, "addButton");
            QTest::keyClicks(clients->findChild<QTableView *>()->findChild<QLineEdit *>(), u"Ann"_s);
        });
    }
    void aSignalSavesAndAnswersNothing()
    {
        const auto [saved, act] = Acts::cells();
        SingleInstance instance(m_home.privateFolder());
        Application application(instance);
        application.start();
        QWidget *window = mainWindow();
        find<QTableView>(*window, "tblView").selectRow(0);
        QTimer::singleShot(0, window, [window, act = act] { act(window); });
        QTimer opened;
        connect(&opened, &QTimer::timeout, window, [&opened, window] {
            if (QApplication::activeWindow() && QApplication::activeWindow() != window) {
                opened.stop();
                QCOMPARE(::raise(SIGTERM), 0);
            }
        });
        opened.start(10);
        QCOMPARE(QApplication::exec(), 0);
        ::alarm(0);
        QVERIFY(!opened.isActive());
        QCOMPARE(TemporaryHome::content(m_home.listPath()), list);
        QVERIFY(saved.isEmpty() || m_home.filesWith(saved).size() == 1);
    }

private:
    TemporaryHome m_home; // one for all tests, as the documents folder is found once
};

OBLINO_TEST(tst_ending, QApplication)

#include "tst_ending.moc"
