#pragma once

#include <benchmark/benchmark.h>

#include <QtGlobal>

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace oblino::bench {

/// Does a piece of work once. @return how long it took, in seconds
using Timed = std::function<double()>;

/// Seconds since it was made.
class Stopwatch
{
public:
    Stopwatch();
    /// The lesser of the time of day that passed, which is the finer measure of short work, and the time that
    /// this thread had a processor, which leaves out what other programs took of long work.
    [[nodiscard]] double seconds() const;

private:
    double m_processor;
    std::chrono::steady_clock::time_point m_begin;
};

/// Times `work(input)`, with a fresh input from `prepare()`. Making the input, and destroying it and the
/// result, are not part of the time.
template<typename Prepare, typename Work>
Timed timed(const Prepare &prepare, const Work &work)
{
    return [prepare, work] {
        auto input = prepare();
        const Stopwatch watch;
        auto result = work(input);
        benchmark::DoNotOptimize(result);
        benchmark::ClobberMemory();
        return watch.seconds();
    };
}

/// Times are judged by their ratio to that of a limit measured in the same process.
class Ratios : private benchmark::BenchmarkReporter
{
public:
    /// Enters a piece of work, or a limit, under a name of its own.
    void time(const std::string &name, const Timed &timed);

    /// Asks for a line with the ratio of two of those that were entered.
    /// @param table  the title above the lines of one table
    /// @param tasks  how many tasks both worked on
    void judge(const std::string &table, const std::string &what, qsizetype tasks, const std::string &work,
               const std::string &limit, double goal);

    /// Runs what the command line asks for and prints the tables on standard output. A time is the best of
    /// several rounds: other work on the machine can only add to it.
    /// @return whether anything ran
    [[nodiscard]] bool run(int argc, char **argv);

private:
    struct Line
    {
        std::string what;
        qsizetype tasks;
        std::string work, limit;
        double goal;
    };

    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override;
    void print(const std::string &table, const std::vector<Line> &lines) const;

    std::map<std::string, double> m_best; // seconds, by name
    std::map<std::string, std::vector<Line>> m_tables;
};

} // namespace oblino::bench
