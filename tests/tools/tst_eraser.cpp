#include "../contacts/storecontacts.h"
#include "toolhome.h"

#include <cloud/taskcloud.h>
#include <support/scriptedcontainer.h>

#include <records/sqlcloudcontainer.h>
#include <tools/windows/viewcontrollerdestroy.h>

#include <QSqlDatabase>
#include <QSqlQuery>

using Request = ScriptedContainer::Request;
using Fate = ScriptedContainer::Fate;

namespace {

const QByteArray row =
    "3/7/24|secret task|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|K1|false|9|30|17|0||^";
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
            ErasableData{store, list, documents, notifications, utilities, home.privateFolder(),
                         [] { return true; }, [this](DataKind) { ++erasuresTold; }});
        window->show();
    }
    ~Eraser() { store.setCloud(nullptr); }

    void erase(const QList<const char *> &boxes) const
    {
        for (const char *box : boxes)
            click(*window, box);
        click(*window, "eraseButton");
    }
    // In how many files there is something of the tasks, the notes, the board, clients, members and settings.
    [[nodiscard]] QList<qsizetype> left() const
    {
        QList<qsizetype> files;
        for (const char *kind : {"task", "notes", "board", "client", "member", "setting"})
            files += home.filesWith(QByteArray("secret ") + kind).size();
        return files;
    }
    // What was asked and said, one to a line.
    [[nodiscard]] QStringList told() const
    {
        QStringList texts;
        for (const Alert::Question &question : questions.asked)
            texts += QString(question.informativeText).replace(home.path({}), u"HOME"_s);
        return texts;
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
        QCOMPARE(namelessIn(*eraser.window), QString());
        QVERIFY(eraser.documents.file(u"ltodonotes.txt"_s)); // as when a pad has been open
        for (const QString &path : {eraser.home.listPath(), eraser.notes, eraser.board}) {
            const QString name = QFileInfo(path).fileName();
            SafeFile file(path, eraser.home.privateFolder());
            QVERIFY(file.write("other\n").written); // keeps a copy of what it replaces
            QCOMPARE(file.quarantine("secret").error, QString());
            for (const QString &folder :
                 EarlierVersions::standardFolders(eraser.home.privateFolder(), eraser.home.documents()))
                QCOMPARE(EarlierVersions(name, {folder}).keep("secret", VersionReason::Rescued), QString());
            const SafeFile elsewhere(u"/elsewhere/"_s + name, eraser.home.privateFolder());
            for (const QString &other : {path, file.journalPath(), elsewhere.journalPath()})
                TemporaryHome::write(other, "secret");
        }
        TemporaryHome::write(eraser.home.listPath(), row + "secret^"); // with a row that cannot be read
        (void)eraser.list.splitStringFile(eraser.list.readFromFile());
        QCOMPARE(eraser.home.filesWith("secret").size(), 3 * 9 + 3); // and contacts, cloud, settings

        eraser.questions.answer = 1;
        eraser.erase({"deleteAll"});
        QCOMPARE(
            eraser.questions.asked.first().messageText,
            u"The following selected data will be destroyed and will not be able to be recovered. Are you "
            "sure you want to delete ?"_s);
        eraser.questions.answer = std::nullopt; // closed by Esc
        eraser.erase({"deleteNotes"});
        QCOMPARE(eraser.home.filesWith("secret").size(), 3 * 9 + 3);
        eraser.questions.answer = 0;
        eraser.erase({"deleteAll", "deleteAll"}); // first taken away, as it stayed on
        const QString all = u"\nTasks\nNotes\nWhiteboard\nClients\nTeamMembers\nSettings\niCloud"_s;
        QCOMPARE(eraser.told(), (QStringList{all, u"\nNotes"_s, all, allGone}));
        QCOMPARE(eraser.home.filesWith("secret"), QStringList());
        QVERIFY(eraser.reloads == 1 && eraser.erasuresTold == 7 && eraser.store.tasks().isEmpty());

        QVERIFY(eraser.window->isVisible());
        eraser.erase({"deleteAll"}); // which takes all marks away
        QVERIFY(eraser.questions.asked.size() == 4 && !eraser.window->isVisible());
    }

    void aFailureKeepsNoOtherKind()
    {
        Eraser eraser;
        QVERIFY(QFile::remove(eraser.home.listPath()) && QFile::remove(eraser.notes));
        QVERIFY(QFile::remove(eraser.board) && QDir().mkdir(eraser.board));
        {
            QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
            other.setDatabaseName(eraser.home.privateFolder() + u"/Model.sqlite"_s);
            QVERIFY(other.open() && QSqlQuery(other).exec(u"BEGIN IMMEDIATE"_s));
        }
        eraser.cloud.setFate(Request::Delete, Fate::Fail);
        eraser.erase({"deleteAll"});
        QSqlDatabase::removeDatabase(u"other"_s);
        const QString missing = u" could not be removed: No such file or directory."_s;
        QCOMPARE(eraser.told().sliced(1),
                 (QStringList{
                     u"Error Deleting Tasks File:HOME/Documents/ltodolist.txt\n“ltodolist.txt”"_s + missing,
                     u"Error Deleting Notes File:HOME/Documents/ltodonotes.txt\n“ltodonotes.txt”"_s + missing,
                     u"Error Deleting Whiteboard File:HOME/Documentsltodolistwhiteboard.png\n"
                     "“ltodolistwhiteboard.png” could not be removed: it is not a regular file."_s,
                     u"Error Deleting Clients Records\ndatabase is locked"_s,
                     u"Error Deleting Team Members Records\ndatabase is locked"_s}));
        QCOMPARE(eraser.left().sliced(3), (QList<qsizetype>{1, 1, 0}));
        QVERIFY(eraser.reloads == 1 && eraser.erasuresTold == 1 && eraser.store.tasks().size() == 1);
    }
};

OBLINO_TEST(tst_eraser, QApplication)

#include "tst_eraser.moc"
