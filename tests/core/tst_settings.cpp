#include "store.h"

using namespace oblino;

namespace {

QStringList texts(const TaskManager &m)
{
    return {m.getTwilioSID(),    m.getTwilioSecret(),  m.getTwilioSendingPhoneNo(),
            m.getMessageTitle(), m.getMessageFooter(), m.getTestPhoneNo()};
}

QList<qint64> numbers(const TaskManager &m)
{
    return {m.getNotification(), m.getOverwrite(), m.getDelay()};
}

// Under a new name nothing of a settings file is held in memory.
QString copyOfSettings(Store &store)
{
    const QString path = store.home.path(u"copy.ini"_s);
    return store.defaults.save() && QFile::copy(store.home.path(u"settings.ini"_s), path) ? path : QString();
}

} // namespace

class tst_settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsEverySettingUnderItsKey()
    {
        const QStringList values = {u"+1 5"_s, u"a, b; \"c\" = \\"_s, u"é 🎉\n"_s, u"@Invalid()"_s, u" "_s,
                                    u""_s};
        Store s;
        s.manager.setTwilioSID(values[0]);
        s.manager.setTwilioSecret(values[1]);
        s.manager.setTwilioSendingPhoneNo(values[2]);
        s.manager.setMessageTitle(values[3]);
        s.manager.setMessageFooter(values[4]);
        s.manager.setTestOhoneNo(values[5]);
        s.manager.setNotification(true);
        s.manager.setOverwrite(false);
        s.manager.setDelay(-1500);
        QCOMPARE(texts(s.manager), values);
        QCOMPARE(numbers(s.manager), (QList<qint64>{true, false, -1500}));

        Defaults copied(copyOfSettings(s));
        const TaskManager nextRun(copied, s.appearance);
        QCOMPARE(texts(nextRun), values);
        QCOMPARE(numbers(nextRun), (QList<qint64>{true, false, -1500}));
        QStringList stored;
        for (const char *key : {"twilioSID", "twillioSecret", "twillioSendingPhoneNo", "twillioMessageTitle",
                                "twillioMessageFooter", "twillioTestPhoneNo"})
            stored += copied.text(QString::fromLatin1(key)).value_or(u"nothing"_s);
        QCOMPARE(stored, values);
        QVERIFY(copied.boolean(u"twillioNotifications"_s) && !copied.boolean(u"twillioOverwrite"_s));
        copied.setBool(u"twillioOverwrite"_s, true);
        copied.setInteger(u"twillioDelay"_s, std::numeric_limits<qint64>::max());
        QCOMPARE(numbers(nextRun), (QList<qint64>{true, true, std::numeric_limits<qint64>::max()}));
    }

    void findsNothingUnderOtherKeysOrOfOtherTypes()
    {
        Store s;
        QCOMPARE(texts(s.manager), QStringList(6, QString()));
        QCOMPARE(numbers(s.manager), (QList<qint64>{false, false, 0}));
        for (const char *key :
             {"twilioSecret", "TwillioSecret", "twillioSID", "twilioNotifications", "twillioOverwrit"})
            s.defaults.setText(QString::fromLatin1(key), u"true"_s);
        s.defaults.setInteger(u"twillioMessageTitle"_s, 7);
        s.defaults.setBool(u"twillioMessageFooter"_s, true);
        s.defaults.setText(u"twillioOverwrite"_s, u"text"_s);
        s.defaults.setText(u"twillioDelay"_s, u"text"_s);
        QCOMPARE(texts(s.manager), QStringList(6, QString()));
        QCOMPARE(numbers(s.manager), (QList<qint64>{false, false, 0}));
    }

    void hidesTheSecretThatEveryoneCouldRead()
    {
        const QFile::Permissions owner =
            QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
        const Store fresh;
        QCOMPARE(QFile::permissions(fresh.home.path(u"settings.ini"_s)), owner);
        const QString path = fresh.home.path(u"before.ini"_s);
        TemporaryHome::write(path, "[General]\ntwillioSecret=old\n");
        QVERIFY(QFile::setPermissions(path, owner | QFile::ReadGroup | QFile::ReadOther));
        Defaults defaults(path);
        QCOMPARE(QFile::permissions(path), owner);
        QCOMPARE(defaults.text(u"twillioSecret"_s), u"old"_s);
        defaults.setText(u"twillioSecret"_s, u"new"_s);
        QVERIFY(defaults.save());
        QCOMPARE(TemporaryHome::content(path), "[General]\ntwillioSecret=new\n"_ba);
        QCOMPARE(QFile::permissions(path), owner);
    }
};

OBLINO_TEST(tst_settings, QCoreApplication)

#include "tst_settings.moc"
