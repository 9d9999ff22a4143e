#include <support/testmain.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

std::map<std::string, oblino::TestRun> &tests()
{
    static std::map<std::string, oblino::TestRun> all;
    return all;
}

} // namespace

bool oblino::registerTest(const char *name, TestRun run)
{
    return tests().emplace(name, run).second;
}

// tst_room <class> [options of Qt Test]
int main(int argc, char **argv)
{
    const auto test = tests().find(argc > 1 ? argv[1] : "");
    if (test != tests().end()) {
        argv[1] = argv[0];
        return test->second(argc - 1, argv + 1);
    }
    std::fputs("name one of these test classes:\n", stderr);
    for (const auto &[name, run] : tests())
        std::fprintf(stderr, "  %s\n", name.c_str());
    return 2;
}
