// How long the main window takes from a key or a click until its table has painted the result:
// bench_window [part of the name of what is to be measured].
#include "generatedlist.h"
#include "paintwatch.h"

#include <base/alert.h>
#include <base/appearance.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <controls/searchfield.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <files/documents.h>
#include <ui/uiutil.h>
#include <ui/windows/viewcontroller.h>

#include <QApplication>
#include <QComboBox>
#include <QEventLoop>
#include <QFile>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

using namespace oblino;
using namespace oblino::bench;
using namespace std::chrono_literals;

namespace {

constexpr double frame = 16; // ms
constexpr qsizetype longList = 100'000;
constexpr int rounds = 21;

// Answers every question with its first button.
class YesAlert : public Alert
{
public:
    [[nodiscard]] std::optional<int> ask(const Question &) override { return 0; }
};

// The main window with a list of its own, and the hands of its user.
class Window
{
public:
    Window(PaintWatch &watch, const QList<task> &tasks);

    void type(const QString &letters);
    void emptySearch() { press(m_search, Qt::Key_Escape); }
    void nextView() { press(m_views, Qt::Key_Down); }
    void chooseView(int index) { m_views->setCurrentIndex(index); }
    void clickHeader(int column);
    void clickRow(int row);
    void pressButton(const char *name) { child<QToolButton>(name)->click(); }
    void trigger(const char *action) { child<QAction>(action)->trigger(); }

    [[nodiscard]] int columns() const { return m_table->model()->columnCount(); }
    [[nodiscard]] QString title(int column) const
    {
        return m_table->model()->headerData(column, Qt::Horizontal).toString();
    }

    /// How long it takes from the event that `act` sends until the table is painted anew, in milliseconds.
    double untilPainted(const std::function<void()> &act);

private:
    template<typename Widget>
    [[nodiscard]] Widget *child(const char *name) const
    {
        return m_controller->findChild<Widget *>(QLatin1String(name));
    }
    static void press(QWidget *widget, int key, const QString &text = {});
    static void click(QWidget *widget, QPoint place);

    QTemporaryDir m_folder;
    Defaults m_settings{m_folder.filePath(QStringLiteral("settings.ini"))};
    Appearance m_appearance;
    TaskManager m_store{m_settings, m_appearance};
    Documents m_documents{m_folder.path(), m_folder.filePath(QStringLiteral("private"))};
    UIUtil m_utilities{std::make_unique<YesAlert>()};
    NotificationCenter m_notifications;
    PaintWatch &m_watch;
    std::unique_ptr<ViewController> m_controller;
    QTableView *m_table = nullptr;
    SearchField *m_search = nullptr;
    QComboBox *m_views = nullptr;
};

Window::Window(PaintWatch &watch, const QList<task> &tasks)
    : m_watch(watch)
{
    QFile list(m_folder.filePath(QStringLiteral("ltodolist.txt")));
    if (!list.open(QIODevice::WriteOnly) || list.write(taskListText(tasks, false)) < 0)
        qFatal("the list could not be written");
    list.close();
    m_controller =
        std::make_unique<ViewController>(m_store, m_documents, m_utilities, m_notifications, m_folder.path());
    m_table = child<QTableView>("tblView");
    for (int column = 0; column < columns(); ++column)
        m_table->showColumn(column);
    m_search = child<SearchField>("searchField");
    m_views = child<QComboBox>("viewSelection");
    untilPainted([this] { m_controller->show(); });
    // What the window does once it is on the screen is over by then.
    QEventLoop settling;
    QTimer::singleShot(2s, &settling, &QEventLoop::quit);
    settling.exec();
}

void Window::type(const QString &letters)
{
    for (const QChar letter : letters)
        press(m_search, letter.toUpper().unicode(), letter);
}

void Window::clickHeader(int column)
{
    QHeaderView *header = m_table->horizontalHeader();
    m_table->scrollTo(m_table->model()->index(0, column));
    const int middle = header->sectionViewportPosition(column) + header->sectionSize(column) / 2;
    click(header->viewport(), {middle, header->height() / 2});
}

void Window::clickRow(int row)
{
    click(m_table->viewport(), m_table->visualRect(m_table->model()->index(row, 0)).center());
}

double Window::untilPainted(const std::function<void()> &act)
{
    return m_watch.untilPainted([&] {
        act();
        return m_table->viewport();
    });
}

void Window::press(QWidget *widget, int key, const QString &text)
{
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(widget, &event);
    }
}

void Window::click(QWidget *widget, QPoint place)
{
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool down = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, place, widget->mapToGlobal(place), Qt::LeftButton,
                          down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &event);
    }
}

// One line of the table: what is timed, after what was done before it.
struct Action
{
    QString what;
    std::function<void(Window &)> prepare;
    std::function<void(Window &)> act;
    double longListGoal = frame; // ms
};

Action typing(const QString &before, const QString &letter)
{
    return {QStringLiteral("search: type %2 after \"%1\"").arg(before, letter),
            [before](Window &window) {
                window.emptySearch();
                window.type(before);
            },
            [letter](Window &window) { window.type(letter); }};
}

Action onARow(const QString &what, const char *button)
{
    return {what,
            [](Window &window) {
                window.emptySearch();
                window.clickRow(3);
            },
            [button](Window &window) { window.pressButton(button); }};
}

std::vector<Action> actions(const Window &window)
{
    std::vector<Action> all = {
        typing({}, QStringLiteral("a")),
        typing({}, QStringLiteral("z")),
        typing(QStringLiteral("th"), QStringLiteral("e")),
        typing(QStringLiteral("zeppeli"), QStringLiteral("n")),
        {QStringLiteral("search: empty the field"), [](Window &shown) { shown.type(QStringLiteral("zep")); },
         [](Window &shown) { shown.emptySearch(); }},
        {QStringLiteral("select a row"), [](Window &shown) { shown.clickRow(1); },
         [](Window &shown) { shown.clickRow(3); }},
        onARow(QStringLiteral("clone and save"), "cloneButton"),
        onARow(QStringLiteral("hide and save"), "hideButton"),
    };
    all.push_back({QStringLiteral("undo hiding, and save"),
                   [](Window &shown) {
                       shown.emptySearch();
                       shown.clickRow(3);
                       shown.pressButton("hideButton");
                   },
                   [](Window &shown) { shown.trigger("undoAction"); }, 2 * frame});
    all.push_back({QStringLiteral("undo a deletion, and save"),
                   [](Window &shown) {
                       shown.clickRow(3);
                       shown.pressButton("deleteButton");
                   },
                   [](Window &shown) { shown.trigger("undoAction"); }, 2 * frame});
    all.push_back({QStringLiteral("undo a sort, and save"),
                   [](Window &shown) {
                       shown.chooseView(0);
                       shown.clickHeader(3);
                   },
                   [](Window &shown) { shown.trigger("undoAction"); }, 2 * frame});
    for (const int view : {0, 5, 8}) {
        all.push_back({QStringLiteral("change from view %1 to %2").arg(view).arg(view + 1),
                       [view](Window &shown) { shown.chooseView(view); },
                       [](Window &shown) { shown.nextView(); }});
    }
    for (int column = 0; column < window.columns(); ++column) {
        all.push_back({QStringLiteral("sort by a click on ") + window.title(column),
                       [](Window &shown) { shown.chooseView(0); },
                       [column](Window &shown) { shown.clickHeader(column); }, 2 * frame});
    }
    return all;
}

void measure(PaintWatch &watch, const char *title, qsizetype taskCount, const QString &traces,
             const QString &part)
{
    Trace::setDescriptor(
        ::open(QFile::encodeName(traces).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    Window window(watch, generatedTasks(taskCount, QDate::currentDate()));
    std::printf("\n%s, %lld tasks\n%-34s %8s %8s %8s %6s\n", title, static_cast<long long>(taskCount), "",
                "best, ms", "median", "worst", "goal");
    for (const Action &action : actions(window)) {
        if (!action.what.contains(part))
            continue;
        std::vector<double> times;
        while (times.size() < rounds) {
            action.prepare(window);
            times.push_back(window.untilPainted([&] { action.act(window); }));
        }
        std::sort(times.begin(), times.end());
        const double median = times.at(times.size() / 2);
        const double goal = taskCount < longList ? frame : action.longListGoal;
        std::printf("%-34s %8.2f %8.2f %8.2f %6.0f%s\n", qPrintable(action.what), times.front(), median,
                    times.back(), goal, median <= goal ? "" : "  missed");
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    PaintWatch watch(argc, argv);
    const QTemporaryDir folder;
    const QString part = QCoreApplication::arguments().value(1);
    const QString nowhere = QStringLiteral("/dev/null");
    measure(watch, "From the event to the painted table", 10'000, nowhere, part);
    measure(watch, "The same with traces into a file", 10'000, folder.filePath(QStringLiteral("trace")),
            part);
    measure(watch, "From the event to the painted table", longList, nowhere, part);
    Trace::setDescriptor(-1);
    return EXIT_SUCCESS;
}
