#pragma once

#include <QObject>
#include <QString>

#include <memory>

class QMediaPlayer;

namespace oblino {

/// Plays one short sound of the application's resources. The audio system is woken only when the event loop
/// runs for the first time after prepare(), so that preparing costs a starting program nothing.
class SoundPlayer : public QObject
{
    Q_OBJECT

public:
    /// @param resource  the path of an MP3 resource, as in ":/sounds/ding.mp3"
    explicit SoundPlayer(QString resource, QObject *parent = nullptr);
    ~SoundPlayer() override;

    /// Whether the application has such a resource.
    [[nodiscard]] static bool exists(const QString &resource);

    void prepare();
    /// Plays from the beginning, preparing first where that has not happened yet.
    void play();

Q_SIGNALS:
    /// The sound cannot be played; the description is the audio system's.
    void failed(const QString &description);

private:
    void makePlayer();

    QString m_resource;
    std::unique_ptr<QMediaPlayer> m_player;
};

} // namespace oblino
