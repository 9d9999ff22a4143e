#include <support/testmain.h>

#include <platform/pasteboard.h>
#include <platform/soundplayer.h>

#include <QAudioDevice>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMediaDevices>
#include <QMimeData>
#include <QSignalSpy>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_desktop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("QT_MEDIA_BACKEND", "ffmpeg"); }

    void aTextTakesThePlaceOfWhatIsOnThePasteboard()
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->setImage(QImage(1, 1, QImage::Format_RGB32));
        Pasteboard::setText(u"<b>Größe</b>\n😀"_s);
        QCOMPARE(clipboard->mimeData()->formats(), QStringList{u"text/plain"_s});
        QCOMPARE(clipboard->text(), u"<b>Größe</b>\n😀"_s);
    }

    void saysWhenASoundCannotBePlayed_data()
    {
        QTest::addColumn<QString>("resource");
        QTest::addColumn<bool>("exists");
        QTest::addColumn<bool>("plays");
        const bool heard = !QMediaDevices::defaultAudioOutput().isNull();
        QTest::newRow("the program's sound") << u":/sounds/ding.mp3"_s << true << heard;
        QTest::newRow("missing") << u":/sounds/dong.mp3"_s << false << false;
    }
    void saysWhenASoundCannotBePlayed()
    {
        QFETCH(const QString, resource);
        QTEST(SoundPlayer::exists(resource), "exists");
        SoundPlayer player(resource);
        const QSignalSpy failures(&player, &SoundPlayer::failed);
        player.play();
        QFETCH(const bool, plays);
        QTRY_COMPARE(failures.size(), plays ? 0 : 1);
    }
};

OBLINO_TEST(tst_desktop, QGuiApplication)

#include "tst_desktop.moc"
