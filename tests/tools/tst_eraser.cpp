#include <support/scriptedalert.h>
#include <support/scriptedcontainer.h>
#include <support/store.h>
#include <support/table.h>
#include <support/testmain.h>
#include <support/widgets.h>

#include <core/tasklistfile.h>
#include <platform/cloud/sqlcloudcontainer.h>
#include <platform/notificationcenter.h>
#include <tools/windows/viewcontrollerdestroy.h>
#include <ui/uiutil.h>

#include <QSqlDatabase>
#include <QSqlQuery>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray secret = "Quillfeather";
const QByteArray row =
    "3/7/24|Quillfeather|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|K1|false|9|30|17|0||^";
const QStringList allBoxes = {u"deleteTasks"_s,   u"deleteNotes"_s,       u"deleteWhiteboard"_s,
                              u"deleteClients"_s, u"deleteTeamMembers"_s, u"deleteSettings"_s,
                              u"deleteICloud"_s};

// A home with something of every kind in it, and the eraser.
struct Eraser : Store
{
    Eraser()
    {
        QDir::setCurrent(home.path({}));
        TemporaryHome::write(home.listPath(), row);
        (void)list.splitStringFile(list.readFromFile());
        TemporaryHome::write(notes, secret);
        TemporaryHome::write(board, secret);
        const auto container = makeContactContainer(home.privateFolder());
        QCOMPARE(container->loadPersistentStores().error, QString());
        for (const QString &entity : {u"Clients"_s, u"TeamMembers"_s}) {
            EntityModel *objects = container->viewContext()->objects(entity);
            QVERIFY(objects->insertRow(0));
            QVERIFY(objects->setData(objects->index(0, NameColumn), QString::fromLatin1(secret)));
        }
        QCOMPARE(container->viewContext()->save(), QString());
        store.setTwilioSecret(QString::fromLatin1(secret));
        store.setNotification(true);
        QVERIFY(store.saveSettings());
        store.setCloud(&cloud, &notifications);
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
                         .contactsErased = [this] { ++erasuresTold; },
                         .whiteboardErased = [this] { ++erasuresTold; }});
        window->show();
    }
    ~Eraser()
    {
        store.setCloud(nullptr, nullptr);
        QDir::setCurrent(QDir::rootPath());
    }

    void erase(const QStringList &boxes) const
    {
        for (const QString &name : boxes)
            box(name)->click();
        click(*window, "eraseButton");
    }
    [[nodiscard]] QCheckBox *box(const QString &name) const { return window->findChild<QCheckBox *>(name); }
    [[nodiscard]] QStringList chosen() const
    {
        QStringList names;
        for (const QString &name : allBoxes) {
            if (box(name)->isChecked())
                names += name;
        }
        return names;
    }
    // What was said after the question.
    [[nodiscard]] QString told() const
    {
        QStringList texts;
        for (const Alert::Question &question : questions.asked.mid(1))
            texts += question.informativeText;
        return texts.join(u" / "_s).replace(home.path({}), u"HOME"_s);
    }
    [[nodiscard]] QStringList contacts(const QString &entity) const
    {
        const auto container = makeContactContainer(home.privateFolder());
        (void)container->loadPersistentStores();
        const EntityModel *objects = container->viewContext()->objects(entity);
        return objects->rowCount() == 0 ? QStringList() : objects->object(0);
    }
    QString notes = home.documents() + u"/ltodonotes.txt"_s;
    QString board = home.path(u"ltodolistwhiteboard.png"_s);
    Documents documents{home.documents(), home.privateFolder()};
    TaskListFile list{store, documents};
    NotificationCenter notifications;
    ScriptedAlert::Script questions;
    UIUtil utilities{std::make_unique<ScriptedAlert>(questions)};
    int reloads = 0;
    int erasuresTold = 0;
    ScriptedContainer cloud{service}; // goes after the thread of the service
    SqlCloudContainer service{{home.path(u"private/Cloud.sqlite"_s)}, {}};
    std::unique_ptr<ViewControllerDestroy> window;
};

} // namespace

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
            QCOMPARE(file.setAside(secret), QString());
            TemporaryHome::write(path, secret);
            TemporaryHome::write(file.journalPath(), secret);
        }
        TemporaryHome::write(eraser.home.listPath(), row + secret + '^'); // with a row that cannot be read
        (void)eraser.list.splitStringFile(eraser.list.readFromFile());
        QCOMPARE(eraser.home.filesWith(secret).size(), 3 * 4 + 3); // and contacts, cloud, settings

        eraser.erase(allBoxes);
        QCOMPARE(eraser.told(), u"All Selected Records Deleted Successfully!"_s);
        QCOMPARE(eraser.home.filesWith(secret), QStringList());
        QCOMPARE(eraser.reloads, 1);
        QCOMPARE(eraser.erasuresTold, 3);
        QVERIFY(eraser.store.tasks().isEmpty());
        QCOMPARE(eraser.chosen(), QStringList());
    }

    void asksWithTheListOfWhatIsChosen()
    {
        Eraser eraser;
        eraser.questions.answer = 1;
        eraser.box(u"deleteAll"_s)->click();
        eraser.erase({});
        QCOMPARE(
            eraser.questions.asked.first().messageText,
            u"The following selected data will be destroyed and will not be able to be recovered. Are you "
            "sure you want to delete ?"_s);
        QCOMPARE(eraser.questions.asked.first().informativeText,
                 u"\nTasks\nNotes\nWhiteboard\nClients\nTeamMembers\nSettings\niCloud"_s);
        QCOMPARE(eraser.chosen(), QStringList());
        QVERIFY(eraser.box(u"deleteAll"_s)->isChecked());
        QVERIFY(eraser.window->isVisible());
        eraser.questions.answer = std::nullopt; // closed by Esc
        eraser.erase({u"deleteNotes"_s});
        QCOMPARE(eraser.questions.asked.last().informativeText, u"\nNotes"_s);
        QCOMPARE(eraser.home.filesWith(secret).size(), 6);
        QCOMPARE(eraser.reloads, 0);

        eraser.box(u"deleteAll"_s)->click();
        QCOMPARE(eraser.chosen(), QStringList());
        eraser.erase({});
        QCOMPARE(eraser.questions.asked.size(), 2);
        QVERIFY(!eraser.window->isVisible());
    }

    void oneFailureKeepsOnlyItsOwn_data()
    {
        const Table<QString, std::function<void(Eraser &)>, QString> row; // box, what spoils it, what is said
        const auto remove = [](const QString &path) { QVERIFY(QFile::remove(path)); };
        const QString missing = u"could not be removed: No such file or directory."_s;
        row(
            "tasks", u"deleteTasks"_s, [=](Eraser &e) { remove(e.home.listPath()); },
            u"Error Deleting Tasks File:HOME/Documents/ltodolist.txt\n“ltodolist.txt” "_s + missing);
        row(
            "notes", u"deleteNotes"_s, [=](Eraser &e) { remove(e.notes); },
            u"Error Deleting Notes File:HOME/Documents/ltodonotes.txt\n“ltodonotes.txt” "_s + missing);
        row(
            "whiteboard", u"deleteWhiteboard"_s,
            [=](Eraser &e) {
                remove(e.board);
                QVERIFY(QDir().mkdir(e.board));
            },
            u"Error Deleting Whiteboard File:HOMEltodolistwhiteboard.png\n“ltodolistwhiteboard.png” could "
            u"not be "
            "removed: it is not a regular file."_s);
        const QString locked = u"\ndatabase is locked"_s;
        const auto lock = [](Eraser &e) {
            QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
            other.setDatabaseName(e.home.privateFolder() + u"/Model.sqlite"_s);
            QVERIFY(other.open() && QSqlQuery(other).exec(u"BEGIN IMMEDIATE"_s));
        };
        row("clients", u"deleteClients"_s, lock, u"Error Deleting Clients Records"_s + locked);
        row("team members", u"deleteTeamMembers"_s, lock, u"Error Deleting Team Members Records"_s + locked);
        row(
            "cloud", u"deleteICloud"_s,
            [](Eraser &e) {
                e.cloud.setScript([](auto request, int) {
                    return request == ScriptedContainer::Request::Delete ? ScriptedContainer::Fate::Fail
                                                                         : ScriptedContainer::Fate::Pass;
                });
            },
            QString());
    }
    void oneFailureKeepsOnlyItsOwn()
    {
        const auto [box, spoil, said] = Table<QString, std::function<void(Eraser &)>, QString>::cells();
        Eraser eraser;
        spoil(eraser);
        eraser.erase({box, u"deleteSettings"_s});
        QSqlDatabase::removeDatabase(u"other"_s);
        QCOMPARE(eraser.told(), said);
        QCOMPARE(eraser.store.tasks().size(), 1);
        QCOMPARE(eraser.contacts(u"Clients"_s).value(0).toLatin1(), secret);
        QCOMPARE(eraser.contacts(u"TeamMembers"_s).value(0).toLatin1(), secret);
        QCOMPARE(eraser.store.getTwilioSecret(), QString());
        QCOMPARE(eraser.reloads, box == u"deleteTasks"_s ? 1 : 0);
    }

    void erasesOneKindAlone()
    {
        Eraser eraser;
        eraser.defaults.setText(u"other"_s, u"kept"_s);
        RecoveryFolder recovery(eraser.home.privateFolder() + u"/recovery"_s, FileCalls::posix());
        QCOMPARE(recovery.keep(secret, u"ltodolist.txt"_s).error, 0);
        eraser.erase({u"deleteNotes"_s, u"deleteClients"_s, u"deleteSettings"_s});
        QCOMPARE(eraser.contacts(u"Clients"_s), QStringList());
        QCOMPARE(eraser.contacts(u"TeamMembers"_s).value(0).toLatin1(), secret);
        QCOMPARE(eraser.home.filesWith(secret).size(), 5); // list and its copy, whiteboard, contacts, cloud
        QCOMPARE(eraser.store.getDelay(), 1000);
        QVERIFY(!eraser.store.getNotification());
        QCOMPARE(eraser.defaults.text(u"other"_s), u"kept"_s);
    }

    void theCopiesOfAMissingFileGo()
    {
        Eraser eraser;
        RecoveryFolder recovery(eraser.home.privateFolder() + u"/recovery"_s, FileCalls::posix());
        QCOMPARE(recovery.keep(secret, u"ltodonotes.txt"_s).error, 0);
        QVERIFY(QFile::remove(eraser.notes));
        eraser.erase({u"deleteNotes"_s});
        QCOMPARE(eraser.home.filesWith(secret).size(), 5);
    }

    void staysOpenUntilTheCloudHasAnswered()
    {
        Eraser eraser;
        eraser.cloud.setScript([](auto request, int) {
            return request == ScriptedContainer::Request::Delete ? ScriptedContainer::Fate::Hold
                                                                 : ScriptedContainer::Fate::Pass;
        });
        bool wasHeld = false;
        QTimer wait;
        connect(&wait, &QTimer::timeout, this, [&] {
            eraser.window->close();
            eraser.window->reject();
            wasHeld = eraser.window->isVisible() && !eraser.window->isEnabled() && eraser.told().isEmpty();
            eraser.cloud.release();
        });
        wait.start(100);
        eraser.erase({u"deleteICloud"_s});
        QVERIFY(wasHeld);
        QCOMPARE(eraser.told(), u"All Selected Records Deleted Successfully!"_s);
        QVERIFY(eraser.window->isEnabled() && eraser.window->isVisible());
    }
};

OBLINO_TEST(tst_eraser, QApplication)

#include "tst_eraser.moc"
