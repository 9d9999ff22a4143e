#include <support/faultyfilecalls.h>
#include <support/place.h>
#include <support/test.h>

using Deed = std::function<void(const Place &)>;

namespace {

const QByteArray oldText = "one\n";
const QByteArray newText = QByteArray("two and a line\n").repeated(700);
const QByteArray otherText = "three, something else again\n";

/// The calls of this machine, before one of which, or some, another program does something to the file.
class DisturbedFileCalls : public FaultyFileCalls
{
public:
    DisturbedFileCalls(QByteArray userFile, std::function<void()> deed)
        : m_userFile(std::move(userFile))
        , m_deed(std::move(deed))
    {
    }

    void disturb(int number) { m_left = number; }
    void disturbEvery(const QByteArray &name) { m_everyName = name; }
    [[nodiscard]] bool isDisturbed() const { return !struckCall.isEmpty(); }

    QByteArray struckCall;   ///< the call before which that was
    bool isLookedAt = false; ///< the file's bytes or name were looked at since
    bool isWritten = false;  ///< the file was written or synced since
    bool isAtOnce = true;    ///< nothing but the end of a look came between that and the next writing

private:
    void before(const Call &call) override
    {
        const QByteArray name = call.path == m_userFile ? call.name : "";
        if (--m_left == 0 || (!name.isEmpty() && name == m_everyName)) {
            struckCall = QByteArray(call.name) + " of " + call.path;
            m_deed();
        }
        if (m_left > 0 || !isDisturbed())
            return;
        const bool isWriting = name == "pwrite" || name == "ftruncate" || name == "fsync";
        const bool isEndOfLook = name == "pread" && call.offset > 0;
        isAtOnce &= isWritten || isWriting || isEndOfLook || name == "stat";
        isWritten |= isWriting;
        isLookedAt |= name == "stat" || (name == "pread" && !isEndOfLook);
    }

    QByteArray m_userFile;
    std::function<void()> m_deed;
    QByteArray m_everyName;
    int m_left = 0;
};

void writeInPlace(const Place &place)
{
    put(place.path, otherText);
}

void renameOver(const Place &place)
{
    put(place.path + u".other"_s, otherText);
    QCOMPARE(::rename((place.encodedPath() + ".other").constData(), place.encodedPath().constData()), 0);
}

void deleteIt(const Place &place)
{
    QVERIFY(QFile::remove(place.path));
}

} // namespace

/// Whatever another program does to the file while it is saved, the file holds the saved text afterwards and
/// the other one is kept, or the save says that it failed.
class tst_foreignchanges : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void duringASave_data()
    {
        const Table<Deed, QByteArray, QByteArray, bool, QByteArrayList> row;
        row("another file is renamed over it", renameOver, oldText, newText, false, {otherText});
        row("renamed over it, shorter text", renameOver, newText, oldText, false, {otherText});
        row("it is written in place", writeInPlace, oldText, newText, true, {otherText});
        row("written in place, shorter text", writeInPlace, newText, oldText, true, {otherText});
        row("it is deleted", deleteIt, oldText, newText, false, {});
    }
    void duringASave()
    {
        const auto [deed, before, after, isInPlace, kept] =
            Table<Deed, QByteArray, QByteArray, bool, QByteArrayList>::cells();
        bool struck = true;
        int number = 1;
        for (; struck; ++number) {
            const Place place(before);
            DisturbedFileCalls calls(place.encodedPath(), [&] { deed(place); });
            SafeFile file(place.path, place.privateFolder, calls);
            QVERIFY(file.read().bytes == before);
            calls.disturb(number);
            const FileWriting saved = file.write(after);
            struck = calls.isDisturbed();
            calls.disturb(0);
            const QByteArray where = QByteArray::number(number) + ": before " + calls.struckCall;
            QVERIFY2(saved.written, qPrintable(saved.error));
            const bool isAfterTheSave = !calls.isWritten && !(calls.isLookedAt && !isInPlace);
            if (!struck || !isAfterTheSave)
                QVERIFY2(contentOf(place.path) == after, where + ", there is " + contentOf(place.path));
            QVERIFY(file.write("next").written && contentOf(place.path) == "next");
            // No look can tell what comes between it and the writing that follows.
            const bool isUnseen = isInPlace && calls.isWritten && calls.isAtOnce;
            if (struck && !isUnseen && !kept.isEmpty())
                QVERIFY2(place.kept().contains(kept.first()), where);
        }
        QVERIFY2(number > 15, qPrintable(QString::number(number)));
    }
};

OBLINO_TEST(tst_foreignchanges, QCoreApplication)
#include "tst_foreignchanges.moc"
