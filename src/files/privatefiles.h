#pragma once

#include <QString>

namespace oblino {

/// Makes a folder that the user alone can enter (0700), and those above it, where they are missing.
/// @return in words why there is none, empty when there is one
[[nodiscard]] QString makePrivateFolder(const QString &path);

/// Makes an empty file that the user alone can read (0600) in such a folder where there is no file of that
/// name.
/// @return in words why there is none, empty when there is one
[[nodiscard]] QString makePrivateFile(const QString &path);

} // namespace oblino
