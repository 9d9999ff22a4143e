#include "ratios.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace oblino::bench {

namespace {

double processorSeconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

Stopwatch::Stopwatch()
    : m_processor(processorSeconds())
    , m_begin(std::chrono::steady_clock::now())
{
}

double Stopwatch::seconds() const
{
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - m_begin;
    return std::min(passed.count(), processorSeconds() - m_processor);
}

void Ratios::time(const std::string &name, const Timed &timed)
{
    const auto body = [timed](benchmark::State &state) {
        for ([[maybe_unused]] const auto &iteration : state)
            state.SetIterationTime(timed());
    };
    benchmark::RegisterBenchmark(name.c_str(), body)->UseManualTime();
}

void Ratios::judge(const std::string &table, const std::string &what, qsizetype tasks,
                   const std::string &work, const std::string &limit, double goal)
{
    m_tables[table].push_back({what, tasks, work, limit, goal});
}

bool Ratios::run(int argc, char **argv)
{
    // The command line comes after these and so overrules them.
    std::string usual[] = {"--benchmark_repetitions=9", "--benchmark_min_time=0.02",
                           "--benchmark_enable_random_interleaving=true"};
    std::vector<char *> arguments = {argv[0]};
    for (std::string &argument : usual)
        arguments.push_back(argument.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return false;
    benchmark::RunSpecifiedBenchmarks(this);
    for (const auto &[table, lines] : m_tables)
        print(table, lines);
    return !m_best.empty();
}

void Ratios::ReportRuns(const std::vector<Run> &runs)
{
    for (const Run &run : runs) {
        if (run.run_type != Run::RT_Iteration)
            continue;
        const double time = run.real_accumulated_time / static_cast<double>(run.iterations);
        double &best = m_best.try_emplace(run.run_name.function_name, time).first->second;
        best = std::min(best, time);
    }
}

void Ratios::print(const std::string &table, const std::vector<Line> &lines) const
{
    std::printf("\n%s\n%-34s %7s %11s %11s %7s %5s\n", table.c_str(), "", "tasks", "work, us", "limit, us",
                "ratio", "goal");
    for (const Line &line : lines) {
        const auto work = m_best.find(line.work);
        const auto limit = m_best.find(line.limit);
        if (work == m_best.cend() || limit == m_best.cend())
            continue;
        const double ratio = work->second / limit->second;
        std::printf("%-34s %7lld %11.1f %11.1f %7.2f %5.1f%s\n", line.what.c_str(),
                    static_cast<long long>(line.tasks), work->second * 1e6, limit->second * 1e6, ratio,
                    line.goal, ratio <= line.goal ? "" : "  missed");
    }
}

} // namespace oblino::bench
