#include <support/cloudrequests.h>

#include <platform/cloud/sqlcloudcontainer.h>

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

using namespace oblino;

/// cloud_victim FILE COUNT
///
/// Saves records 0 to COUNT - 1 in a file and prints the name of each that was saved, or why it was not.
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 3)
        return 2;
    SqlCloudContainer container({.file = QFile::decodeName(argv[1])}, QList{&noteType()});
    for (int i = 0; i < QByteArray(argv[2]).toInt(); ++i) {
        const CloudRecord record = note(QString::number(i), QStringLiteral("text"), QString(1000, u'x'));
        container.privateCloudDatabase().saveRecord(
            record, [name = record.recordName()](const auto &, const CloudFailure &failure) {
                std::puts(qPrintable(failure ? failure->localizedDescription : name));
                std::fflush(stdout);
            });
    }
    [[maybe_unused]] const CloudFailure last = remove(container, QString()); // when all are answered
    return 0;
}
