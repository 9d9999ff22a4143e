#include "../contacts/storecontacts.h"
#include "toolhome.h"

#include <cloud/taskcloud.h>
#include <support/scriptedcontainer.h>
#include <support/table.h>
#include <support/testmain.h>

#include <records/sqlcloudcontainer.h>
#include <tools/windows/viewcontrollerdestroy.h>

#include <QSqlDatabase>
#include <QSqlQuery>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using Boxes = QList<const char *>;
using Failures = Table<const char *, std::function<void(struct Eraser &)>, QString>;
using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

namespace {

const QByteArray row =
    "3/7/24|secret task|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|K1|false|9|30|17|0||^";
const Boxes allBoxes = {"deleteTasks",       "deleteNotes",    "deleteWhiteboard", "deleteClients",
                        "deleteTeamMembers", "deleteSettings", "deleteICloud"};
const QString allGone = u"All Selected Records Deleted Successfully!"_s;

} // namespace

// A home with something of every kind in it, and the eraser.
struct Eraser : ToolHome
{
    Eraser()
    {
        fill(row, "secret notes", "secret board");
        storeContacts<Clients>(home.privateFolder(), {{u"secret client"_s, {}}});
        storeContacts<TeamMembers>(home.privateFolder(), {{u"secret member"_s, {}}});
        store.setTwilioSecret(u"secret setting"_s);
        store.setNotification(true);
        QVERIFY(store.saveSettings());
        store.setCloud(&copy);
        QVERIFY(store.syncToCloudFromLocal());
        notifications.observe(u"reload"_s, &notifications, [this] {
            ++reloads;
            QVERIFY(list.saveToFile()); // as the main window does
        });
        window = std::make_unique<ViewControllerDestroy>(
            ErasableData{.store = store,
                         .taskList = list,
                         .documents = documents,
                         .notifications = notifications,
                         .utilities = utilities,
                         .privateFolder = home.privateFolder(),
                         .erased = [this](DataKind) { ++erasuresTold; }});
        window->show();
    }
    ~Eraser() { store.setCloud(nullptr); }

    void erase(const Boxes &boxes) const
    {
        for (const char *box : boxes)
            click(*window, box);
        click(*window, "eraseButton");
    }
    [[nodiscard]] auto chosen() const
    {
        return std::ranges::count(window->findChildren<QCheckBox *>(), true, &QCheckBox::isChecked);
    }
    // In how many files there is something of the tasks, the notes, the board, clients, members and settings.
    [[nodiscard]] QList<qsizetype> left() const
    {
        QList<qsizetype> files;
        for (const char *kind : {"task", "notes", "board", "client", "member", "setting"})
            files += home.filesWith(QByteArray("secret ") + kind).size();
        return files;
    }
    // What was said after the question.
    [[nodiscard]] QString told() const
    {
        QStringList texts;
        for (const Alert::Question &question : questions.asked.mid(1))
            texts += question.informativeText;
        return texts.join(u" / "_s).replace(home.path({}), u"HOME"_s);
    }
    int reloads = 0;
    int erasuresTold = 0;
    TaskCloud copy{store, cloud, notifications};
    ScriptedContainer cloud{service}; // goes after the thread of the service
    SqlCloudContainer service{{home.path(u"private/Cloud.sqlite"_s)}, {}};
    std::unique_ptr<ViewControllerDestroy> window;
};

class tst_eraser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingErasedIsLeftInAnyFile()
    {
        Eraser eraser;
        QVERIFY(eraser.documents.file(u"ltodonotes.txt"_s)); // as when a pad has been open
        for (const QString &path : {eraser.home.listPath(), eraser.notes, eraser.board}) {
            SafeFile file(path, eraser.home.privateFolder());
            QVERIFY(file.write("other\n").written); // keeps a copy of what it replaces
            QCOMPARE(file.quarantine("secret").error, QString());
            TemporaryHome::write(path, "secret");
            TemporaryHome::write(file.journalPath(), "secret");
            const QString name = QFileInfo(path).fileName();
            for (const QString &folder :
                 EarlierVersions::standardFolders(eraser.home.privateFolder(), eraser.home.documents())) {
                EarlierVersions versions(QFileInfo(path).fileName(), {folder});
                QCOMPARE(versions.keep("secret", VersionReason::Rescued), QString());
            }
            const SafeFile elsewhere(u"/elsewhere/"_s + QFileInfo(path).fileName(),
                                     eraser.home.privateFolder());
            TemporaryHome::write(elsewhere.journalPath(), "secret");
        }
        TemporaryHome::write(eraser.home.listPath(), row + "secret^"); // with a row that cannot be read
        (void)eraser.list.splitStringFile(eraser.list.readFromFile());
        QCOMPARE(eraser.home.filesWith("secret").size(), 3 * 9 + 3); // and contacts, cloud, settings

        eraser.erase(allBoxes);
        QCOMPARE(eraser.told(), allGone);
        QCOMPARE(eraser.home.filesWith("secret"), QStringList());
        QCOMPARE(eraser.reloads, 1);
        QCOMPARE(eraser.erasuresTold, allBoxes.size());
        QVERIFY(eraser.store.tasks().isEmpty());
        QCOMPARE(eraser.chosen(), 0);
    }

    void asksWithTheListOfWhatIsChosen()
    {
        Eraser eraser;
        eraser.questions.answer = 1;
        eraser.erase({"deleteAll"});
        QCOMPARE(
            eraser.questions.asked.first().messageText,
            u"The following selected data will be destroyed and will not be able to be recovered. Are you "
            "sure you want to delete ?"_s);
        QCOMPARE(eraser.questions.asked.first().informativeText,
                 u"\nTasks\nNotes\nWhiteboard\nClients\nTeamMembers\nSettings\niCloud"_s);
        QCOMPARE(eraser.chosen(), 1);           // the box for all itself
        eraser.questions.answer = std::nullopt; // closed by Esc
        eraser.erase({"deleteNotes"});
        QCOMPARE(eraser.told(), u"\nNotes"_s);
        QCOMPARE(eraser.left(), (QList<qsizetype>{2, 1, 1, 1, 1, 1}));
        QCOMPARE(eraser.reloads, 0);

        QVERIFY(eraser.window->isVisible());
        eraser.erase({"deleteAll"}); // which takes all marks away
        QCOMPARE(eraser.questions.asked.size(), 2);
        QVERIFY(!eraser.window->isVisible());
    }

    void oneFailureKeepsOnlyItsOwn_data()
    {
        const Failures row; // box, what spoils it, what is said
        const auto remove = [](const QString &path) { QVERIFY(QFile::remove(path)); };
        const QString missing = u"could not be removed: No such file or directory."_s;
        row(
            "tasks", "deleteTasks", [=](Eraser &e) { remove(e.home.listPath()); },
            u"Error Deleting Tasks File:HOME/Documents/ltodolist.txt\n“ltodolist.txt” "_s + missing);
        row(
            "notes", "deleteNotes", [=](Eraser &e) { remove(e.notes); },
            u"Error Deleting Notes File:HOME/Documents/ltodonotes.txt\n“ltodonotes.txt” "_s + missing);
        row(
            "whiteboard", "deleteWhiteboard",
            [=](Eraser &e) {
                remove(e.board);
                QVERIFY(QDir().mkdir(e.board));
            },
            u"Error Deleting Whiteboard "
            u"File:HOME/Documentsltodolistwhiteboard.png\n“ltodolistwhiteboard.png” could "
            u"not be removed: it is not a regular file."_s);
        const QString locked = u"\ndatabase is locked"_s;
        const auto lock = [](Eraser &e) {
            QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
            other.setDatabaseName(e.home.privateFolder() + u"/Model.sqlite"_s);
            QVERIFY(other.open() && QSqlQuery(other).exec(u"BEGIN IMMEDIATE"_s));
        };
        row("clients", "deleteClients", lock, u"Error Deleting Clients Records"_s + locked);
        row("team members", "deleteTeamMembers", lock, u"Error Deleting Team Members Records"_s + locked);
        row("cloud", "deleteICloud", [](Eraser &e) { e.cloud.setFate(Request::Delete, Fate::Fail); }, {});
    }
    void oneFailureKeepsOnlyItsOwn()
    {
        const auto [box, spoil, said] = Failures::cells();
        Eraser eraser;
        spoil(eraser);
        eraser.erase({box, "deleteSettings"});
        QSqlDatabase::removeDatabase(u"other"_s);
        QCOMPARE(eraser.told(), said);
        QCOMPARE(eraser.store.tasks().size(), 1);
        QCOMPARE(eraser.left().sliced(3), (QList<qsizetype>{1, 1, 0}));
        QCOMPARE(eraser.reloads, box == allBoxes.first() ? 1 : 0);
    }

    void erasesOneKindAloneAndTheCopiesOfAMissingFile()
    {
        Eraser eraser;
        eraser.defaults.setText(u"other"_s, u"kept"_s);
        const auto keep = [&](const QString &name) {
            QCOMPARE(eraser.documents.versions(name).keep("secret notes, secret task", VersionReason::Unread),
                     QString());
        };
        keep(u"ltodolist.txt"_s);
        keep(u"ltodonotes.txt"_s);
        QVERIFY(QFile::remove(eraser.notes));
        eraser.erase({"deleteNotes", "deleteClients", "deleteSettings"});
        QCOMPARE(eraser.left(), (QList<qsizetype>{3, 1, 1, 0, 1, 0}));
        QCOMPARE(eraser.store.getDelay(), 1000);
        QVERIFY(!eraser.store.getNotification());
        QCOMPARE(eraser.defaults.text(u"other"_s), u"kept"_s);

        Documents none(std::nullopt, eraser.home.privateFolder());
        QCOMPARE(none.erase(u"ltodolist.txt"_s), u"There is no documents folder."_s);
        QCOMPARE(eraser.left(), (QList<qsizetype>{2, 0, 1, 0, 1, 0}));
    }

    void waitsForTheCloud()
    {
        Eraser eraser;
        const auto whileWaiting = [&eraser](const std::function<void()> &deed) {
            QTimer::singleShot(100, eraser.window.get(), [&eraser, deed] {
                deed();
                eraser.cloud.release();
            });
        };
        eraser.cloud.setFate(Request::Query, Fate::Hold);
        whileWaiting([&] { eraser.erase({"deleteTasks"}); });
        QVERIFY(eraser.store.syncToCloudFromLocal());
        QCOMPARE(eraser.questions.asked.size(), 0); // else it would go on arriving there
        eraser.erase({});
        QCOMPARE(eraser.told(), allGone);

        eraser.cloud.setFate(Request::Delete, Fate::Hold);
        bool wasHeld = false;
        whileWaiting([&] {
            eraser.window->close();
            eraser.window->reject();
            wasHeld = eraser.window->isVisible() && !eraser.window->isEnabled() &&
                      eraser.questions.asked.size() == 3;
        });
        eraser.erase({"deleteICloud"});
        QVERIFY(wasHeld);
        QCOMPARE(eraser.questions.asked.last().informativeText, allGone);
        QVERIFY(eraser.window->isEnabled() && eraser.window->isVisible());
    }
};

OBLINO_TEST(tst_eraser, QApplication)

#include "tst_eraser.moc"
