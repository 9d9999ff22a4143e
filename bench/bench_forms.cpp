// How long a form takes to open beside 5,000 clients and as many team members, from the call to its painted
// description field, against two bare combo boxes that are filled with the same names.
#include "paintwatch.h"

#include <base/alert.h>
#include <base/appearance.h>
#include <base/notificationcenter.h>
#include <base/trace.h>
#include <contacts/contactstore.h>
#include <controls/descriptionview.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <ui/uiutil.h>
#include <ui/windows/viewcontrolleradd.h>
#include <ui/windows/viewcontrolleredit.h>

#include <QComboBox>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <fcntl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace oblino;
using namespace oblino::bench;

namespace {

constexpr int contactCount = 5'000;
constexpr double goal = 100; // ms
constexpr int rounds = 21;

class NoAlert : public Alert
{
public:
    [[nodiscard]] std::optional<int> ask(const Question &) override { return std::nullopt; }
};

QStringList names()
{
    QStringList all;
    for (int i = 0; i < contactCount; ++i)
        all += QStringLiteral("Person %1 of Somewhere").arg(i * 7919 % contactCount);
    return all;
}

void fillStore(const QString &folder)
{
    ContactStore container(folder);
    if (const QString error = container.loadPersistentStores().error; !error.isEmpty())
        qFatal("%s", qPrintable(error));
    for (const FetchRequest &request : {Clients::fetchRequest(), TeamMembers::fetchRequest()}) {
        ContactModel *objects = container.viewContext()->objects(request);
        objects->insertRows(0, contactCount);
        for (int row = 0; const QString &name : names())
            objects->setData(objects->index(row++, NameColumn), name);
    }
    if (const QString error = container.viewContext()->save(); !error.isEmpty())
        qFatal("%s", qPrintable(error));
}

// Two combo boxes and nothing else.
class BareWindow : public QWidget
{
public:
    explicit BareWindow(const QStringList &items)
    {
        auto *column = new QVBoxLayout(this);
        for (int i = 0; i < 2; ++i) {
            m_last = new QComboBox(this);
            m_last->setEditable(true);
            m_last->addItems(items);
            column->addWidget(m_last);
        }
    }

    [[nodiscard]] const QWidget *last() const { return m_last; }

private:
    QComboBox *m_last = nullptr;
};

/// @param make  makes a window
/// @param last  the widget of it whose painting is waited for
/// @return the median, in milliseconds
template<typename Make, typename Last>
double measure(PaintWatch &watch, const char *title, const Make &make, const Last &last)
{
    std::vector<double> times;
    while (times.size() < rounds) {
        decltype(make()) window;
        times.push_back(watch.untilPainted([&] {
            window = make();
            window->show();
            return last(*window);
        }));
    }
    std::sort(times.begin(), times.end());
    const double median = times.at(times.size() / 2);
    std::printf("%-24s %8.2f %8.2f %8.2f %6.0f%s\n", title, times.front(), median, times.back(), goal,
                median <= goal ? "" : "  missed");
    return median;
}

const QWidget *description(const QWidget &form)
{
    return form.findChild<DescriptionView *>()->viewport();
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    PaintWatch watch(argc, argv);
    Trace::setDescriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    const QTemporaryDir folder;
    fillStore(folder.path());
    Defaults settings(folder.filePath(QStringLiteral("settings.ini")));
    Appearance appearance;
    TaskManager store(settings, appearance);
    UIUtil utilities(std::make_unique<NoAlert>());
    NotificationCenter notifications;
    const TaskWindowContext context = {store, utilities, notifications, folder.path()};
    const QStringList items = names();

    std::printf("%-24s %8s %8s %8s %6s\n", "", "best, ms", "median", "worst", "goal");
    const double bare = measure(
        watch, "two bare combo boxes", [&] { return std::make_unique<BareWindow>(items); },
        [](const BareWindow &window) { return window.last(); });
    const double add = measure(
        watch, "the add form", [&] { return std::make_unique<ViewControllerAdd>(context); }, description);
    const double edit = measure(
        watch, "the edit form", [&] { return std::make_unique<ViewControllerEdit>(context); }, description);
    std::printf("against the bare boxes: add %.2f, edit %.2f\n", add / bare, edit / bare);
    Trace::setDescriptor(-1);
    return EXIT_SUCCESS;
}
