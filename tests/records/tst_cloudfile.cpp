#include <support/cloudrequests.h>
#include <support/secondconnection.h>
#include <support/test.h>

#include <records/sqlcloudcontainer.h>

#include <sys/stat.h>

/// Cloud records in a file of this machine.
class tst_cloudfile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsTheFileToItsOwner()
    {
        const TemporaryHome home;
        const QString path = home.path(u"private/cloud.sqlite"_s);
        const mode_t before = ::umask(0);
        const QString why = save(*containerAt(path), note(u"one"_s));
        ::umask(before);
        QCOMPARE(why, u""_s);
        constexpr auto ownersAlone =
            QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
        QCOMPARE(QFile::permissions(path), ownersAlone);
        QCOMPARE(QFile::permissions(home.privateFolder()), ownersAlone | QFile::ExeOwner | QFile::ExeUser);
    }

    void givesUpOnALockedFileOnceForAll()
    {
        const TemporaryHome home;
        const QString path = home.path(u"cloud.sqlite"_s);
        const auto container = containerAt(path, 400ms);
        QCOMPARE(statusOf(*container), AccountStatus::Available);
        SecondConnection other({path});
        other.run(u"BEGIN EXCLUSIVE"_s);
        const auto answers = saveMany(*container, 50);
        QTRY_COMPARE(answers->bad, 50); // first one by itself, then the others
        other.run(u"ROLLBACK"_s);
        QCOMPARE(namesIn(*container), u""_s);
        QCOMPARE(save(*container, note(u"one"_s)), u""_s);
    }

private:
    static std::unique_ptr<SqlCloudContainer>
    containerAt(const QString &path, std::chrono::milliseconds timeout = SqlCloudContainer::defaultTimeout)
    {
        return std::make_unique<SqlCloudContainer>(StoreLocation{path}, QList{&noteType()}, timeout);
    }
};

OBLINO_TEST(tst_cloudfile, QCoreApplication)

#include "tst_cloudfile.moc"
