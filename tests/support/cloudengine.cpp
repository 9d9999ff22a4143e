#include <support/cloudengine.h>

#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUuid>

#include <stdexcept>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace oblino {

QString folderInMemory(const QString &name)
{
    const QString memory = u"/dev/shm"_s;
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + u'/' + name + u"-XXXXXX"_s;
}

SecondConnection::SecondConnection(const QSqlDatabase &database)
    : m_database(database)
{
    if (!m_database.open())
        throw std::runtime_error(m_database.lastError().text().toStdString());
}

SecondConnection::~SecondConnection()
{
    const QString name = m_database.connectionName();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

QList<QVariantList> SecondConnection::run(const QString &statement)
{
    QSqlQuery query(m_database);
    if (!query.exec(statement))
        throw std::runtime_error(query.lastError().text().toStdString());
    QList<QVariantList> rows;
    while (query.next()) {
        rows += QVariantList();
        for (int column = 0; column < query.record().count(); ++column)
            rows.last() += query.value(column);
    }
    return rows;
}

RecordPlace SqliteEngine::newPlace()
{
    return {.file = m_folder.filePath(u"private/%1/cloud.sqlite"_s.arg(++m_places))};
}

SecondConnection SqliteEngine::connectTo(const RecordPlace &place)
{
    QSqlDatabase file = QSqlDatabase::addDatabase(u"QSQLITE"_s, QUuid::createUuid().toString());
    file.setDatabaseName(place.file);
    return SecondConnection(file);
}

} // namespace oblino
