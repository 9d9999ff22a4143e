#include <support/privatebus.h>
#include <support/test.h>

#include <desktop/keyring.h>

using Outcome = PasswordStore::Outcome;

class tst_keyring : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saysAtOnceWhereThereIsNone()
    {
        const PrivateBus bus;
        QVERIFY(!bus.address().isEmpty());
        const QString key = u"ann@db.invalid:5432/tasks"_s;
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toLocal8Bit());
        QList<Outcome> outcomes;
        {
            Keyring keyring(u"oblino-test"_s);
            const auto note = [&outcomes](Outcome outcome) { outcomes += outcome; };
            keyring.write(key, u"secret"_s, note);
            keyring.read(key, [note](Outcome outcome, const QString &) { note(outcome); });
            keyring.remove(key, note);
        }
        QTRY_COMPARE_WITH_TIMEOUT(outcomes, QList<Outcome>(3, Outcome::NoKeyring), 5'000);
    }
};

OBLINO_TEST(tst_keyring, QCoreApplication)

#include "tst_keyring.moc"
