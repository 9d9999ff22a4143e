#include "../contacts/storecontacts.h"
#include "startedapplication.h"

#include <support/secondconnection.h>

#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <core/taskmanager.h>
#include <files/documents.h>
#include <messaging/windows/viewcontrollersending.h>
#include <tools/notesfile.h>

#include <QTcpServer>
#include <QTcpSocket>

#include <unistd.h>

#include <csignal>

using Ends = Table<QStringList, bool, bool>;

namespace {

const QByteArray list = "3/7/24|Paint fence||1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0||^"
                        "3/8/24|Call||1.0|1.0|1.0|1.0|3/9/24|0|0|Open|Low|key-2|false|9|30|17|0||^";

// Nobody can write a file while a folder is in its place.
void setWritable(const QStringList &paths, bool isWritable)
{
    for (const QString &path : paths) {
        if (!isWritable) {
            QFile::rename(path, path + u".away"_s);
            QVERIFY(QDir().mkdir(path));
        } else if (QDir().rmdir(path)) {
            QFile::rename(path + u".away"_s, path);
        }
    }
}

void endBySignal()
{
    QCOMPARE(::raise(SIGTERM), 0);
}

// Runs the program until that has ended it.
void run(const std::function<void()> &end)
{
    QTimer::singleShot(0, end);
    QCOMPARE(QApplication::exec(), 0);
}

void cloneFirst(const StartedApplication &program)
{
    find<QTableView>(*program.window, "tblView").selectRow(0);
    click(*program.window, "cloneButton");
}

void typeNote(const StartedApplication &program)
{
    program.choose("notesAction");
    find<QPlainTextEdit>(*program.window, "textEdit").insertPlainText(u"Ä note, 日本"_s);
}

ViewControllerClientMgmt &typeClient(const StartedApplication &program, const QString &name)
{
    program.choose("clientsAction");
    auto &clients = *program.window->findChild<ViewControllerClientMgmt *>();
    click(clients, "addButton");
    QTest::keyClicks(clients.focusWidget(), name);
    return clients;
}

} // namespace

class tst_ending : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { moveTo(m_home); }
    void init()
    {
        tskMgr().setTasks({});
        TemporaryHome::write(m_home.listPath(), list);
    }
    void cleanup() { ::alarm(0); } // after which the signal kills

    // The first test, as the gateway stops for good.
    void aRunOutlivesItsWindowAndEndsOnASignal()
    {
        QTcpServer proxy; // in the way of every message
        QVERIFY(proxy.listen(QHostAddress::LocalHost));
        qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(proxy.serverPort()));
        storeContacts<Clients>(contactsFolder(), {{}});
        const StartedApplication program;
        const auto send = [&] {
            program.choose("sendAction");
            auto *sending = program.window->findChild<ViewControllerSending *>();
            click(*sending, "allClients");
            answering({u"OK"_s}, [&] { click(*sending, "sendSMSClientsTeamMembers"); });
            const bool sends = QTest::qWaitFor([&] { return proxy.hasPendingConnections(); });
            sending->close();
            return sends;
        };

        QVERIFY(send());
        QStringList asked = answering({u"No"_s}, [&] { program.window->close(); });
        QVERIFY(program.window->isVisible());
        asked += answering({u"OK"_s}, [&proxy] {
            QTcpSocket *connection = proxy.nextPendingConnection();
            connection->write("HTTP/1.1 502 Bad Gateway\r\nContent-Length: 0\r\n\r\n");
            connection->disconnectFromHost();
        });
        QCOMPARE(asked, QStringList({u"Messages are still being sent. End all the same?"_s,
                                     u"Error Sending Messages. Check Twilio Configuration.\n"_s}));
        QVERIFY(send());
        run(endBySignal);
    }

    void aSignalSavesAndAnswersNothing()
    {
        const StartedApplication program;
        typeNote(program);
        find<QTableView>(*program.window, "tblView").selectRow(0);
        click(*program.window, "editButton");
        find<QLineEdit>(*program.window, "txtTaskName").setText(u"typed"_s);
        run([&program] {
            QTimer::singleShot(0, [] {
                QVERIFY(qobject_cast<QMessageBox *>(QApplication::activeModalWidget()));
                endBySignal();
            });
            click(*program.window, "deleteButton");
        });
        QCOMPARE(TemporaryHome::content(m_home.listPath()), list);
        QCOMPARE(TemporaryHome::content(m_notesPath), "Ä note, 日本");
    }

    void asksOnceAboutAFormWhenTheUserQuits()
    {
        const StartedApplication program;
        QTest::keyClick(program.window, Qt::Key_N, Qt::ControlModifier);
        QTest::keyClicks(&find<QLineEdit>(*program.window, "txtTaskName"), u"typed"_s);
        run([&program] { answering({u"Discard"_s}, [&] { program.window->close(); }); });
        QVERIFY(m_home.filesWith("typed").isEmpty());
    }

    void savesContactsThatCouldNotBeSavedAndTheOneThatIsTyped()
    {
        const StartedApplication program;
        auto &clients = typeClient(program, u"Bob"_s);
        SecondConnection other({.file = contactsFolder() + u"/Model.sqlite"_s});
        (void)other.run(u"BEGIN EXCLUSIVE"_s);
        clients.close();
        const QString notice = program.window->notice();
        QVERIFY2(notice.startsWith(u"The clients could not be saved: "_s), qPrintable(notice));
        (void)other.run(u"ROLLBACK"_s);
        QCOMPARE(clients.saveNow(), QString());
        QCOMPARE(program.window->notice(), QString());
        typeClient(program, u"Ann"_s);
        run(endBySignal);
        QCOMPARE(other.run(u"SELECT count(*) FROM Clients WHERE name IN ('Bob', 'Ann')"_s).toInt(), 2);
    }

    void keepsWhatCouldNotBeSaved_data()
    {
        const QString save = u"Save elsewhere…"_s;
        const Ends
            row; // answers when the user quits; room for a signal after that; whether it is offered then
        row("a signal", {}, false, true);
        row("the user quits all the same", {u"Quit without saving"_s}, false, true);
        row("the user saves elsewhere", QStringList(save) + m_elsewhere, false, false);
        row("a change after saving elsewhere", {save, m_elsewhere.first(), {}, u"Cancel"_s}, false, true);
        row("room again", {u"Cancel"_s}, true, false);
    }
    void keepsWhatCouldNotBeSaved()
    {
        const auto [answers, hasRoom, isOffered] = Ends::cells();
        const QStringList paths = {m_home.listPath(), m_notesPath};
        qsizetype count = 0;
        {
            const StartedApplication program;
            setWritable(paths, false);
            typeNote(program);
            cloneFirst(program);
            run([&, answers = answers, hasRoom = hasRoom] {
                answering(answers, [&] { answers.isEmpty() || program.window->close(); });
                if (!program.window->isVisible())
                    return;
                cloneFirst(program);
                if (hasRoom)
                    setWritable(paths, true);
                endBySignal();
            });
            count = tskMgr().tasks().size();
            QVERIFY(!program.window->isVisible());
        }
        // The list and the notes are whole somewhere.
        QVERIFY(!m_home.filesWith("Ä note, 日本").isEmpty());
        const QStringList found = hasRoom ? QStringList(m_home.listPath()) : m_home.filesWith("|Call|");
        QVERIFY(std::any_of(found.cbegin(), found.cend(), [count](const QString &path) {
            return !path.endsWith(u".journal"_s) && TemporaryHome::content(path).count('^') == count;
        }));
        QCOMPARE(StartedApplication().window->findChild<QMessageBox *>() != nullptr, isOffered);
        setWritable(paths, true);
        for (const QString &name : {TaskListFile::name, NotesFile::name}) // which the process goes on with
            QVERIFY(Documents::standard().file(name)->write({}).written);
        for (const QString &path : m_elsewhere)
            QFile::remove(path);
        QDir(contactsFolder()).removeRecursively();
    }

private:
    TemporaryHome m_home; // one for all tests, as the documents folder is found once
    const QString m_notesPath = m_home.documents() + u"/ltodonotes.txt"_s;
    const QStringList m_elsewhere = {m_home.path(u"elsewhere.list"_s), m_home.path(u"elsewhere.notes"_s)};
};

OBLINO_TEST(tst_ending, QApplication)

#include "tst_ending.moc"
