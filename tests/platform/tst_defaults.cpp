#include <support/temporaryhome.h>
#include <support/testmain.h>

#include <platform/defaults.h>

#include <sys/stat.h>

#include <atomic>
#include <memory>
#include <thread>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

uint modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777 : 0;
}

} // namespace

class tst_defaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_path = m_home->path(u"config/oblino/oblino.ini"_s);
    }

    void keepsItsFileToTheUserAlone_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("new file") << QByteArray();
        QTest::newRow("readable by everyone before") << "[General]\nold=kept\n"_ba;
    }
    void keepsItsFileToTheUserAlone()
    {
        QFETCH(const QByteArray, content);
        QDir().mkpath(QFileInfo(m_path).path());
        if (!content.isEmpty()) {
            TemporaryHome::write(m_path, content);
            QCOMPARE(::chmod(qPrintable(m_path), 0644), 0);
        }
        Defaults defaults(m_path);
        QCOMPARE(modeOf(m_path), 0600U);
        defaults.setText(u"secret"_s, u"s3cret"_s);
        QVERIFY(defaults.save());
        QCOMPARE(modeOf(m_path), 0600U);
        QCOMPARE(Defaults(m_path).text(u"old"_s).has_value(), !content.isEmpty());

        QVERIFY(QDir(QFileInfo(m_path).path()).removeRecursively());
        defaults.setText(u"secret"_s, u"another"_s); // which the event loop saves
        QTRY_VERIFY(TemporaryHome::content(m_path).contains("another"));
        QCOMPARE(modeOf(m_path), 0600U);
    }

    void readsAFileEditedByHand_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<std::optional<QString>>("text");
        QTest::addColumn<bool>("boolean");
        QTest::addColumn<qint64>("integer");
        const auto row = [](const char *why, const QByteArray &line, const std::optional<QString> &text,
                            bool boolean,
                            qint64 integer) { QTest::newRow(why) << line << text << boolean << integer; };
        row("absent", "", std::nullopt, false, 0);
        row("empty", "k=", QString(), false, 0);
        row("a comma is no list", "k=Dear Ann, good day", u"Dear Ann, good day"_s, false, 0);
        row("true", "k=true", u"true"_s, true, 0);
        row("false", "k=false", u"false"_s, false, 0);
        row("leading zeros of a telephone number", "k=0049171", u"0049171"_s, false, 49171);
        row("negative", "k=-5", u"-5"_s, false, -5);
        row("largest integer", "k=9223372036854775807", u"9223372036854775807"_s, false,
            std::numeric_limits<qint64>::max());
        row("beyond it", "k=9223372036854775808", u"9223372036854775808"_s, false, 0);
        row("no integer", "k=12 ms", u"12 ms"_s, false, 0);
    }
    void readsAFileEditedByHand()
    {
        QFETCH(const QByteArray, line);
        QDir().mkpath(QFileInfo(m_path).path());
        TemporaryHome::write(m_path, "[General]\n" + line + '\n');
        const Defaults defaults(m_path);
        QTEST(defaults.text(u"k"_s), "text");
        QTEST(defaults.boolean(u"k"_s), "boolean");
        QTEST(defaults.integer(u"k"_s), "integer");
    }

    void keepsEveryText_data()
    {
        QTest::addColumn<QString>("text");
        const auto row = [](const char *why, const QString &text) { QTest::newRow(why) << text; };
        row("empty", u""_s);
        row("blanks at both ends", u" x "_s);
        row("what separates a list", u"a, b"_s);
        row("what starts a comment or ends a key", u"a;b#c=d"_s);
        row("quotes", u"\"quoted\""_s);
        row("lines", u"one\ntwo\ttab"_s);
        row("what looks like an escape", u"C:\\x41 %20"_s);
        row("what looks like another type", u"@Variant(x)"_s);
        row("what looks like a boolean", u"true"_s);
        row("leading zeros", u"007"_s);
        row("beyond ASCII", u"Grüße 😀"_s);
        row("long", QString(10'000, u'ü'));
    }
    void keepsEveryText()
    {
        QFETCH(const QString, text);
        Defaults first(m_path);
        first.setText(u"k"_s, text);
        QCOMPARE(first.text(u"k"_s), text);
        QVERIFY(first.save());
        QCOMPARE(Defaults(m_path).text(u"k"_s), text);
    }

    void saysWhenItCannotSave_data()
    {
        QTest::addColumn<bool>("fileIsFolder");
        QTest::newRow("the folder is a file") << false;
        QTest::newRow("the file is a folder") << true;
    }
    void saysWhenItCannotSave()
    {
        QFETCH(const bool, fileIsFolder);
        const QString obstacle = fileIsFolder ? m_path : QFileInfo(m_path).path();
        QVERIFY(QDir().mkpath(fileIsFolder ? m_path : QFileInfo(obstacle).path()));
        if (!fileIsFolder)
            TemporaryHome::write(obstacle, "in the way");
        Defaults defaults(m_path);
        defaults.setText(u"k"_s, u"value"_s);
        QVERIFY(!defaults.save());
        QCOMPARE(defaults.text(u"k"_s), u"value"_s);

        QVERIFY(fileIsFolder ? QDir().rmdir(obstacle) : QFile::remove(obstacle));
        QVERIFY2(defaults.save(), "the obstacle is gone");
        QCOMPARE(Defaults(m_path).text(u"k"_s), u"value"_s);
    }

    void isReadWhileAnotherThreadFailsToSave()
    {
        QVERIFY(QDir().mkpath(m_path));
        Defaults defaults(m_path);
        const QStringList values = {QString(300, u'o'), QString(400, u'e')};
        defaults.setText(u"k"_s, values.first());
        std::atomic<bool> writing = true;
        std::thread writer([&] {
            for (int i = 0; i < 50; ++i) {
                defaults.setText(u"k"_s, values.at(i % 2));
                (void)defaults.save();
            }
            writing = false;
        });
        bool whole = true;
        while (writing)
            whole = values.contains(defaults.text(u"k"_s).value_or(QString())) && whole;
        writer.join();
        QVERIFY(whole);
    }

private:
    std::unique_ptr<TemporaryHome> m_home;
    QString m_path;
};

OBLINO_TEST(tst_defaults, QCoreApplication)

#include "tst_defaults.moc"
