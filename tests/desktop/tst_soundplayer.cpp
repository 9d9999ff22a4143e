
#include <desktop/soundplayer.h>
#include <support/test.h>

#include <QAudioDevice>
#include <QGuiApplication>
#include <QMediaDevices>

class tst_soundplayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("QT_MEDIA_BACKEND", "ffmpeg"); }

    void saysWhenASoundCannotBePlayed()
    {
        const bool canBeHeard = !QMediaDevices::defaultAudioOutput().isNull();
        for (const QString &resource : {u":/sounds/ding.mp3"_s, u":/sounds/dong.mp3"_s}) {
            const bool exists = resource == u":/sounds/ding.mp3"_s;
            QCOMPARE(SoundPlayer::make(resource) != nullptr, exists);
            SoundPlayer player(resource);
            int failures = 0;
            player.prepare([&failures](const QString &) { ++failures; });
            player.play();
            QTRY_COMPARE(failures, exists && canBeHeard ? 0 : 1);
        }
    }
};

OBLINO_TEST(tst_soundplayer, QGuiApplication)

#include "tst_soundplayer.moc"
