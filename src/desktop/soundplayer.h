#pragma once

#include <base/sound.h>

#include <QObject>

class QMediaPlayer;

namespace oblino {

/// Plays one short sound of the application's resources. The audio system is woken only when the event loop
/// runs for the first time after prepare(), so that preparing costs a starting program nothing.
class SoundPlayer : public QObject, public Sound
{
    Q_OBJECT

public:
    /// The sound of an MP3 resource, as in ":/sounds/ding.mp3"; null where there is no such resource.
    [[nodiscard]] static std::unique_ptr<Sound> make(const QString &resource);

    explicit SoundPlayer(QString resource);
    ~SoundPlayer() override;

    void prepare(std::function<void(const QString &description)> failed) override;
    void play() override;

private:
    void makePlayer();

    QString m_resource;
    std::function<void(const QString &description)> m_failed = [](const QString &) {};
    std::unique_ptr<QMediaPlayer> m_player;
};

} // namespace oblino
