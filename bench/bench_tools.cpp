// How the notes pad does with 10 MB of notes, against a bare text field with the same text, and what the end
// of a stroke costs on the whiteboard: the capture, its saving, and its loading.
#include "paintwatch.h"

#include <base/alert.h>
#include <base/appearance.h>
#include <base/sharingpicker.h>
#include <base/trace.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <tools/windows/viewcontrollernotes.h>
#include <tools/windows/viewcontrollerwhiteboard.h>
#include <ui/uiutil.h>

#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTemporaryDir>

#include <fcntl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace oblino;
using namespace oblino::bench;

namespace {

constexpr qsizetype notesSize = 10'000'000; // bytes
constexpr double frame = 16;                // ms
constexpr double opening = 1500;            // ms, most of it the text field's own layout

class NoAlert : public Alert
{
public:
    [[nodiscard]] std::optional<int> ask(const Question &) override { return std::nullopt; }
};

class NoPicker : public SharingPicker
{
public:
    void show(const QVariantList &, QObject *, Edge) override {}
};

template<typename Act>
void measure(const char *title, int rounds, double goal, const Act &act)
{
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i)
        times.push_back(act());
    std::sort(times.begin(), times.end());
    const double median = times.at(times.size() / 2);
    std::printf("%-36s %8.2f %8.2f %8.2f %6.0f%s\n", title, times.front(), median, times.back(), goal,
                median <= goal ? "" : "  missed");
}

double millisecondsOf(const std::function<void()> &act)
{
    const auto begin = std::chrono::steady_clock::now();
    act();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double pressKey(PaintWatch &watch, QPlainTextEdit &edit)
{
    return watch.untilPainted([&edit] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QCoreApplication::sendEvent(&edit, &press);
        return edit.viewport();
    });
}

void measureNotes(PaintWatch &watch, TaskManager &store, const QString &folder)
{
    const QByteArray notes =
        QByteArray("Call Dana about the second coat of paint, and whether it will dry.\n")
            .repeated(notesSize / 67);
    QFile file(folder + QStringLiteral("/ltodonotes.txt"));
    if (!file.open(QIODevice::WriteOnly) || file.write(notes) != notes.size() || !file.flush())
        qFatal("no notes");
    Documents documents(folder, folder + QStringLiteral("/private"));
    std::unique_ptr<QPlainTextEdit> bare;
    measure("a bare text field opens", 5, opening, [&] {
        return watch.untilPainted([&] {
            bare = std::make_unique<QPlainTextEdit>(QString::fromUtf8(notes));
            bare->show();
            return bare->viewport();
        });
    });
    measure("key in the bare text field", 101, frame, [&] { return pressKey(watch, *bare); });
    std::unique_ptr<ViewControllerNotes> pad;
    measure("the pad opens", 5, opening, [&] {
        return watch.untilPainted([&] {
            pad = std::make_unique<ViewControllerNotes>(store, documents);
            pad->show();
            return pad->findChild<QPlainTextEdit *>()->viewport();
        });
    });
    auto &edit = *pad->findChild<QPlainTextEdit *>();
    measure("key at the end", 101, frame, [&] { return pressKey(watch, edit); });
    edit.moveCursor(QTextCursor::Start);
    measure("key at the start", 101, frame, [&] { return pressKey(watch, edit); });
    measure("saving after a key", 11, 200, [&] {
        pressKey(watch, edit);
        return millisecondsOf([&pad] { pad->saveToFile(); });
    });
    measure("saving what nobody touched", 11, 1,
            [&pad] { return millisecondsOf([&pad] { pad->saveToFile(); }); });
}

void measureBoard(UIUtil &utilities, const QString &folder)
{
    QDir::setCurrent(folder);
    NoPicker picker;
    ViewControllerWhiteboard board(utilities, picker, folder + QStringLiteral("/private"), folder);
    board.show();
    QCoreApplication::processEvents();
    auto *line =
        static_cast<ViewControllerWhiteboard::Line *>(board.findChild<QWidget *>(QStringLiteral("line")));
    measure("the end of a stroke", 51, 100, [line] {
        line->mouseDown({100, 100});
        for (int x = 0; x < 500; ++x)
            line->mouseDragged({100.0 + x, 100.0 + x * 7 % 300});
        QCoreApplication::processEvents();
        return millisecondsOf([line] { line->mouseUp({600, 200}); });
    });
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    PaintWatch watch(argc, argv);
    Trace::setDescriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    const QTemporaryDir folder;
    Defaults settings(folder.filePath(QStringLiteral("settings.ini")));
    Appearance appearance;
    TaskManager store(settings, appearance);
    UIUtil utilities(std::make_unique<NoAlert>());
    std::printf("%-36s %8s %8s %8s %6s\n", "", "best, ms", "median", "worst", "goal");
    measureNotes(watch, store, folder.path());
    measureBoard(utilities, folder.path());
    Trace::setDescriptor(-1);
    return EXIT_SUCCESS;
}
