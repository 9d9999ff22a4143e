#include <support/test.h>

#include <desktop/keyring.h>

using Outcome = PasswordStore::Outcome;

/// The keyring of the desktop: with_a_keyring.sh starts a real one around the first function.
class tst_keyring : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsPasswordsUntilTheyAreRemoved()
    {
        const QString password = u"pässwörd-密碼"_s;
        QCOMPARE(wait([&](auto done) { m_keyring.write(u"anna@db"_s, password, done); }), Outcome::Done);
        Keyring later(u"Oblino of the tests"_s);
        QString text;
        const auto read = [&](const QString &key) {
            return wait([&](auto done) {
                later.read(key, [&text, done](Outcome outcome, const QString &found) {
                    text = found;
                    done(outcome);
                });
            });
        };
        QCOMPARE(read(u"bob@db"_s), Outcome::NoneStored);
        QCOMPARE(read(u"anna@db"_s), Outcome::Done);
        QCOMPARE(text, password);
        QDirIterator files(QDir::homePath(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        QVERIFY(files.hasNext()); // the keyring's own
        while (files.hasNext())
            QVERIFY(!TemporaryHome::content(files.next()).contains(password.toUtf8()));
        QCOMPARE(wait([&](auto done) { m_keyring.remove(u"anna@db"_s, done); }), Outcome::Done);
        QCOMPARE(read(u"anna@db"_s), Outcome::NoneStored);
    }
    void saysThatThereIsNone()
    {
        QCOMPARE(wait([&](auto done) { m_keyring.write(u"anna@db"_s, u"secret"_s, done); }),
                 Outcome::NoKeyring);
    }

private:
    template<typename Begin>
    static Outcome wait(Begin begin)
    {
        std::optional<Outcome> result;
        begin([&result](Outcome outcome) { result = outcome; });
        return QTest::qWaitFor([&] { return result.has_value(); }) ? *result : Outcome(-1);
    }

    Keyring m_keyring = Keyring(u"Oblino of the tests"_s);
};

OBLINO_TEST(tst_keyring, QCoreApplication)

#include "tst_keyring.moc"
