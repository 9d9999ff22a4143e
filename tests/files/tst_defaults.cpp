#include <support/place.h>
#include <support/test.h>

#include <files/defaults.h>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

// From now on the system kills this process instead of renaming a file.
void killAtRenaming()
{
    std::array code = {
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat, 3, 0),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 2, 0),
#ifdef SYS_rename
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_rename, 1, 0),
#else
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat, 1, 0),
#endif
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
    };
    const sock_fprog filter = {static_cast<unsigned short>(code.size()), code.data()};
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter);
}

} // namespace

class tst_defaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home.emplace(); }

    void keepsItsFileToTheUserAlone()
    {
        put(path(), "[General]\nold=kept\n");
        QCOMPARE(::chmod(qPrintable(path()), 0644), 0);
        Defaults defaults(path());
        defaults.setText(u"secret"_s, u"s3cret"_s);
        QCOMPARE(contentOf(path()), "[General]\nold=kept\n"); // written once, and not value by value
        QCOMPARE(statusOf(path()).st_mode & 0777, 0600U);
        QVERIFY(defaults.save());
        QCOMPARE(statusOf(path()).st_mode & 0777, 0600U);
        QCOMPARE(contentOf(path()), "[General]\nold=kept\nsecret=s3cret\n");
    }

    void copiesADamagedFileBeforeItIsRewritten_data()
    {
        const Table<QByteArray, bool> row;
        row("a line that is none", "[General]\nk=value\ntwillioSecret s3cret\n", true);
        row("cut in a line", "[General]\nk=value\ntwillioSecret=s3cr", true);
        row("zeros after a power cut", "[General]\nk=value\nx=1\n"_ba + QByteArray(4096, '\0'), true);
        row("another encoding", "[General]\nk=value\ntwillioMessageTitle=Gr\xfc\xdf\x65\n", true);
        row("a broken section", "[General\nk=value\n", true);
        row("whole", "; mine\n\n[General]\nk=value\n\n[Other]\nl=\"a\\nb\"\n", false);
        row("empty", "", false);
    }
    void copiesADamagedFileBeforeItIsRewritten()
    {
        const auto [bytes, isDamaged] = Table<QByteArray, bool>::cells();
        const QByteArrayList expected = isDamaged ? QByteArrayList{bytes} : QByteArrayList();
        put(path(), bytes);
        const auto save = [](Defaults &defaults, const QString &value) {
            defaults.setText(u"new"_s, value);
            QVERIFY(defaults.save());
        };
        for (int start = 1; start <= 2; ++start) {
            Defaults defaults(path());
            QCOMPARE(copies(), expected);
            QCOMPARE(defaults.takeNotices().size(), start == 1 ? expected.size() : 0);
            save(defaults, u"1"_s);
        }
        Defaults defaults(path());
        put(path(), bytes + "more"); // another program, while this one runs
        save(defaults, u"2"_s);
        QVERIFY(contentOf(path()).contains("new=2\n") && copies().contains(bytes + "more"));
        QCOMPARE(defaults.eraseCopies(), QString());
        save(defaults, u"3"_s);
        QCOMPARE(contentOf(path()), "[General]\nnew=3\n");
        QCOMPARE(copies(), QByteArrayList());
    }

    void leavesNoSecretOfAKilledSave()
    {
        const QString folder = QFileInfo(path()).path();
        put(folder + u"/oblino.ini.backup"_s, "mine");
        QFile backup(folder + u"/oblino.ini.backup"_s);
        QVERIFY(backup.open(QIODevice::Append) &&
                backup.setFileTime(QDateTime::currentDateTime().addSecs(-1), QFile::FileModificationTime));
        const pid_t saving = ::fork();
        if (saving == 0) {
            Defaults defaults(path());
            defaults.setText(u"twillioSecret"_s, u"s3cret"_s);
            killAtRenaming();
            ::_exit(defaults.save() ? 1 : 2);
        }
        int status = 0;
        QCOMPARE(::waitpid(saving, &status, 0), saving);
        QCOMPARE(WTERMSIG(status), SIGSYS); // which, as SIGKILL does, ends it there and then
        QCOMPARE(m_home->filesWith("s3cret").size(), 1);
        QVERIFY(!m_home->filesWith("s3cret").contains(path()));

        const Defaults defaults(path());
        QCOMPARE(m_home->filesWith("s3cret"), QStringList());
        QCOMPARE(QDir(folder).entryList(QDir::Files), (QStringList{u"oblino.ini"_s, u"oblino.ini.backup"_s}));
    }

private:
    // Every other file beside the settings, all of them private.
    [[nodiscard]] QByteArrayList copies() const
    {
        QByteArrayList contents;
        for (const QFileInfo &file : QFileInfo(path()).dir().entryInfoList(QDir::Files)) {
            const bool isPrivate = (statusOf(file.filePath()).st_mode & 0077) == 0;
            if (file.filePath() != path())
                contents += isPrivate ? contentOf(file.filePath()) : "read by others";
        }
        return contents;
    }

    [[nodiscard]] QString path() const { return m_home->path(u"config/oblino/oblino.ini"_s); }

    std::optional<TemporaryHome> m_home;
};

OBLINO_TEST(tst_defaults, QCoreApplication)

#include "tst_defaults.moc"
