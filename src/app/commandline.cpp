#include <app/commandline.h>

#include <config.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace oblino {

namespace {

constexpr int usageError = 2; // as of most programs

// Of Qt, with one dash or two; those with a value take it from the next argument, or after an equals sign.
constexpr auto toolkitOptions = std::to_array<std::string_view>(
    {"display", "fontengine", "geometry", "platform", "platformpluginpath", "platformtheme", "plugin",
     "qwindowgeometry", "qwindowicon", "qwindowtitle", "session", "style", "stylesheet"});
constexpr auto toolkitFlags = std::to_array<std::string_view>({"dograb", "nograb", "reverse", "widgetcount"});

constexpr const char *help =
    "Usage: oblino [options]\n"
    "Plan work as a list of tasks and text people their schedules.\n\n"
    "  -h, --help      say this\n"
    "  -v, --version   say which version this is\n\n"
    "Without an option its window opens, or comes to the front where it is open.\n"
    "The options of Qt programs, as -style or -platform, work too; the guide is on F1.\n";

std::string_view withoutDashes(std::string_view argument)
{
    const size_t dashes = argument.starts_with("--") ? 2 : 1;
    return argument.starts_with('-') ? argument.substr(dashes) : std::string_view();
}

// How many arguments from this one on are the toolkit's.
size_t toolkitArguments(std::string_view argument)
{
    const std::string_view name = withoutDashes(argument);
    const std::string_view option = name.substr(0, name.find('='));
    if (std::ranges::find(toolkitFlags, name) != toolkitFlags.end())
        return 1;
    if (std::ranges::find(toolkitOptions, option) == toolkitOptions.end())
        return 0;
    return option.size() < name.size() ? 1 : 2;
}

} // namespace

std::optional<int> answeredCommandLine(std::span<char *> arguments)
{
    for (size_t i = 1; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--version" || argument == "-v") {
            std::puts("Oblino " OBLINO_VERSION);
            return EXIT_SUCCESS;
        }
        if (argument == "--help" || argument == "-h") {
            std::fputs(help, stdout);
            return EXIT_SUCCESS;
        }
        const size_t taken = toolkitArguments(argument);
        if (taken == 0) {
            const char *kind = argument.starts_with('-') ? "option" : "argument";
            std::fprintf(stderr, "oblino: unknown %s %s; try oblino --help\n", kind, arguments[i]);
            return usageError;
        }
        i += taken - 1;
    }
    return {};
}

} // namespace oblino
