#pragma once

#include <QByteArray>
#include <QString>

namespace oblino {

/// Somebody who holds what the user has entered until it lies in its file. At the program's end each is asked
/// to save once more, and where that fails, to put the text somewhere else.
class UnsavedWork
{
public:
    UnsavedWork() = default;
    UnsavedWork(const UnsavedWork &) = delete;
    UnsavedWork &operator=(const UnsavedWork &) = delete;
    virtual ~UnsavedWork() = default;

    /// What is held, fit for the start of a sentence ("The list").
    [[nodiscard]] virtual QString workTitle() const = 0;
    /// Whether something of it is in no file. Cheap.
    [[nodiscard]] virtual bool isUnsaved() const = 0;
    /// Saves what is unsaved. @return an error in words for the user, empty when nothing is unsaved any more
    [[nodiscard]] virtual QString saveNow() = 0;
    /// The whole content as its file is to hold it.
    [[nodiscard]] virtual QByteArray unsavedContent() const = 0;
    /// The name of that file, without a folder.
    [[nodiscard]] virtual QString unsavedFileName() const = 0;
    /// Puts the whole content to the first place that takes it (see EarlierVersions::rescue()).
    /// @return the path there, empty where no place takes it
    [[nodiscard]] virtual QString rescue() = 0;
};

} // namespace oblino
