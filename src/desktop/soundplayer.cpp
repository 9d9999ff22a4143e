#include <desktop/soundplayer.h>

#include <QAudioDevice>
#include <QAudioOutput>
#include <QCoreApplication>
#include <QFile>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace oblino {

using namespace std::chrono_literals;

namespace {
// Long enough for the first frame to be on the screen.
constexpr auto afterTheFirstPaint = 1500ms;
} // namespace

SoundPlayer::SoundPlayer(QString resource)
    : m_resource(std::move(resource))
{
}

SoundPlayer::~SoundPlayer() = default;

std::unique_ptr<Sound> SoundPlayer::make(const QString &resource)
{
    return QFile::exists(resource) ? std::make_unique<SoundPlayer>(resource) : nullptr;
}

void SoundPlayer::prepare(std::function<void(const QString &description)> failed)
{
    m_failed = std::move(failed);
    QTimer::singleShot(afterTheFirstPaint, this, &SoundPlayer::makePlayer);
}

void SoundPlayer::play()
{
    makePlayer();
    if (m_player->error() != QMediaPlayer::NoError)
        return;
    // Without a device the ffmpeg backend writes to a null pointer.
    if (QMediaDevices::defaultAudioOutput().isNull()) {
        m_failed(QStringLiteral("no audio device"));
        return;
    }
    m_player->stop(); // back to the beginning
    m_player->play();
}

void SoundPlayer::makePlayer()
{
    if (m_player)
        return;
    m_player = std::make_unique<QMediaPlayer>();
    // The audio system does not outlive the application object; this player may.
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, [this] { m_player.reset(); });
    m_player->setAudioOutput(new QAudioOutput(m_player.get()));
    connect(m_player.get(), &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString &description) { m_failed(description); });
    m_player->setSource(QUrl(QStringLiteral("qrc") + m_resource));
}

} // namespace oblino
