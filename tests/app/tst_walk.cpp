#include "startedapplication.h"

#include <support/httpsserver.h>
#include <support/testmain.h>
#include <support/timezone.h>

#include <app/viewcontrollerenhancement.h>
#include <contacts/windows/viewcontrollerclientmgmt.h>
#include <contacts/windows/viewcontrollerteammgmt.h>
#include <messaging/windows/viewcontrollersending.h>
#include <messaging/windows/viewcontrollersettings.h>
#include <tools/windows/earlierversionswindow.h>
#include <tools/windows/viewcontrollerdestroy.h>
#include <tools/windows/viewcontrollernotes.h>
#include <tools/windows/viewcontrollerwhiteboard.h>
#include <ui/windows/viewcontrolleradd.h>

#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

// Stands in the way of every connection and leads it to a server on this machine, whatever its name.
class Detour : public QTcpServer
{
public:
    explicit Detour(quint16 port)
    {
        connect(this, &QTcpServer::newConnection, this, [this, port] {
            QTcpSocket *client = nextPendingConnection();
            auto *server = new QTcpSocket(client);
            server->connectToHost(QHostAddress::LocalHost, port);
            connect(client, &QTcpSocket::readyRead, server, [client, server, asked = QByteArray()]() mutable {
                if (server->property("leads").toBool()) {
                    server->write(client->readAll());
                } else if ((asked += client->readAll()).endsWith("\r\n\r\n")) {
                    server->setProperty("leads", true);
                    client->write("HTTP/1.1 200 OK\r\n\r\n");
                }
            });
            connect(server, &QTcpSocket::readyRead, client, [=] { client->write(server->readAll()); });
        });
        listen(QHostAddress::LocalHost);
    }
};

// The program from an empty home.
struct Walk : StartedApplication
{
    // Opens a menu with Alt, and chooses in it.
    void choose(Qt::Key menu, Qt::Key item) const
    {
        press(menu, Qt::AltModifier);
        QVERIFY(QApplication::activePopupWidget());
        QTest::keyClick(QApplication::activePopupWidget(), item);
    }
    template<typename Window>
    Window *chosen(Qt::Key item) const
    {
        choose(Qt::Key_O, item);
        return opened<Window>();
    }
    template<typename Window>
    Window *opened() const
    {
        auto *found = window->findChild<Window *>();
        return found && getsKeys(found) ? found : nullptr;
    }

    // QTest takes a window for active when another one of its family is.
    static bool getsKeys(const QWidget *where)
    {
        return QTest::qWaitFor([where] { return QApplication::activeWindow() == where; });
    }
    static void type(const QWidget *where, const QString &field, const QString &text)
    {
        QWidget *widget = where->findChild<QWidget *>(field);
        QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, 8));
        QTest::keySequence(where->focusWidget(), QKeySequence::SelectAll);
        QTest::keyClicks(where->focusWidget(), text);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) const
    {
        window->activateWindow();
        QVERIFY(getsKeys(window));
        QTest::keyClick(window, key, modifiers);
    }

    [[nodiscard]] QStringList shown() const
    {
        const QAbstractItemModel *model = window->findChild<QTableView *>(u"tblView"_s)->model();
        QStringList names;
        for (int row = 0; row < model->rowCount(); ++row)
            names += model->index(row, 3).data().toString();
        return names;
    }
};

} // namespace

class tst_walk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        moveTo(m_home);
        QSslConfiguration::setDefaultConfiguration(m_authority.trust());
        qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(m_detour.serverPort()));
        m_server.setReply({Reply::answer("<TwilioResponse><Status>queued</Status></TwilioResponse>")});
    }

    void fromAnEmptyHomeToAnEmptyHome()
    {
        const Walk walk;
        QVERIFY(walk.shown().isEmpty());
        for (const auto step :
             {&tst_walk::enterClient, &tst_walk::enterTasks, &tst_walk::sendSchedule,
              &tst_walk::sendToTheCloudAndBack, &tst_walk::draw, &tst_walk::restore, &tst_walk::eraseAll}) {
            if (!QTest::currentTestFailed())
                (this->*step)(walk);
        }
    }

    void theGuideOpensFromEveryWindow()
    {
        TemporaryHome::write(m_home.listPath(), "1/1/24|old||1.0|1.0|1.0|1.0|1/1/24|0|0|Open|Low|old|"
                                                "false|8|0|9|0||^");
        const Walk walk;
        find<QTableView>(*walk.window, "tblView").selectRow(0);
        for (const char *action : {"newTaskAction", "editAction", "clientsAction", "teamMembersAction",
                                   "sendAction", "settingsAction", "notesAction", "whiteboardAction",
                                   "earlierVersionsAction", "eraserAction", "cloudAccountAction"}) {
            static_cast<const StartedApplication &>(walk).choose(action);
            QPointer<QWidget> window;
            QTRY_VERIFY2((window = QApplication::activeWindow()) && window != walk.window, action);
            QTest::keyClick(window->focusWidget() ? window->focusWidget() : window.data(), Qt::Key_F1);
            const QPointer guide = walk.window->findChild<ViewControllerEnhancement *>();
            QVERIFY2(guide && guide->isVisible(), action);
            guide->close();
            QTRY_VERIFY(!guide);
            window->close();
            QTRY_VERIFY(!window);
        }
    }

    void goesOnWithTheDay()
    {
        QByteArray list;
        for (const char *zone : {"WST12", "EST-14"}) { // between which it is never the same day
            const TimeZone there(zone);
            list += "1/1/24|"_ba + zone + "||1.0|1.0|1.0|1.0|" +
                    QDate::currentDate().toString(u"M/d/yy"_s).toUtf8() + "|0|0|Open|Low|" + zone +
                    "|false|8|0|9|0||^";
        }
        auto zone = std::make_unique<TimeZone>("WST12");
        TemporaryHome::write(m_home.listPath(), list);
        const Walk walk;
        walk.press(Qt::Key_0);
        QCOMPARE(walk.shown(), QStringList(u"WST12"_s));
        zone.reset();
        const TimeZone east("EST-14");
        Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive); // as a computer that wakes up
        QCOMPARE(walk.shown(), QStringList(u"EST-14"_s));
        walk.window->close();
    }

private:
    void enterClient(const Walk &walk)
    {
        auto *clients = walk.chosen<ViewControllerClientMgmt>(Qt::Key_C);
        QVERIFY(clients);
        click(*clients, "addButton");
        QTest::keyClicks(QApplication::focusWidget(), u"Ann Berg"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTRY_COMPARE(QApplication::focusWidget()->objectName(), u"phoneField"_s);
        QTest::keyClicks(QApplication::focusWidget(), u"+15550101"_s);
        click(*clients, "okButton");
    }

    void enterTasks(const Walk &walk)
    {
        for (const auto &[name, client] : {std::pair(u"Paint fence"_s, u"Ann Berg"_s),
                                           {u"Order timber"_s, u"Leo Lind"_s},
                                           {u"Repair gate"_s, u"Ann Berg"_s}}) {
            walk.press(Qt::Key_N);
            const QPointer form = walk.opened<ViewControllerAdd>();
            QVERIFY(form);
            Walk::type(form, u"client"_s, client);
            Walk::type(form, u"txtTaskName"_s, name);
            QTest::keyClick(form->focusWidget(), Qt::Key_Return);
            QTRY_VERIFY(!form);
        }
    }

    void sendSchedule(const Walk &walk)
    {
        auto *settings = walk.chosen<ViewControllerSettings>(Qt::Key_M);
        QVERIFY(settings);
        for (const auto &[field, text] : {std::pair(u"secureID"_s, u"AC1"_s),
                                          {u"passPhrase"_s, u"hushhush"_s},
                                          {u"sendingPhoneNo"_s, u"+15550100"_s},
                                          {u"messageTitle"_s, u"Week"_s}})
            Walk::type(settings, field, text);
        click(*settings, "sendSMS");
        click(*settings, "saveButton");

        auto *sending = walk.chosen<ViewControllerSending>(Qt::Key_S);
        QVERIFY(sending);
        click(*sending, "allClients");
        const auto *button = sending->findChild<QAbstractButton *>(u"sendMsgClients"_s);
        answering({u"OK"_s}, [sending] { click(*sending, "sendMsgClients"); });
        QTRY_VERIFY(button->isEnabled());        // when the run is over
        QCOMPARE(m_server.requests().size(), 3); // the header and two tasks
        QCOMPARE(m_server.requests().first().line(), "POST /2010-04-01/Accounts/AC1/SMS/Messages HTTP/1.1");
        QCOMPARE(m_server.requests().first().header("Host"), "api.twilio.com");
        QVERIFY(m_server.requests().last().body.startsWith("From=%2B15550100&To=%2B15550101&Body="));
        sending->close();
    }

    void sendToTheCloudAndBack(const Walk &walk)
    {
        QStringList asked = answering({u"OK"_s}, [&] { walk.choose(Qt::Key_C, Qt::Key_S); });
        QCOMPARE(asked.last(), u"Sync to iCloud succesfully!"_s);
        clickCell(find<QTableView>(*walk.window, "tblView"), 0, 3);
        walk.press(Qt::Key_K);
        QCOMPARE(TemporaryHome::content(m_home.listPath()).count("|Closed|"), 1);
        asked = answering({u"Yes"_s, u"OK"_s}, [&] { walk.choose(Qt::Key_C, Qt::Key_M); });
        QCOMPARE(asked.last(), u"Sync from iCloud succesfully!"_s);
        QCOMPARE(TemporaryHome::content(m_home.listPath()).count("|Closed|"), 0);
    }

    void draw(const Walk &walk)
    {
        auto *board = walk.chosen<ViewControllerWhiteboard>(Qt::Key_W);
        QVERIFY(board);
        QWidget &area = find<QWidget>(*board, "line");
        QTest::mousePress(&area, Qt::LeftButton, {}, {100, 100});
        QTest::mouseMove(&area, {300, 100});
        QTest::mouseRelease(&area, Qt::LeftButton, {}, {300, 100});
        QCOMPARE(QImage(m_board).pixelColor(200, 100), QColor(Qt::black));
        board->close();
    }

    void restore(const Walk &walk)
    {
        QCOMPARE(Documents::standard().versions(u"ltodonotes.txt"_s).keep("of before", VersionReason::Daily),
                 QString());
        const QPointer pad = walk.chosen<ViewControllerNotes>(Qt::Key_N);
        QVERIFY(pad);
        Walk::type(pad, u"textEdit"_s, u"just typed"_s);
        auto *versions = walk.chosen<EarlierVersionsWindow>(Qt::Key_V);
        QVERIFY(versions);
        auto &tabs = find<QTabBar>(*versions, "tabs");
        QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(1).center());
        clickCell(find<QTableView>(*versions, "versionTable"), 0, 1);
        click(*versions, "restoreButton");
        QCOMPARE(find<QPlainTextEdit>(*pad, "textEdit").toPlainText(), u"of before"_s);
        Walk::type(pad, u"textEdit"_s, u"Ann Berg likes green."_s);
        for (QWidget *window : {static_cast<QWidget *>(pad), static_cast<QWidget *>(versions)})
            window->close();
        QCOMPARE(TemporaryHome::content(m_notes), "Ann Berg likes green.");
        QCOMPARE(m_home.filesWith("just typed").size(), 1);
    }

    // What the windows hold must not come back when they are closed afterwards.
    void eraseAll(const Walk &walk)
    {
        QCOMPARE(filesWithTraces().size(), 5); // list, notes, contacts, cloud copy, settings
        auto *settings = walk.chosen<ViewControllerSettings>(Qt::Key_M);
        auto *team = walk.chosen<ViewControllerTeamMgmt>(Qt::Key_T);
        auto *notes = walk.chosen<ViewControllerNotes>(Qt::Key_N);
        QVERIFY(settings && team && notes);
        click(*team, "addButton");
        QTest::keyClicks(QApplication::focusWidget(), u"Tom Berg"_s);
        Walk::type(notes, u"textEdit"_s, u"Ann Berg likes blue."_s);
        QVERIFY(QFile::remove(m_notes) && QDir().mkdir(m_notes)); // so that the window keeps them
        notes->close();
        QVERIFY(QDir().rmdir(m_notes));
        TemporaryHome::write(m_notes, "of another program");

        auto *eraser = walk.chosen<ViewControllerDestroy>(Qt::Key_D);
        QVERIFY(eraser);
        click(*eraser, "deleteAll");
        const QStringList asked = answering({u"Yes"_s, u"OK"_s}, [eraser] { click(*eraser, "eraseButton"); });
        QCOMPARE(asked.last(), u"All Selected Records Deleted Successfully!"_s);
        QVERIFY(walk.shown().isEmpty());
        QCOMPARE(find<QLineEdit>(*settings, "passPhrase").text(), QString());
        for (QWidget *window : {static_cast<QWidget *>(settings), static_cast<QWidget *>(team),
                                static_cast<QWidget *>(walk.window)})
            window->close();
        QCOMPARE(filesWithTraces(), QSet<QString>());
        QVERIFY(!QFile::exists(m_board) && !QFile::exists(m_notes));
        QCOMPARE(TemporaryHome::content(m_home.listPath()), QByteArray());
    }

    // The files in which something stands that was typed above.
    [[nodiscard]] QSet<QString> filesWithTraces() const
    {
        QSet<QString> files;
        for (const char *typed : {"Berg", "timber", "hushhush"}) {
            const QStringList found = m_home.filesWith(typed);
            files += QSet(found.begin(), found.end());
        }
        return files;
    }

    TemporaryHome m_home;
    const QString m_notes = m_home.documents() + u"/ltodonotes.txt"_s;
    const QString m_board = m_home.path(u"ltodolistwhiteboard.png"_s);
    Certificate m_authority = Certificate::authority();
    HttpsServer m_server{m_authority.issue("DNS:api.twilio.com")};
    Detour m_detour{m_server.port()};
};

OBLINO_TEST(tst_walk, QApplication)

#include "tst_walk.moc"
