#include <app/application.h>
#include <app/commandline.h>

#include <config.h>
#include <controls/icons.h>
#include <desktop/singleinstance.h>

#include <QApplication>
#include <QLoggingCategory>
#include <QStandardPaths>

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

// Otherwise the first file or socket that is opened takes the number of a closed standard stream, and traces
// and messages go into it.
void openMissingStandardStreams()
{
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor >= 0)
        ::close(descriptor);
}

// Without HOME the standard folders would lie at the root of the file system.
void ensureHome()
{
    if (!qEnvironmentVariableIsEmpty("HOME"))
        return;
    if (const passwd *user = ::getpwuid(::getuid()))
        qputenv("HOME", user->pw_dir);
}

bool hasDisplay()
{
    const bool chosen = !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
    return chosen || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// GStreamer, the other backend, brings no MP3 decoder of its own.
void chooseAudioBackend()
{
    if (qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
}

} // namespace

int main(int argc, char *argv[])
{
    openMissingStandardStreams();
    if (const std::optional<int> code = oblino::answeredCommandLine({argv, static_cast<size_t>(argc)}))
        return *code;
    ensureHome();
    if (!hasDisplay()) {
        std::fputs("oblino: no display: neither DISPLAY nor WAYLAND_DISPLAY is set\n", stderr);
        return EXIT_FAILURE;
    }
    chooseAudioBackend();

    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false")); // what libraries say of themselves
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("oblino"));
    QApplication::setApplicationDisplayName(QStringLiteral("Oblino"));
    QApplication::setApplicationVersion(QStringLiteral(OBLINO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("oblino"));
    QApplication::setWindowIcon(oblino::themedIcon(QStringLiteral("oblino"))); // loads no plugin
    QApplication::setQuitOnLastWindowClosed(false); // closing the main window ends the program

    oblino::SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    switch (instance.claim()) {
    case oblino::SingleInstance::Claim::First:
        break;
    case oblino::SingleInstance::Claim::RaisedOther:
        return EXIT_SUCCESS;
    case oblino::SingleInstance::Claim::OtherSilent:
        std::fputs("oblino: another Oblino is running and does not answer\n", stderr);
        return EXIT_FAILURE;
    }

    oblino::Application oblino(instance);
    oblino.start();
    return QApplication::exec();
}
