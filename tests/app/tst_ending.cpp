#include "../contacts/storecontacts.h"
#include "startedapplication.h"

#include <support/secondconnection.h>
#include <support/table.h>
#include <support/testmain.h>

#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <core/taskmanager.h>
#include <files/documents.h>
#include <messaging/windows/viewcontrollersending.h>
#include <tools/notesfile.h>

#include <QTcpServer>
#include <QTcpSocket>

#include <unistd.h>

#include <csignal>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Acts = Table<QByteArray, std::function<void(const StartedApplication &)>>;
using Ends = Table<QStringList, bool>;

namespace {

const QByteArray list = "3/7/24|Paint fence|Two "
                        "coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0|Harbor Cafe|Dana^";

const QByteArray secondRow = "3/8/24|Call||1.0|1.0|1.0|1.0|3/9/24|0|0|Open|Low|key-2|false|9|30|17|0||^";

// Nobody can write a file while a folder is in its place.
void block(const QString &path)
{
    QFile::rename(path, path + u".away"_s);
    QVERIFY(QDir().mkdir(path));
}

void unblock(const QString &path)
{
    QVERIFY(QDir().rmdir(path));
    QFile::rename(path + u".away"_s, path);
}

// Saves as these files in the dialogs that come, one after the other; an empty name cancels.
void chooseFiles(QTimer &timer, QStringList paths)
{
    const auto choose = [paths, last = QPointer<QFileDialog>()]() mutable {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog || dialog == last || paths.isEmpty())
            return;
        last = dialog;
        const QString path = paths.takeFirst();
        find<QLineEdit>(*dialog, "fileNameEdit").setText(path);
        QMetaObject::invokeMethod(dialog, path.isEmpty() ? "reject" : "accept", Qt::QueuedConnection);
    };
    QObject::connect(&timer, &QTimer::timeout, &timer, choose);
    timer.start(5);
}

} // namespace

class tst_ending : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        moveTo(m_home);
        TemporaryHome::write(m_home.listPath(), list);
    }

    void init() { tskMgr().setTasks({}); }

    // The first test, as the gateway stops for good.
    void aRunOutlivesItsWindowAndEndsOnASignal()
    {
        QTcpServer proxy; // in the way of every message
        QVERIFY(proxy.listen(QHostAddress::LocalHost));
        qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(proxy.serverPort()));
        storeContacts<Clients>(contactsFolder(), {{}});
        auto program = std::make_unique<StartedApplication>();
        const auto send = [&] {
            program->choose("sendAction");
            auto *sending = program->window->findChild<ViewControllerSending *>();
            click(*sending, "allClients");
            answering({u"OK"_s}, [&] { click(*sending, "sendSMSClientsTeamMembers"); });
            const bool sends = QTest::qWaitFor([&] { return proxy.hasPendingConnections(); });
            sending->close();
            return sends;
        };

        QVERIFY(send());
        QStringList asked = answering({u"OK"_s}, [&proxy] {
            QTcpSocket *connection = proxy.nextPendingConnection();
            connection->write("HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\n\r\n");
            connection->disconnectFromHost();
        });
        QCOMPARE(asked, QStringList(u"Error Sending Messages. Check Twilio Configuration.\n"_s));

        QVERIFY(send());
        asked = answering({u"No"_s}, [&] { program->window->close(); });
        QCOMPARE(asked, QStringList(u"Messages are still being sent. End all the same?"_s));
        QVERIFY(program->window->isVisible());
        QTimer::singleShot(0, this, [] { QCOMPARE(::raise(SIGTERM), 0); });
        QCOMPARE(QApplication::exec(), 0);
        program.reset(); // within the time after which the signal kills
        QVERIFY(::alarm(0) > 0);
    }

    void comesToTheFrontWhenItIsStartedAgain()
    {
        StartedApplication program;
        program.window->showMinimized();
        Q_EMIT program.instance.raiseRequested();
        QVERIFY(!program.window->isMinimized());
    }

    void aSignalSavesAndAnswersNothing_data()
    {
        const Acts row;
        row("the question whether to delete", {},
            [](const auto &program) { click(*program.window, "deleteButton"); });
        row("a form", {}, [](const auto &program) {
            click(*program.window, "editButton");
            find<QLineEdit>(*program.window, "txtTaskName").setText(u"typed"_s);
        });
        row("notes", "A note", [](const auto &program) {
            program.choose("notesAction");
            find<QPlainTextEdit>(*program.window, "textEdit").insertPlainText(u"A note"_s);
        });
        row("a contact that is being typed", "Ann", [](const auto &program) {
            program.choose("clientsAction");
            const auto &clients = *program.window->template findChild<ViewControllerClientMgmt *>();
            click(clients, "addButton");
            QTest::keyClicks(clients.template findChild<QTableView *>()->template findChild<QLineEdit *>(),
                             u"Ann"_s);
        });
    }
    void aSignalSavesAndAnswersNothing()
    {
        const auto [saved, act] = Acts::cells();
        const StartedApplication program;
        find<QTableView>(*program.window, "tblView").selectRow(0);
        QTimer::singleShot(0, this, [&program, act = act] { act(program); });
        QTimer opened;
        connect(&opened, &QTimer::timeout, this, [&] {
            if (QApplication::activeWindow() && QApplication::activeWindow() != program.window) {
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

    void asksOnceAboutAFormWhenTheUserQuits()
    {
        const StartedApplication program;
        QTest::keyClick(program.window, Qt::Key_N, Qt::ControlModifier);
        QTest::keyClicks(&find<QLineEdit>(*program.window, "txtTaskName"), u"typed"_s);
        int asked = 0;
        QTimer discarder;
        connect(&discarder, &QTimer::timeout, this, [&asked] {
            if (const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                ++asked;
                for (QAbstractButton *button : box->buttons())
                    if (button->text() == u"Discard"_s)
                        button->click();
            }
        });
        discarder.start(5);
        QTimer::singleShot(0, program.window, &QWidget::close);
        QCOMPARE(QApplication::exec(), 0);
        QCOMPARE(asked, 1);
        QVERIFY(m_home.filesWith("typed").isEmpty());
    }

    void theMainWindowTellsOfContactsThatCouldNotBeSaved()
    {
        const StartedApplication program;
        program.choose("clientsAction");
        auto *clients = program.window->findChild<ViewControllerClientMgmt *>();
        click(*clients, "addButton");
        QTest::keyClicks(clients->findChild<QTableView *>()->findChild<QLineEdit *>(), u"Bob"_s);
        SecondConnection other({.file = contactsFolder() + u"/Model.sqlite"_s});
        (void)other.run(u"BEGIN EXCLUSIVE"_s);
        clients->close();
        QVERIFY2(program.window->notice().startsWith(u"The clients could not be saved: "_s),
                 qPrintable(program.window->notice()));
        (void)other.run(u"ROLLBACK"_s);
        QCOMPARE(clients->saveNow(), QString());
        QCOMPARE(program.window->notice(), QString());
        QCOMPARE(other.run(u"SELECT count(*) FROM Clients WHERE name = 'Bob'"_s).toInt(), 1);
    }

    void keepsWhatCouldNotBeSaved_data()
    {
        const Ends
            row; // answers on the user's own quit, or none for a signal; has the disk room again; does it end
        row("the user quits when there is room again", {u""_s}, true);
        row("a signal when there is room again", {}, true);
        row("a signal", {}, false);
        row("the user cancels, then a signal", {u"Cancel"_s}, false);
        row("the user quits all the same", {u"Quit without saving"_s}, false);
        row("the user saves elsewhere", {u"Save elsewhere…"_s}, false);
    }
    void keepsWhatCouldNotBeSaved()
    {
        const auto [answers, hasRoom] = Ends::cells();
        const bool isCancelled = answers == QStringList(u"Cancel"_s);
        const QString notesPath = m_home.documents() + u"/ltodonotes.txt"_s;
        const QString elsewhere = m_home.path(u"elsewhere"_s);
        TemporaryHome::write(m_home.listPath(), list + secondRow);
        {
            const StartedApplication program;
            program.choose("notesAction");
            for (const QString &path : {m_home.listPath(), notesPath})
                block(path);
            find<QPlainTextEdit>(*program.window, "textEdit").insertPlainText(u"Ä note, 日本"_s);
            find<QTableView>(*program.window, "tblView").selectRow(0);
            answering({u"Yes"_s}, [&] { click(*program.window, "deleteButton"); });
            for (const QString &path : hasRoom ? QStringList{m_home.listPath(), notesPath} : QStringList())
                unblock(path);
            QTimer chooser;
            chooseFiles(chooser, {elsewhere + u".list"_s, elsewhere + u".notes"_s});
            const auto close = [&] { program.window->close(); };
            if (isCancelled) {
                QCOMPARE(answering(answers, close), QStringList(u"Not everything could be saved."_s));
                QVERIFY(program.window->isVisible());
            }
            QTimer::singleShot(0, this, [&, answers = answers] {
                if (answers.isEmpty() || isCancelled)
                    QCOMPARE(::raise(SIGTERM), 0);
                else if (hasRoom)
                    close();
                else
                    answering(answers, close);
            });
            QCOMPARE(QApplication::exec(), 0);
            ::alarm(0);
            QVERIFY(!program.window->isVisible());
        }
        // The list and the notes are whole somewhere.
        QVERIFY(!m_home.filesWith("Ä note, 日本").isEmpty());
        const QStringList found = m_home.filesWith(secondRow);
        QVERIFY(std::any_of(found.cbegin(), found.cend(),
                            [](const QString &path) { return TemporaryHome::content(path) == secondRow; }));
        QCOMPARE(TemporaryHome::content(m_home.listPath()) == secondRow, hasRoom);
        { // What is not where it belongs is offered at the next start, unless the user knows where it is.
            const StartedApplication next;
            const auto *box = next.window->findChild<QMessageBox *>();
            QCOMPARE(box != nullptr, !hasRoom && !QFile::exists(elsewhere + u".list"_s));
        }
        if (!hasRoom) {
            for (const QString &path : {m_home.listPath(), notesPath})
                unblock(path);
        }
        for (const QString &name : {TaskListFile::name, NotesFile::name}) // which the process goes on with
            QVERIFY(Documents::standard().file(name)->write({}).written);
        for (const QString &path : {elsewhere + u".list"_s, elsewhere + u".notes"_s})
            QFile::remove(path);
        QDir(contactsFolder()).removeRecursively();
    }

    void keepsWhatWasChangedAfterSavingElsewhere()
    {
        const QString notesPath = m_home.documents() + u"/ltodonotes.txt"_s;
        TemporaryHome::write(m_home.listPath(), list + secondRow);
        {
            const StartedApplication program;
            program.choose("notesAction");
            for (const QString &path : {m_home.listPath(), notesPath})
                block(path);
            find<QPlainTextEdit>(*program.window, "textEdit").insertPlainText(u"A note"_s);
            const auto clone = [&] {
                find<QTableView>(*program.window, "tblView").selectRow(0);
                click(*program.window, "cloneButton");
            };
            clone();
            QTimer chooser;
            chooseFiles(chooser, {m_home.path(u"elsewhere"_s), {}});
            answering({u"Save elsewhere…"_s, u"Cancel"_s}, [&] { program.window->close(); });
            QVERIFY(QFile::exists(m_home.path(u"elsewhere"_s)) && program.window->isVisible());
            clone();
            QCOMPARE(tskMgr().tasks().size(), 4);
            QTimer::singleShot(0, this, [] { QCOMPARE(::raise(SIGTERM), 0); });
            QCOMPARE(QApplication::exec(), 0);
            ::alarm(0);
        }
        const QStringList found = m_home.filesWith(secondRow);
        QVERIFY(std::any_of(found.cbegin(), found.cend(), [](const QString &path) {
            return path.contains(u"[rescued]"_s) && TemporaryHome::content(path).count('^') == 4;
        }));
        for (const QString &path : {m_home.listPath(), notesPath})
            unblock(path);
    }

private:
    TemporaryHome m_home; // one for all tests, as the documents folder is found once
};

OBLINO_TEST(tst_ending, QApplication)

#include "tst_ending.moc"
