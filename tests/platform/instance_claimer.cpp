#include <platform/singleinstance.h>

#include <QCoreApplication>

#include <cstdio>

using namespace oblino;

/// instance_claimer FOLDER
///
/// Claims the folder and says how that went; the first to claim it stays and says when it is to be raised.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    SingleInstance instance(QCoreApplication::arguments().value(1));
    const auto say = [](const char *word) {
        std::puts(word);
        std::fflush(stdout);
    };
    QObject::connect(&instance, &SingleInstance::raiseRequested, [say] { say("raise"); });
    const SingleInstance::Claim claim = instance.claim();
    say(claim == SingleInstance::Claim::First ? "first" : "not first");
    return claim == SingleInstance::Claim::First ? QCoreApplication::exec() : 0;
}
