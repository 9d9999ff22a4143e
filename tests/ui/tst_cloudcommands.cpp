#include "mainwindowfixture.h"

#include <support/scriptedcontainer.h>

#include <cloud/taskcloud.h>
#include <records/sqlcloudcontainer.h>

using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

namespace {

// The main window with a cloud in a file of its own.
struct CloudWindow : MainWindow
{
    CloudWindow()
        : MainWindow({{.name = "apple"}, {.name = "pear", .hidden = true}})
        , copy(store, container, notifications)
    {
        store.setCloud(&copy);
    }

    // Chooses a command. @return what is said at its end
    QString command(const char *name)
    {
        find<QAction>(*window, name).trigger();
        return questions.asked.isEmpty() ? QString() : questions.asked.last().informativeText;
    }
    // Why the cloud has failed, as the status line shows it.
    [[nodiscard]] QString cause() const { return find<QLabel>(*window, "cloudCauseLabel").text(); }

    TaskCloud copy;
    ScriptedContainer container{service};
    SqlCloudContainer service{{home.path(u"private/Cloud.sqlite"_s)}, {}};
};

} // namespace

class tst_cloudcommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsTheListToTheCloudAndBack()
    {
        CloudWindow main;
        bool isKnown = false; // the password
        main.window->setBeforeCloud([&isKnown] { return isKnown; });
        QCOMPARE(main.command("updateToCloudAction"), QString());
        isKnown = true;
        QTest::keyClicks(&main.searchField(), u"app"_s); // every task goes, during a search too
        QCOMPARE(main.command("updateToCloudAction"), u"Sync to iCloud succesfully!"_s);
        QCOMPARE(main.searchField().text(), QString());
        main.store.setSelected(u"KEY-pear"_s);
        main.store.removeSelected();

        main.questions.answer = 1;
        QCOMPARE(main.command("updateFromCloudAction"),
                 u"Your eventual changes on existing tasks will be overwritten. For security "
                 "reasons, the extra tasks you may have saved locally vs what is saved in the "
                 "Cloud will not be deleted. Please delete these manually as needed."_s);
        QCOMPARE(main.questions.asked.last().messageText, u"Do you want to update from the iCloud?"_s);
        QCOMPARE(main.store.fullList().size(), 1);

        main.questions.answer = 0;
        QCOMPARE(main.command("updateFromCloudAction"), u"Sync from iCloud succesfully!"_s);
        QCOMPARE(main.saved(), u"apple pear"_s);
        QCOMPARE(main.status(), u"-iCloud:Update Complete!-"_s);

        main.clickRow(u"apple"_s);
        main.click("deleteButton"); // with its record
        QCOMPARE(main.command("updateFromCloudAction"), u"Sync from iCloud succesfully!"_s);
        QCOMPARE(main.saved(), u"pear"_s);
    }

    void sendsATaskAgainWhoseDeletionIsUndone_data()
    {
        const Table<bool, bool, Fate, QString, int> row;
        row("deleted there", true, false, Fate::Pass, u""_s, 2);
        row("still being deleted there", true, true, Fate::Pass, u""_s, 2);
        row("cannot be sent, which is said", true, false, Fate::Fail, u"scripted"_s, 1);
        row("never there", false, false, Fate::Pass, u""_s, 0);
    }
    void sendsATaskAgainWhoseDeletionIsUndone()
    {
        const auto [isSent, isUnderWay, fate, cause, inCloud] =
            Table<bool, bool, Fate, QString, int>::cells();
        CloudWindow main;
        if (isSent)
            main.command("updateToCloudAction");
        int answers = 0;
        QObject::connect(&main.store, &TaskManager::cloudSucceeded, main.window.get(),
                         [&answers] { ++answers; });
        QObject::connect(&main.store, &TaskManager::cloudFailed, main.window.get(),
                         [&answers] { ++answers; });
        main.container.setFate(Request::Query, isUnderWay ? Fate::Hold : Fate::Pass);
        main.clickRow(u"apple"_s);
        main.click("deleteButton");
        QTRY_COMPARE(answers, isUnderWay ? 0 : 1);
        main.container.setFate(Request::Save, fate);
        find<QAction>(*main.window, "undoAction").trigger();
        QCOMPARE(main.file(), main.listAtStart);
        main.container.setFate(Request::Query, Fate::Pass);
        main.container.release();
        QTRY_COMPARE(answers, isSent ? 2 : 1);
        QCOMPARE(main.cause(), cause);
        main.store.removeAll();
        main.command("updateFromCloudAction");
        QCOMPARE(main.store.fullList().size(), inCloud);
    }

    void saysWhyTheCloudFailsUntilItWorks()
    {
        CloudWindow main;
        main.container.status = AccountStatus::CouldNotDetermine;
        main.container.setFate(Request::Query, Fate::Fail);
        QCOMPARE(main.command("updateToCloudAction"), u"Error sync to iCloud!"_s);
        QCOMPARE(main.status(), u"-iCloud:Cannot Login (Unknown)-"_s);
        QCOMPARE(main.cause(), u"scripted"_s);
        main.container.status = AccountStatus::Available;
        main.container.setFate(Request::Query, Fate::Pass);
        main.command("updateFromCloudAction");
        QCOMPARE(main.cause(), u"There are no tasks in the cloud."_s);
        QCOMPARE(main.command("updateToCloudAction"), u"Sync to iCloud succesfully!"_s);
        QCOMPARE(main.status() + main.cause(), QString());
    }

    void holdsItsCommandsAndLosesNothingWhenItIsClosedInTheMiddle()
    {
        CloudWindow main;
        main.clickRow(u"apple"_s);
        main.container.setFate(Request::Query, Fate::Hold);
        bool isHeld = false;
        QTimer::singleShot(50, main.window.get(), [&] {
            isHeld = !main.button("deleteButton").isEnabled() && !main.table().isEnabled();
            main.window->close();
            QCoreApplication::exit();
        });
        QCOMPARE(main.command("updateFromCloudAction"), u"Error sync from iCloud!"_s);
        QVERIFY(isHeld && main.button("deleteButton").isEnabled() && main.table().isEnabled());
        main.container.release();
        QCoreApplication::processEvents();
        QCOMPARE(main.file(), main.listAtStart);
    }
};

OBLINO_TEST(tst_cloudcommands, QApplication)

#include "tst_cloudcommands.moc"
