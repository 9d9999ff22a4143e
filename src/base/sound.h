#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace oblino {

/// One short sound.
class Sound
{
public:
    Sound() = default;
    Sound(const Sound &) = delete;
    Sound &operator=(const Sound &) = delete;
    virtual ~Sound() = default;

    /// Makes it ready to be played.
    /// @param failed  called with a description when it cannot be played
    virtual void prepare(std::function<void(const QString &description)> failed) = 0;
    /// Plays it from the beginning.
    virtual void play() = 0;
};

/// Makes the sound of a resource of the application; null where there is no such resource.
using SoundMaker = std::function<std::unique_ptr<Sound>(const QString &resource)>;

} // namespace oblino
