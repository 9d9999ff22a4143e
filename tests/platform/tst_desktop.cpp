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

    void saysWhenASoundCannotBePlayed()
    {
        const bool canBeHeard = !QMediaDevices::defaultAudioOutput().isNull();
        for (const QString &resource : {u":/sounds/ding.mp3"_s, u":/sounds/dong.mp3"_s}) {
            const bool exists = resource == u":/sounds/ding.mp3"_s;
            QCOMPARE(SoundPlayer::exists(resource), exists);
            SoundPlayer player(resource);
            const QSignalSpy failures(&player, &SoundPlayer::failed);
            player.play();
            QTRY_COMPARE(failures.size(), exists && canBeHeard ? 0 : 1);
        }
    }
};

OBLINO_TEST(tst_desktop, QGuiApplication)

#include "tst_desktop.moc"
