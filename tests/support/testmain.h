#pragma once

#include <QStandardPaths>
#include <QTest>

namespace oblino {

/// Runs a test by these arguments, and gives its exit code.
using TestRun = int (*)(int argc, char **argv);

/// Enters a test class into the list from which main() takes the one that is named on the command line.
bool registerTest(const char *name, TestRun run);

template<typename Test, typename Application>
int runTest(int argc, char **argv)
{
    const Application application(argc, argv);
    QStandardPaths::setTestModeEnabled(true); // never the settings and files of whoever runs the tests
    QCoreApplication::setApplicationName(QStringLiteral("oblino"));
    Test test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace oblino

/// Enters a test class that needs an application object of that class, as in QApplication.
#define OBLINO_TEST(TestClass, ApplicationClass)                                                             \
    static const bool registered##TestClass =                                                                \
        oblino::registerTest(#TestClass, &oblino::runTest<TestClass, ApplicationClass>);
