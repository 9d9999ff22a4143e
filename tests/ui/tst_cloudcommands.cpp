#include "mainwindowfixture.h"

#include <support/scriptedcontainer.h>
#include <support/testmain.h>

#include <platform/cloud/sqlcloudcontainer.h>

#include <QTimer>

using namespace oblino;
using namespace std::chrono_literals;

namespace {

using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

// The main window with a cloud in a file of its own.
class CloudWindow : public MainWindow
{
public:
    explicit CloudWindow(std::chrono::milliseconds patience = 30s)
        : MainWindow({{.name = "apple"}, {.name = "pear", .hidden = true}})
    {
        store.setCloud(&container, &notifications, patience);
    }

    void command(const char *name) const { action(name).trigger(); }
    [[nodiscard]] QAction &action(const char *name) const
    {
        return *window->findChild<QAction *>(QLatin1String(name));
    }
    [[nodiscard]] QString lastAsked() const
    {
        return questions.asked.isEmpty() ? QString() : questions.asked.last().informativeText;
    }
    void removeTask(const char *key)
    {
        store.setSelected(QLatin1String(key));
        store.removeSelected();
        notifications.post(QStringLiteral("reload"));
    }

    ScriptedContainer container{service};
    SqlCloudContainer service{{home.path(QStringLiteral("private/Cloud.sqlite"))}, {}};
};

} // namespace

class tst_cloudcommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsTheListToTheCloudAndBack()
    {
        CloudWindow main;
        main.command("updateToCloudAction");
        QCOMPARE(main.lastAsked(), QStringLiteral("Sync to iCloud succesfully!"));
        main.removeTask("KEY-pear");
        QCOMPARE(main.saved(), QStringLiteral("apple"));

        main.questions.answer = 1;
        main.command("updateFromCloudAction");
        QCOMPARE(main.questions.asked.last().messageText,
                 QStringLiteral("Do you want to update from the iCloud?"));
        QCOMPARE(main.lastAsked(),
                 QStringLiteral("Your eventual changes on existing tasks will be overwritten. For security "
                                "reasons, the extra tasks you may have saved locally vs what is saved in the "
                                "Cloud will not be deleted. Please delete these manually as needed."));
        QCOMPARE(main.saved(), QStringLiteral("apple"));

        main.questions.answer = 0;
        main.command("updateFromCloudAction");
        QCOMPARE(main.lastAsked(), QStringLiteral("Sync from iCloud succesfully!"));
        QCOMPARE(main.saved(), QStringLiteral("apple pear"));
        QCOMPARE(main.status(), QStringLiteral("-iCloud:Update Complete!-"));
    }

    void deletesTheRecordWithTheTask()
    {
        CloudWindow main;
        main.command("updateToCloudAction");
        main.clickRow(QStringLiteral("apple"));
        QStringList asked;
        main.window->setBeforeCloud([&asked] {
            asked += QStringLiteral("asked");
            return asked.size() == 3;
        });
        main.command("deleteAction");
        QCOMPARE(main.saved(), QStringLiteral("pear"));
        main.questions.asked.clear();
        main.command("updateFromCloudAction");
        QCOMPARE(main.questions.asked.size(), 1); // refused
        main.command("updateFromCloudAction");
        QCOMPARE(main.lastAsked(), QStringLiteral("Sync from iCloud succesfully!"));
        QCOMPARE(main.saved(), QStringLiteral("pear"));
    }

    void holdsItsCommandsWhileItWaits()
    {
        CloudWindow main(400ms);
        main.clickRow(QStringLiteral("apple"));
        main.container.setScript(
            [](Request request, int) { return request == Request::Query ? Fate::Hold : Fate::Pass; });
        bool held = false;
        QTimer::singleShot(100, main.window.get(), [&main, &held] {
            held = !main.action("deleteAction").isEnabled() &&
                   !main.action("updateToCloudAction").isEnabled() && !main.table().isEnabled() &&
                   main.action("quitAction").isEnabled();
        });
        main.command("updateToCloudAction");
        QVERIFY(held);
        QCOMPARE(main.lastAsked(), QStringLiteral("Error sync to iCloud!"));
        QVERIFY(main.action("deleteAction").isEnabled() && main.action("updateToCloudAction").isEnabled());
        QVERIFY(main.table().isEnabled());
    }

    void losesNothingWhenItIsClosedInTheMiddle()
    {
        CloudWindow main;
        main.container.setScript(
            [](Request request, int) { return request == Request::Query ? Fate::Hold : Fate::Pass; });
        QTimer::singleShot(50, main.window.get(), [&main] {
            main.window->close();
            QCoreApplication::exit();
        });
        main.command("updateFromCloudAction");
        QCOMPARE(main.lastAsked(), QStringLiteral("Error sync from iCloud!"));
        main.container.release();
        QCoreApplication::processEvents();
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
    }
};

OBLINO_TEST(tst_cloudcommands, QApplication)

#include "tst_cloudcommands.moc"
