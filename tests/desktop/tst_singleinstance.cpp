#include <support/place.h>
#include <support/test.h>

#include <desktop/singleinstance.h>

#include <sys/wait.h>
#include <unistd.h>

using Claim = SingleInstance::Claim;

class tst_singleinstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_folder = m_home->privateFolder();
        setRuntimeFolder({}); // killed programs leave their sockets there
    }

    void listensWhereNobodyElseCanAndIsFoundThere_data()
    {
        // The runtime folders of the first start and of the next one; in which folder the socket lies.
        const Table<QString, QString, QString> row;
        row("none for the next", u"run"_s, {}, u"run"_s);
        row("none for the first", {}, u"run"_s, u"private"_s);
        row("another for the next", u"run"_s, u"run2"_s, u"run"_s);
        row("others may look into it", u"open"_s, u"open"_s, u"private"_s);
        row("it is gone", u"gone"_s, u"gone"_s, u"private"_s);
        row("a path longer than an address may be", longName, longName, longName);
    }
    void listensWhereNobodyElseCanAndIsFoundThere()
    {
        const auto [first, next, place] = Table<QString, QString, QString>::cells();
        const QDir home(m_home->path({}));
        for (const QString &name : {u"run"_s, u"run2"_s, u"open"_s, longName}) {
            QVERIFY(home.mkdir(name));
            QCOMPARE(::chmod(qPrintable(home.filePath(name)), name == u"open" ? 0750 : 0700), 0);
        }
        setRuntimeFolder(first);
        SingleInstance instance(m_folder);
        QCOMPARE(instance.claim(), Claim::First);
        QStringList sockets;
        for (QDirIterator all(home.path(), QDir::System | QDir::Hidden, QDirIterator::Subdirectories);
             all.hasNext();)
            sockets += QFileInfo(all.next()).dir().dirName();
        QCOMPARE(sockets, QStringList{place});
        setRuntimeFolder(next);
        auto later = std::async(std::launch::async, [this] { return SingleInstance(m_folder).claim(); });
        QTRY_VERIFY(later.wait_for(std::chrono::seconds(0)) == std::future_status::ready);
        QCOMPARE(later.get(), Claim::RaisedOther);
    }

private:
    // A folder of the test's home; none without a name.
    void setRuntimeFolder(const QString &name) const
    {
        name.isEmpty() ? qunsetenv("XDG_RUNTIME_DIR")
                       : qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_home->path(name)));
    }

    const QString longName = QString(200, u'l');
    std::unique_ptr<TemporaryHome> m_home;
    QString m_folder;
};

OBLINO_TEST(tst_singleinstance, QCoreApplication)

#include "tst_singleinstance.moc"
