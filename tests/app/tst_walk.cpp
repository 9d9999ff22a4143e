#include "startedapplication.h"

#include <support/httpsserver.h>

#include <base/appearance.h>
#include <files/documents.h>
#include <files/earlierversions.h>

namespace {

// The window that gets the keys after that one.
QWidget &next(const QWidget &before)
{
    const auto isOther = [&before] {
        return QApplication::activeWindow() && QApplication::activeWindow() != &before;
    };
    if (!QTest::qWaitFor(isOther))
        qFatal("no window has opened");
    return *QApplication::activeWindow();
}

void enter(const QWidget &window, const char *field, const QString &text)
{
    QTest::mouseClick(&find<QWidget>(window, field), Qt::LeftButton, {}, QPoint(8, 8));
    QTest::keySequence(window.focusWidget(), QKeySequence::SelectAll);
    QTest::keyClicks(window.focusWidget(), text);
}

} // namespace

// The functions are steps of one walk, from an empty home to an empty home.
class tst_walk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        moveTo(m_home);
        QSslConfiguration::setDefaultConfiguration(m_certificate.trust());
        qputenv("https_proxy", "http://127.0.0.1:" + QByteArray::number(m_server.port()));
        m_server.setReply({Reply::answer("<TwilioResponse><Status>queued</Status></TwilioResponse>")});
        m_program = std::make_unique<StartedApplication>();
        QCOMPARE(shown(), QString());
    }

    void comesToTheFrontWhenItIsStartedAgain()
    {
        window().showMinimized();
        Q_EMIT m_program->instance.raiseRequested();
        QVERIFY(!window().isMinimized());
    }

    void theGuideFollowsTheAppearance()
    {
        press(Qt::Key_F1, {});
        const auto &view = find<QTextBrowser>(next(window()), "webView");
        const auto drawn = [page = view.document()](const QString &name) {
            return page->resource(QTextDocument::ImageResource, QUrl(name)).value<QPixmap>().toImage();
        };
        for (const QTextFormat &format : view.document()->allFormats())
            QVERIFY(!format.isImageFormat() || drawn(format.toImageFormat().name()).width() > 10);
        view.verticalScrollBar()->setValue(500);
        const QImage light = drawn(u"qrc:/icons/close-task.svg"_s);
        const QByteArray traces = tracesOf([] { Appearance::standard().setInterfaceStyle(u"Dark"_s); });
        QVERIFY(traces.startsWith("Dark mode change\n"));
        QTRY_VERIFY(drawn(u"qrc:/icons/close-task.svg"_s) != light);
        QCOMPARE(view.verticalScrollBar()->value(), 500);
        Appearance::standard().setInterfaceStyle({});
        view.window()->close();
    }

    void enterClient()
    {
        const auto &clients = chosen(Qt::Key_C);
        click(clients, "addButton");
        QTest::keyClicks(QApplication::focusWidget(), u"Ann Berg"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTRY_COMPARE(QApplication::focusWidget()->objectName(), u"phoneField"_s);
        QTest::keyClicks(QApplication::focusWidget(), u"+15550101"_s);
        click(clients, "okButton");
    }

    void enterTasks()
    {
        for (const QString &name : {u"Ann Berg"_s, u"Leo Lind"_s, u"Ann Berg"_s}) {
            press(Qt::Key_N);
            const QPointer form = &opened();
            enter(*form, "client", name);
            enter(*form, "txtTaskName", u"for "_s + name);
            QTest::keyClick(form->focusWidget(), Qt::Key_Return);
            QTRY_VERIFY(!form);
        }
        QCOMPARE(shown(), u"for Ann Berg for Leo Lind for Ann Berg"_s);
    }

    void sendSchedule()
    {
        const auto &settings = chosen(Qt::Key_M);
        enter(settings, "secureID", u"AC1"_s);
        enter(settings, "passPhrase", u"Bergwerk"_s);
        enter(settings, "sendingPhoneNo", u"+15550100"_s);
        click(settings, "sendSMS");
        click(settings, "saveButton");

        auto &sending = chosen(Qt::Key_S);
        click(sending, "allClients");
        answering({u"OK"_s}, [&sending] { click(sending, "sendMsgClients"); });
        QTRY_VERIFY(find<QAbstractButton>(sending, "sendMsgClients").isEnabled()); // when the run is over
        QCOMPARE(m_server.requests().size(), 3);                                   // the header and two tasks
        QCOMPARE(m_server.requests().first().line(), "POST /2010-04-01/Accounts/AC1/SMS/Messages HTTP/1.1");
        QCOMPARE(m_server.requests().first().header("Host"), "api.twilio.com");
        QVERIFY(m_server.requests().last().body.startsWith("From=%2B15550100&To=%2B15550101&Body="));
        sending.close();
    }

    void sendToTheCloudAndBack()
    {
        const auto closed = [this] { return TemporaryHome::content(m_home.listPath()).count("|Closed|"); };
        QStringList asked = answering({u"OK"_s}, [this] { choose(Qt::Key_C, Qt::Key_S); });
        clickCell(find<QTableView>(window(), "tblView"), 0, 3);
        press(Qt::Key_K);
        QCOMPARE(closed(), 1);
        asked += answering({u"Yes"_s, u"OK"_s}, [this] { choose(Qt::Key_C, Qt::Key_M); });
        QCOMPARE(closed(), 0);
        QCOMPARE(asked.first(), u"Sync to iCloud succesfully!"_s);
        QCOMPARE(asked.last(), u"Sync from iCloud succesfully!"_s);
    }

    void draw()
    {
        auto &board = chosen(Qt::Key_W);
        auto &area = find<QWidget>(board, "line");
        QTest::mousePress(&area, Qt::LeftButton, {}, {100, 100});
        QTest::mouseMove(&area, {300, 100});
        QTest::mouseRelease(&area, Qt::LeftButton, {}, {300, 100});
        QCOMPARE(QImage(m_board).pixelColor(200, 100), QColor(Qt::black));
        board.close();
    }

    void restore()
    {
        QCOMPARE(Documents::standard().versions(u"ltodonotes.txt"_s).keep("of before", VersionReason::Daily),
                 QString());
        auto &notes = chosen(Qt::Key_N);
        enter(notes, "textEdit", u"just typed"_s);
        auto &versions = chosen(Qt::Key_V);
        auto &tabs = find<QTabBar>(versions, "tabs");
        QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(1).center());
        clickCell(find<QTableView>(versions, "versionTable"), 0, 1);
        click(versions, "restoreButton");
        QCOMPARE(find<QPlainTextEdit>(notes, "textEdit").toPlainText(), u"of before"_s);
        enter(notes, "textEdit", u"Ann Berg likes green."_s);
        notes.close();
        versions.close();
        QCOMPARE(TemporaryHome::content(m_notes), "Ann Berg likes green.");
        QCOMPARE(m_home.filesWith("just typed").size(), 1);
    }

    // What the windows hold must not come back when they are closed afterwards.
    void eraseAll()
    {
        QCOMPARE(m_home.filesWith("Berg").size(), 5); // list, notes, contacts, cloud copy, settings
        auto &settings = chosen(Qt::Key_M);
        auto &team = chosen(Qt::Key_T);
        click(team, "addButton");
        QTest::keyClicks(QApplication::focusWidget(), u"Tom Berg"_s);
        auto &notes = chosen(Qt::Key_N);
        enter(notes, "textEdit", u"Ann Berg likes blue."_s);
        QVERIFY(QFile::remove(m_notes) && QDir().mkdir(m_notes)); // so that the window keeps them
        notes.close();
        QVERIFY(QDir().rmdir(m_notes));
        TemporaryHome::write(m_notes, "of another program");

        const auto &eraser = chosen(Qt::Key_D);
        click(eraser, "deleteAll");
        const QStringList asked = answering({u"Yes"_s, u"OK"_s}, [&eraser] { click(eraser, "eraseButton"); });
        QCOMPARE(asked.last(), u"All Selected Records Deleted Successfully!"_s);
        QCOMPARE(shown() + find<QLineEdit>(settings, "passPhrase").text(), QString());
        for (QWidget *open : {&settings, &team, static_cast<QWidget *>(&window())})
            open->close();
        QCOMPARE(m_home.filesWith("Berg"), QStringList());
        QVERIFY(!QFile::exists(m_board) && !QFile::exists(m_notes));
        QCOMPARE(TemporaryHome::content(m_home.listPath()), QByteArray());
    }

private:
    ViewController &window() const { return *m_program->window; }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        window().activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &window());
        QTest::keyClick(&window(), key, modifiers);
    }
    // Opens a menu with Alt, and chooses in it.
    void choose(Qt::Key menu, Qt::Key item)
    {
        press(menu, Qt::AltModifier);
        QVERIFY(QApplication::activePopupWidget());
        QTest::keyClick(QApplication::activePopupWidget(), item);
    }
    QWidget &chosen(Qt::Key item)
    {
        choose(Qt::Key_O, item);
        return opened();
    }
    // The window that has opened; a key opens the guide from each.
    QWidget &opened()
    {
        QWidget &found = next(window());
        QTest::keyClick(found.focusWidget() ? found.focusWidget() : &found, Qt::Key_F1);
        const QPointer guide = &next(found);
        guide->close();
        found.activateWindow();
        (void)QTest::qWaitFor([&guide] { return !guide; });
        return found;
    }
    [[nodiscard]] QString shown() const { return columnOf(find<QTableView>(window(), "tblView"), 3); }

    TemporaryHome m_home;
    const QString m_notes = m_home.documents() + u"/ltodonotes.txt"_s;
    const QString m_board = m_home.path(u"ltodolistwhiteboard.png"_s);
    const Certificate m_certificate{u"DNS:api.twilio.com"_s};
    HttpsServer m_server{m_certificate};
    std::unique_ptr<StartedApplication> m_program;
};

OBLINO_TEST(tst_walk, QApplication)

#include "tst_walk.moc"
