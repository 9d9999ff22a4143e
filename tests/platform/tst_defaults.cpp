#include <support/place.h>
#include <support/table.h>
#include <support/testmain.h>

#include <platform/defaults.h>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_defaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<TemporaryHome>();
        m_path = m_home->path(u"config/oblino/oblino.ini"_s);
    }

    void keepsItsFileToTheUserAlone()
    {
        put(m_path, "[General]\nold=kept\n");
        QCOMPARE(::chmod(qPrintable(m_path), 0644), 0);
        Defaults defaults(m_path);
        QCOMPARE(mode(), 0600U);
        defaults.setText(u"secret"_s, u"s3cret"_s);
        QVERIFY(defaults.save());
        QCOMPARE(mode(), 0600U);
        QCOMPARE(contentOf(m_path), "[General]\nold=kept\nsecret=s3cret\n");
    }

    void readsAFileEditedByHand_data()
    {
        const Table<QByteArray, std::optional<QString>, bool, qint64> row;
        row("absent", "", {}, false, 0);
        row("empty", "k=", u""_s, false, 0);
        row("a comma is no list", "k=Dear Ann, good day", u"Dear Ann, good day"_s, false, 0);
        row("true", "k=true", u"true"_s, true, 0);
        row("false", "k=false", u"false"_s, false, 0);
        row("leading zeros of a telephone number", "k=0049171", u"0049171"_s, false, 49171);
        row("negative", "k=-5", u"-5"_s, false, -5);
        row("beyond the largest integer", "k=9223372036854775808", u"9223372036854775808"_s, false, 0);
        row("no integer", "k=12 ms", u"12 ms"_s, false, 0);
    }
    void readsAFileEditedByHand()
    {
        const auto [line, text, boolean, integer] =
            Table<QByteArray, std::optional<QString>, bool, qint64>::cells();
        put(m_path, "[General]\n" + line + '\n');
        const Defaults defaults(m_path);
        QCOMPARE(defaults.text(u"k"_s), text);
        QCOMPARE(defaults.boolean(u"k"_s), boolean);
        QCOMPARE(defaults.integer(u"k"_s), integer);
    }

    void keepsEveryText()
    {
        for (const QString &text :
             {u""_s, u" x "_s, u"a, b"_s, u"a;b#c=d"_s, u"\"quoted\""_s, u"one\ntwo\ttab"_s, u"C:\\x41 %20"_s,
              u"@Variant(x)"_s, u"true"_s, u"007"_s, u"Grüße 😀"_s, QString(10'000, u'ü')}) {
            Defaults defaults(m_path);
            defaults.setText(u"k"_s, text);
            QCOMPARE(defaults.text(u"k"_s), text);
            QVERIFY(defaults.save());
            QCOMPARE(Defaults(m_path).text(u"k"_s), text);
        }
    }

    void saysWhenItCannotSave()
    {
        QVERIFY(QDir().mkpath(m_path));
        Defaults defaults(m_path);
        defaults.setText(u"k"_s, u"value"_s);
        QVERIFY(!defaults.save());
        QCOMPARE(defaults.text(u"k"_s), u"value"_s);
        QVERIFY(QDir().rmdir(m_path));
        QVERIFY2(defaults.save(), "the obstacle is gone");
        QCOMPARE(Defaults(m_path).text(u"k"_s), u"value"_s);
    }

private:
    [[nodiscard]] uint mode() const { return statusOf(m_path).st_mode & 0777; }

    std::unique_ptr<TemporaryHome> m_home;
    QString m_path;
};

OBLINO_TEST(tst_defaults, QCoreApplication)

#include "tst_defaults.moc"
