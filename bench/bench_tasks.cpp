// The list operations of the task store, each beside the least that any program would have to do for it.
#include "generatedlist.h"
#include "ratios.h"

#include <base/appearance.h>
#include <base/trace.h>
#include <core/tasklistfile.h>
#include <core/tasklistreader.h>
#include <core/tasklistwriter.h>
#include <core/taskmanager.h>
#include <core/taskordering.h>
#include <core/tasksearch.h>
#include <files/defaults.h>
#include <files/documents.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <memory>

using namespace oblino;
using namespace oblino::bench;

namespace {

// The files of this run.
QString path(const char *name)
{
    static const QTemporaryDir folder;
    return folder.filePath(QLatin1String(name));
}

struct Sample
{
    explicit Sample(qsizetype count)
        : tasks(shuffled(generatedTasks(count, QDate::currentDate())))
        , bytes(taskListText(tasks, false))
    {
    }

    QList<task> tasks;
    QByteArray bytes;
};

struct Store
{
    static Defaults &settings()
    {
        static Defaults instance(path("settings.ini"));
        return instance;
    }

    Appearance appearance;
    TaskManager tasks{settings(), appearance};
};

// Where traces go while it lives; a file starts empty.
class TraceOutput
{
public:
    explicit TraceOutput(const QString &file)
        : m_descriptor(
              ::open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))
    {
        Trace::setDescriptor(m_descriptor);
    }
    ~TraceOutput()
    {
        Trace::setDescriptor(-1);
        ::close(m_descriptor);
    }
    TraceOutput(const TraceOutput &) = delete;
    TraceOutput &operator=(const TraceOutput &) = delete;

private:
    int m_descriptor;
};

Timed withoutTraces(const Timed &work)
{
    return [work] {
        const TraceOutput output(QStringLiteral("/dev/null"));
        return work();
    };
}

Timed withTraces(const Timed &work)
{
    static const Timed flush = timed([] { return 0; },
                                     [](int) {
                                         Trace::flush();
                                         return 0;
                                     });
    return [work] {
        const TraceOutput output(path("trace"));
        return work() + flush();
    };
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

// The cases of one list.
class Cases
{
public:
    Cases(Ratios &ratios, const Sample &sample)
        : m_ratios(ratios)
        , m_sample(sample)
    {
    }

    void addReading();
    void addComposing();
    void addViews();
    void addSearches();
    void addSorts();
    void addSortsByMoment();

private:
    void add(const std::string &what, double goal, const Timed &work, const Timed &limit);
    template<typename Value>
    void addSort(const QString &column, const std::function<Value(const task &, bool)> &valueOf)
    {
        addSort(column, column, m_sample.tasks, valueOf);
    }
    template<typename Value>
    void addSort(const QString &what, const QString &column, const QList<task> &tasks,
                 const std::function<Value(const task &, bool)> &valueOf);

    Ratios &m_ratios;
    const Sample &m_sample;
};

void Cases::add(const std::string &what, double goal, const Timed &work, const Timed &limit)
{
    const qsizetype count = m_sample.tasks.size();
    const std::string name = what + "/" + std::to_string(count);
    m_ratios.time(name + "/limit", limit);
    m_ratios.time(name + "/work", withoutTraces(work));
    m_ratios.time(name + "/traced", withTraces(work));
    m_ratios.judge("The work beside its limit, traces going nowhere", what, count, name + "/work",
                   name + "/limit", goal);
    m_ratios.judge("The work with traces into a file beside the work without", what, count, name + "/traced",
                   name + "/work", 2);
}

void Cases::addReading()
{
    constexpr double goal = 3;
    const Sample &sample = m_sample;
    const Timed limit = timed([&sample] { return sample.bytes; },
                              [](const QByteArray &bytes) { return QString::fromUtf8(bytes); });

    const auto readBytes = [&sample](const std::unique_ptr<Store> &store) {
        const TaskListText list = decodedTaskList(sample.bytes);
        require(addTaskList(list.text, store->tasks).unreadableRows.isEmpty());
        require(store->tasks.tasks().size() == sample.tasks.size());
        return 0;
    };
    add("read and parse the bytes", goal, timed([] { return std::make_unique<Store>(); }, readBytes), limit);

    struct FileOfStore : Store
    {
        Documents documents{path("."), path("private")};
        TaskListFile file{tasks, documents};
    };
    const auto madeFile = [&sample] {
        QFile list(path("ltodolist.txt"));
        require(list.open(QIODevice::WriteOnly) && list.write(sample.bytes) == sample.bytes.size());
        return std::make_unique<FileOfStore>();
    };
    const auto readFile = [&sample](const std::unique_ptr<FileOfStore> &store) {
        store->file.splitStringFile(store->file.readFromFile());
        require(store->tasks.tasks().size() == sample.tasks.size());
        return 0;
    };
    add("read and parse the file", goal, timed(madeFile, readFile), limit);
}

void Cases::addComposing()
{
    const auto copied = [](const Sample *sample) {
        QByteArray copy = sample->bytes;
        copy.detach();
        return copy;
    };
    const auto sample = [made = &m_sample] { return made; };
    add("compose the file text", 6,
        timed(sample, [](const Sample *list) { return taskListText(list->tasks, false); }),
        timed(sample, copied));
}

void Cases::addViews()
{
    for (const qint64 view : {0, 1, 6, 9}) {
        const auto store = std::make_shared<Store>();
        store->tasks.setTasks(m_sample.tasks);
        const auto rebuilt = [view](Store *list) {
            list->tasks.setFilter(view);
            return list->tasks.countInView();
        };
        const auto copy = std::make_shared<QList<task>>();
        const auto copied = [tasks = &m_sample.tasks](QList<task> *last) {
            QList<task> next;
            next.reserve(tasks->size());
            for (const task &t : *tasks)
                next.append(t);
            *last = std::move(next); // as the view takes the place of the one before
            return last->size();
        };
        add("rebuild view " + std::to_string(view), 1.5, timed([store] { return store.get(); }, rebuilt),
            timed([copy] { return copy.get(); }, copied));
    }
}

void Cases::addSearches()
{
    const auto tasks = [list = &m_sample.tasks] { return list; };
    const std::pair<const char *, QString> terms[] = {{"rare", SearchTerms::rare},
                                                      {"common", SearchTerms::common},
                                                      {"one-letter", SearchTerms::oneLetter},
                                                      {"missing", SearchTerms::missing}};
    for (const auto &[what, term] : terms) {
        const auto scanned = [term = term](const QList<task> *list) {
            const auto holds = [&term](const QString &text) {
                return text.contains(term, Qt::CaseInsensitive);
            };
            return std::count_if(list->cbegin(), list->cend(), [&holds](const task &t) {
                return holds(t.name) || holds(t.desc) || holds(t.client) || holds(t.teamMember) ||
                       holds(t.key);
            });
        };
        add(std::string("search for a ") + what + " term first", 1.5,
            timed(tasks,
                  [term = term](const QList<task> *list) { return TaskSearch().matching(*list, term); }),
            timed(tasks, scanned));
        const auto search = std::make_shared<TaskSearch>();
        const auto nothingNarrower = [search, list = &m_sample.tasks] {
            require(search->matching(*list, QStringLiteral("\t\t")).empty());
            return list;
        };
        add(std::string("search for a ") + what + " term", 1.5,
            timed(nothingNarrower,
                  [search, term = term](const QList<task> *list) { return search->matching(*list, term); }),
            timed(tasks, scanned));
    }
}

template<typename Value>
void Cases::addSort(const QString &what, const QString &column, const QList<task> &tasks,
                    const std::function<Value(const task &, bool)> &valueOf)
{
    for (const bool ascending : {true, false}) {
        std::vector<Value> values;
        for (const task &t : tasks)
            values.push_back(valueOf(t, ascending));
        const auto sortedValues = [ascending](std::vector<Value> &bare) {
            if (ascending)
                std::stable_sort(bare.begin(), bare.end(), std::less<Value>());
            else
                std::stable_sort(bare.begin(), bare.end(), std::greater<Value>());
            return bare.size();
        };
        const SortDescriptor descriptor = {column, ascending};
        const auto ownList = [tasks] {
            QList<task> copy = tasks;
            copy.detach();
            return copy;
        };
        add("sort by " + what.toStdString() + (ascending ? " up" : " down"), 2,
            timed(ownList,
                  [descriptor](QList<task> &list) {
                      TaskPlaces order = placesInOrder(list, descriptor);
                      return rearranged(std::move(list), std::move(order));
                  }),
            timed([values] { return values; }, sortedValues));
    }
}

void Cases::addSorts()
{
    using Id = CellIdentifiers;
    const auto timeText = [](qint64 hour, qint64 minute, bool ascending) {
        return QString::number(hour) + (ascending ? QStringLiteral(":") : QString()) +
               QString::number(minute);
    };
    addSort<QString>(Id::NameCell, [](const task &t, bool) { return t.name; });
    addSort<QString>(Id::DescCell, [](const task &t, bool) { return t.desc; });
    addSort<qint64>(Id::StatusCell, [](const task &t, bool) { return t.status; });
    addSort<qint64>(Id::DateCell, [](const task &t, bool) { return t.date.toMSecsSinceEpoch(); });
    addSort<qint64>(Id::PriorityCell, [](const task &t, bool) { return t.priority; });
    addSort<qint64>(Id::DueCell, [](const task &t, bool) { return t.due.toMSecsSinceEpoch(); });
    addSort<QString>(Id::KeyCell, [](const task &t, bool) { return t.key; });
    addSort<QString>(Id::StartTime,
                     [=](const task &t, bool up) { return timeText(t.startHour, t.startMin, up); });
    addSort<QString>(Id::EndTime, [=](const task &t, bool up) { return timeText(t.endHour, t.endMin, up); });
    addSort<QString>(Id::ClientCell, [](const task &t, bool) { return t.client; });
    addSort<QString>(Id::TeamMemberCell, [](const task &t, bool) { return t.teamMember; });
}

void Cases::addSortsByMoment()
{
    QList<task> tasks = m_sample.tasks;
    qint64 minute = 0;
    for (task &t : tasks)
        t.date = t.date.addSecs(60 * (minute++ % (24 * 60)));
    addSort<qint64>(QStringLiteral("moments"), CellIdentifiers::DateCell, tasks,
                    [](const task &t, bool) { return t.date.toMSecsSinceEpoch(); });
}

// What the tasks take of the heap once a list is read, and what a first search adds to that.
void printMemory(const Sample &sample)
{
    const auto used = [] {
        const struct mallinfo2 heap = ::mallinfo2();
        return heap.uordblks + heap.hblkhd;
    };
    const auto count = static_cast<size_t>(sample.tasks.size());
    const size_t before = used();
    Store store;
    require(addTaskList(QString::fromUtf8(sample.bytes), store.tasks).unreadableRows.isEmpty());
    store.tasks.setFilter(0);
    const size_t read = used();
    store.tasks.setIsSearching(true);
    store.tasks.setSearchTerm(SearchTerms::common);
    store.tasks.search();
    store.tasks.setFilter(0);
    std::printf("\nMemory a task at %zu tasks: %zu bytes, in a search %zu more\n", count,
                (read - before) / count, (used() - read) / count);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Ratios ratios;
    std::list<Sample> samples;
    for (const qsizetype count : {1000, 10000, 100000}) {
        Cases cases(ratios, samples.emplace_back(count));
        cases.addReading();
        cases.addComposing();
        cases.addViews();
        cases.addSearches();
        cases.addSorts();
        cases.addSortsByMoment();
    }
    printMemory(samples.back());
    return ratios.run(argc, argv) ? EXIT_SUCCESS : EXIT_FAILURE;
}
