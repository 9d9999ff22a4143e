// How long two programs take from their start to the first frame on the screen, seen from outside:
// bench_startup <program> <bare program>. It needs a display of its own, without a window manager.
#include "generatedlist.h"

#include <core/tasklistwriter.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

using namespace oblino;
using namespace oblino::bench;
using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr qsizetype taskCount = 1000;
constexpr double goal = 2;
constexpr int pairs = 21;
constexpr uint32_t rootColor = 0xc13584; // neither program paints anything in it
constexpr auto timeout = 30s;
constexpr auto pause = 200us;

struct Free
{
    void operator()(void *block) const { std::free(block); }
};
template<typename T>
using Reply = std::unique_ptr<T, Free>;

// The screen, seen by a client that draws nothing but the ground.
class Screen
{
public:
    Screen()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(m_connection))
            qFatal("no display");
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        const uint32_t values[] = {rootColor, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
        xcb_change_window_attributes(m_connection, m_root, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        clear();
    }
    ~Screen() { xcb_disconnect(m_connection); }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    void clear()
    {
        xcb_clear_area(m_connection, 0, m_root, 0, 0, 0, 0);
        xcb_flush(m_connection);
    }

    // Waits for a window and answers its middle.
    xcb_point_t waitForWindow(Clock::time_point until)
    {
        for (;;) {
            const Reply<xcb_generic_event_t> event(nextEvent(until));
            if ((event->response_type & 0x7f) != XCB_MAP_NOTIFY)
                continue;
            const auto *mapped = reinterpret_cast<const xcb_map_notify_event_t *>(event.get());
            const auto request = xcb_get_geometry(m_connection, mapped->window);
            const Reply<xcb_get_geometry_reply_t> box(xcb_get_geometry_reply(m_connection, request, nullptr));
            if (box && box->width > 500)
                return {static_cast<int16_t>(box->x + box->width / 2),
                        static_cast<int16_t>(box->y + box->height / 2)};
        }
    }

    void waitForPaint(xcb_point_t place, Clock::time_point until)
    {
        while (colorAt(place) == rootColor) {
            if (Clock::now() > until)
                qFatal("the window was not painted");
            std::this_thread::sleep_for(pause);
        }
    }

    [[nodiscard]] uint32_t colorAt(xcb_point_t place) const
    {
        const auto request =
            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, place.x, place.y, 1, 1, ~0U);
        const Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(m_connection, request, nullptr));
        if (!image || xcb_get_image_data_length(image.get()) < 4)
            qFatal("the screen cannot be read; it needs a depth of 24");
        const uint8_t *bytes = xcb_get_image_data(image.get());
        return static_cast<uint32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16);
    }

private:
    xcb_generic_event_t *nextEvent(Clock::time_point until)
    {
        for (;;) {
            if (xcb_generic_event_t *event = xcb_poll_for_event(m_connection))
                return event;
            if (Clock::now() > until)
                qFatal("no window came");
            pollfd waiting = {xcb_get_file_descriptor(m_connection), POLLIN, 0};
            ::poll(&waiting, 1, 100);
        }
    }

    xcb_connection_t *m_connection;
    xcb_window_t m_root = 0;
};

pid_t started(const char *program)
{
    const pid_t child = ::fork();
    if (child != 0)
        return child;
    const int nowhere = ::open("/dev/null", O_RDWR);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
    ::execl(program, program, nullptr);
    ::_exit(127);
}

// One run of a program; in milliseconds.
double untilFirstFrame(Screen &screen, const char *program)
{
    const auto begin = Clock::now();
    const pid_t child = started(program);
    screen.waitForPaint(screen.waitForWindow(begin + timeout), begin + timeout);
    const std::chrono::duration<double, std::milli> time = Clock::now() - begin;
    ::kill(child, SIGTERM);
    ::waitpid(child, nullptr, 0);
    screen.clear();
    return time.count();
}

// A user of its own for the programs, who has a list.
class Home
{
public:
    Home()
    {
        const auto inside = [this](const char *name) { return m_folder.filePath(QLatin1String(name)); };
        QDir(m_folder.path()).mkdir(QStringLiteral("Documents"));
        QFile list(inside("Documents/ltodolist.txt"));
        if (!list.open(QIODevice::WriteOnly) ||
            list.write(taskListText(generatedTasks(taskCount, QDate::currentDate()), false)) < 0)
            qFatal("the list could not be written");
        qputenv("HOME", QFile::encodeName(m_folder.path()));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
        qputenv("QT_QPA_PLATFORM", "xcb");
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_DOCUMENTS_DIR"})
            qunsetenv(name);
    }

private:
    QTemporaryDir m_folder;
};

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

void print(const char *what, const std::vector<double> &times)
{
    std::printf("%-34s %8.1f %8.1f\n", what, *std::min_element(times.begin(), times.end()), median(times));
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: bench_startup <program> <bare program>\n");
        return EXIT_FAILURE;
    }
    const Home home;
    Screen screen;
    std::vector<double> program, bare;
    untilFirstFrame(screen, argv[1]); // brings the files into memory
    untilFirstFrame(screen, argv[2]);
    for (int pair = 0; pair < pairs; ++pair) {
        program.push_back(untilFirstFrame(screen, argv[1]));
        bare.push_back(untilFirstFrame(screen, argv[2]));
    }
    std::printf("From the start to the first frame, %lld tasks, %d pairs of runs\n%-34s %8s %8s\n",
                static_cast<long long>(taskCount), pairs, "", "best, ms", "median");
    print("the program", program);
    print("a bare window", bare);
    const double ratio = median(program) / median(bare);
    std::printf("ratio of the medians %.2f, goal %.1f%s\n", ratio, goal, ratio <= goal ? "" : "  missed");
    return EXIT_SUCCESS;
}
