#pragma once

#include <QObject>
#include <QTest>

#include <memory>

namespace oblino {

using TestMaker = std::unique_ptr<QObject> (*)();
using ApplicationMaker = std::unique_ptr<QCoreApplication> (*)(int &argc, char **argv);

/// Enters a test class into the list from which main() takes the one that is named on the command line.
bool registerTest(const char *name, TestMaker makeTest, ApplicationMaker makeApplication);

} // namespace oblino

/// Enters a test class that needs an application object of that class, as in QApplication.
#define OBLINO_TEST(TestClass, ApplicationClass)                                                             \
    static const bool registered##TestClass = oblino::registerTest(                                          \
        #TestClass, []() -> std::unique_ptr<QObject> { return std::make_unique<TestClass>(); },              \
        [](int &argc, char **argv) -> std::unique_ptr<QCoreApplication> {                                    \
            return std::make_unique<ApplicationClass>(argc, argv);                                           \
        });
