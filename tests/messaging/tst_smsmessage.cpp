#include <messaging/smsmessage.h>
#include <support/table.h>
#include <support/testmain.h>

#include <limits>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_smsmessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsAfterThe160thCharacterAndNeverWithinOne_data()
    {
        const Table<QString> row;
        row("a letter", u"z"_s);
        row("a surrogate pair", u"😀"_s);
        row("a skin tone", u"👍🏽"_s);
        row("a family", u"👨‍👩‍👧‍👦"_s);
        row("a skin tone in a sequence", u"👩🏽‍🚀"_s);
        row("a flag", u"🇩🇪"_s);
        row("a flag of tags", u"🏴󠁧󠁢󠁳󠁣󠁴󠁿"_s);
        row("a keycap", u"1\uFE0F\u20E3"_s);
        row("many marks", u'e' + QString(300, QChar(0x0301)));
        row("a syllable in parts", u"\u1112\u1161\u11AB"_s);
        row("a syllable and a part", u"\uD558\u11AB"_s);
        row("a vowel sign", u"\u0928\u093F"_s);
        row("a line end", u"\r\n"_s);
    }
    void cutsAfterThe160thCharacterAndNeverWithinOne()
    {
        const auto [character] = Table<QString>::cells();
        const QString most(159, u'a');
        for (const QString &whole :
             {QString(), character, most + character, character + most, character.repeated(160)})
            QCOMPARE(smsText(whole), whole);
        QCOMPARE(smsText(most + character + u'z'), most + character);
        QCOMPARE(smsText(most + u'z' + character), most + u'z');
        QCOMPARE(smsText(character.repeated(161)), character.repeated(160));
    }

    void encodesEveryValueOfTheForm()
    {
        QCOMPARE(smsForm(u"+49 1"_s, u"a&To=b"_s, u"é🎉%41+\n\r"_s),
                 "From=%2B49%201&To=a%26To%3Db&Body=%C3%A9%F0%9F%8E%89%2541%2B%0A%0D");
        QCOMPARE(smsForm({}, {}, {}), "From=&To=&Body=");
    }

    void makesAnAddressOfWhatItCanCarry_data()
    {
        const Table<QString, QString, QString> row;
        const QString path = u"https://h/2010-04-01/Accounts/%1/SMS/Messages"_s;
        const QString all = u"azAZ09-._~!$&'()*+,;="_s;
        row("an account", u"AC1"_s, u"s"_s, path.arg(u"AC1"_s));
        row("every character that is allowed", all, all + u':', path.arg(all));
        row("nothing", {}, {}, path.arg(u""_s));
        row("dots that are no folder", u"..."_s, u".."_s, path.arg(u"..."_s));
        for (const char *sid : {".", "..", "a:b"})
            row(sid, QString::fromLatin1(sid), {}, {});
        for (const QChar c : u"@/?#[] %\\\"<>^`{|}\r\n\x7Fé\u0661"_s + QChar(0)) {
            const QByteArray name = QByteArray::number(c.unicode(), 16);
            row(("in the id: " + name).constData(), u"a"_s + c, {}, {});
            row(("in the secret: " + name).constData(), u"a"_s, c + u"b"_s, {});
        }
    }
    void makesAnAddressOfWhatItCanCarry()
    {
        const auto [sid, secret, expected] = Table<QString, QString, QString>::cells();
        const std::optional<QUrl> url = smsUrl(u"h"_s, 443, sid, secret);
        QCOMPARE(url ? url->toString(QUrl::FullyEncoded) : QString(), expected);
    }

    void pausesWithinThirtyTwoBitsOfMicroseconds_data()
    {
        const Table<qint64, qint64> row;
        row("the lowest", std::numeric_limits<qint64>::min(), 0);
        row("below nothing", -1, 0);
        row("nothing", 0, 0);
        row("some", 1500, 1'500'000);
        row("the most", 4'294'967, 4'294'967'000);
        row("above the most", 4'294'968, 4'294'967'000);
        row("the highest", std::numeric_limits<qint64>::max(), 4'294'967'000);
    }
    void pausesWithinThirtyTwoBitsOfMicroseconds()
    {
        const auto [delay, expected] = Table<qint64, qint64>::cells();
        QCOMPARE(smsPause(delay).count(), expected);
    }
};

OBLINO_TEST(tst_smsmessage, QCoreApplication)

#include "tst_smsmessage.moc"
