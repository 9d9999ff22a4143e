#pragma once

#include <QString>
#include <QStringList>

namespace oblino {

class TaskManager;

/// The settings that sending schedules still misses, each by the words that the settings window has for it;
/// empty where nothing is missing.
[[nodiscard]] QStringList missingSettings(const QString &sid, const QString &secret,
                                          const QString &sendingPhoneNo, bool isOn);
/// The same for the settings that are stored.
[[nodiscard]] QStringList missingSettings(const TaskManager &settings);

/// A whole number as a text field means it: the leading decimal integer of its text, after blanks and with a
/// sign if there is one; 0 where the text begins with none. Numbers outside 32 bits count as the nearest
/// inside.
[[nodiscard]] qint64 leadingInteger(const QString &text);

} // namespace oblino
