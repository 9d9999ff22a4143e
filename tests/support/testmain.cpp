#include <support/testmain.h>

#include <QStandardPaths>

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

struct Entry
{
    const char *name;
    oblino::TestMaker makeTest;
    oblino::ApplicationMaker makeApplication;
};

std::vector<Entry> &entries()
{
    static std::vector<Entry> list;
    return list;
}

} // namespace

bool oblino::registerTest(const char *name, TestMaker makeTest, ApplicationMaker makeApplication)
{
    entries().push_back({name, makeTest, makeApplication});
    return true;
}

// tst_room <class> [options of Qt Test]
int main(int argc, char **argv)
{
    for (const Entry &entry : entries()) {
        if (argc < 2 || std::strcmp(argv[1], entry.name) != 0)
            continue;
        --argc;
        argv[1] = argv[0];
        ++argv;
        const auto application = entry.makeApplication(argc, argv);
        QStandardPaths::setTestModeEnabled(true); // never the settings and files of whoever runs the tests
        QCoreApplication::setApplicationName(QStringLiteral("oblino"));
        const auto test = entry.makeTest();
        return QTest::qExec(test.get(), argc, argv);
    }
    std::fprintf(stderr, "name one of these test classes:\n");
    for (const Entry &entry : entries())
        std::fprintf(stderr, "  %s\n", entry.name);
    return 2;
}
