#pragma once

#include <optional>
#include <span>

namespace oblino {

/// Answers options that only ask something, and what is no option, on the terminal.
/// @param arguments  of main(), the program's name among them
/// @return the exit code; none where the program is to start. Options of the toolkit, as -style, are its own.
[[nodiscard]] std::optional<int> answeredCommandLine(std::span<char *> arguments);

} // namespace oblino
