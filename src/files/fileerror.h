#pragma once

#include <QString>

#include <optional>

namespace oblino {

/// What stopped some work on a file. It is thrown within this room alone, which answers the others with
/// values.
struct FileError
{
    static constexpr int notRegular = -1;
    static constexpr int changed = -2; ///< another program did something to it
    static constexpr int damaged = -3; ///< it does not hold what was once written

    int code = 0;   ///< an `errno`, or one of these
    QString folder; ///< of the program's own, where that could not be written; else it was the file itself

    /// In words for the user, fit for the end of a sentence.
    [[nodiscard]] QString message() const;
    /// The sentence that the folder could not be written.
    [[nodiscard]] QString notWritable() const;
};

/// Does the work. @return what stopped it, if anything did
template<typename Work>
[[nodiscard]] std::optional<FileError> failureOf(Work work)
{
    try {
        work();
    } catch (const FileError &error) {
        return error;
    }
    return std::nullopt;
}

/// Does the work, and again where another program changes the file meanwhile, five times at most.
/// @return what stopped it the last time, if anything did
template<typename Work>
[[nodiscard]] std::optional<FileError> failureOfRounds(Work work)
{
    constexpr int mostRounds = 5;
    for (int round = 1;; ++round) {
        const auto failure = failureOf(work);
        if (!failure || failure->code != FileError::changed || round == mostRounds)
            return failure;
    }
}

/// Does the work in a folder of the program's own, which a failure then names.
template<typename Work>
auto inFolder(const QString &folder, Work work)
{
    try {
        return work();
    } catch (const FileError &error) {
        throw FileError{error.code, folder};
    }
}

} // namespace oblino
