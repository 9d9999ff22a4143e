#pragma once

#include <QString>

namespace oblino {

/// Whether `path` leads over a symbolic link that another user owns, in a folder that users other than this
/// one and root may write. Whoever put it there decides which file of ours is read, or replaced.
[[nodiscard]] bool leadsOverForeignLink(const QString &path);

} // namespace oblino
