#include <support/faultyfilecalls.h>

#include <platform/safefile.h>

#include <QFile>

#include <csignal>

#include <sys/resource.h>

using namespace oblino;

/// save_victim recover FILE PRIVATE CALL
/// save_victim save FILE PRIVATE CALL TEXT [LARGEST]
///
/// Recovers or saves a file and is killed at that file call; 0 for none. LARGEST limits the size of the files
/// it may write. Ends with 0 when the file was saved.
int main(int argc, char *argv[])
{
    if (argc < 5)
        return 2;
    const QByteArray action(argv[1]);
    const int call = QByteArray(argv[4]).toInt();
    if (argc > 6) {
        const rlimit largest{QByteArray(argv[6]).toULong(), RLIM_INFINITY};
        if (signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &largest) == -1)
            return 2;
    }

    FaultyFileCalls calls;
    SafeFile file(QFile::decodeName(argv[2]), QFile::decodeName(argv[3]), calls);
    if (action == "recover")
        calls.arm(call, FaultyFileCalls::killProcess);
    if (!file.recover().isEmpty() && action == "save")
        return 2;
    if (action == "recover")
        return 0;
    if (file.read().outcome == FileReading::Outcome::Failed || argc < 6)
        return 2;
    calls.arm(call, FaultyFileCalls::killProcess);
    return file.write(argv[5]).written ? 0 : 1;
}
