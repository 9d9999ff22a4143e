#include "mainwindowfixture.h"

#include <cloud/taskcloud.h>
#include <support/scriptedcontainer.h>

#include <records/sqlcloudcontainer.h>

namespace {

using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

// The main window with a cloud in a file of its own.
class CloudWindow : public MainWindow
{
public:
    explicit CloudWindow(std::chrono::milliseconds timeout = 30s)
        : MainWindow({{.name = "apple"}, {.name = "pear", .hidden = true}})
        , copy(store, container, notifications, timeout)
    {
        store.setCloud(&copy);
    }

    void command(const char *name) const { action(name).trigger(); }
    [[nodiscard]] QAction &action(const char *name) const
    {
        return *window->findChild<QAction *>(QLatin1String(name));
    }
    /// Why the cloud has failed, as the status line shows it.
    [[nodiscard]] QString cause() const
    {
        const auto *label = window->findChild<QLabel *>(u"cloudCauseLabel"_s);
        return label && label->isVisible() ? label->text() : QString();
    }
    [[nodiscard]] QString lastAsked() const
    {
        return questions.asked.value(questions.asked.size() - 1).informativeText;
    }

    TaskCloud copy;
    ScriptedContainer container{service};
    const QString file = home.path(u"private/Cloud.sqlite"_s);
    SqlCloudContainer service{{file}, {}};
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
        main.command("updateToCloudAction");
        QCOMPARE(main.lastAsked(), u""_s);
        isKnown = true;
        QTest::keyClicks(&main.searchField(), u"app"_s); // every task goes, during a search too
        main.command("updateToCloudAction");
        QCOMPARE(main.lastAsked(), u"Sync to iCloud succesfully!"_s);
        QCOMPARE(main.searchField().text(), QString());
        main.store.setSelected(u"KEY-pear"_s);
        main.store.removeSelected();

        main.questions.answer = 1;
        main.command("updateFromCloudAction");
        QCOMPARE(main.questions.asked.last().messageText, u"Do you want to update from the iCloud?"_s);
        QCOMPARE(main.lastAsked(),
                 u"Your eventual changes on existing tasks will be overwritten. For security "
                 "reasons, the extra tasks you may have saved locally vs what is saved in the "
                 "Cloud will not be deleted. Please delete these manually as needed."_s);
        QCOMPARE(main.store.tasks().size(), 1);

        main.questions.answer = 0;
        main.command("updateFromCloudAction");
        QCOMPARE(main.lastAsked(), u"Sync from iCloud succesfully!"_s);
        QCOMPARE(main.saved(), u"apple pear"_s);
        QCOMPARE(main.status(), u"-iCloud:Update Complete!-"_s);
    }

    void losesNothingWhenItIsClosedInTheMiddle()
    {
        CloudWindow main;
        main.container.setFate(Request::Query, Fate::Hold);
        QTimer::singleShot(50, main.window.get(), [&main] {
            main.window->close();
            QCoreApplication::exit();
        });
        main.command("updateFromCloudAction");
        QCOMPARE(main.lastAsked(), u"Error sync from iCloud!"_s);
        main.container.release();
        QCoreApplication::processEvents();
        QCOMPARE(TemporaryHome::content(main.home.listPath()), main.listAtStart);
    }
};

OBLINO_TEST(tst_cloudcommands, QApplication)

#include "tst_cloudcommands.moc"
