#pragma once

#include <platform/cloud/recordstore.h>

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QTemporaryDir>
#include <QVariantList>

namespace oblino {

/// The template of a temporary folder, in memory where that can be had.
[[nodiscard]] QString folderInMemory(const QString &name);

/// A way past the containers to what they keep. Its functions throw std::runtime_error.
class SecondConnection
{
public:
    explicit SecondConnection(const QSqlDatabase &database);
    SecondConnection(const SecondConnection &) = delete;
    SecondConnection &operator=(const SecondConnection &) = delete;
    ~SecondConnection();

    /// Runs a statement. @return the rows
    QList<QVariantList> run(const QString &statement);

private:
    QSqlDatabase m_database;
};

/// A database engine under cloud containers.
class CloudEngine
{
public:
    CloudEngine() = default;
    CloudEngine(const CloudEngine &) = delete;
    CloudEngine &operator=(const CloudEngine &) = delete;
    virtual ~CloudEngine() = default;

    /// An empty place for records.
    [[nodiscard]] virtual RecordPlace newPlace() = 0;
    [[nodiscard]] virtual SecondConnection connectTo(const RecordPlace &place) = 0;
    /// Runs a statement on a connection of its own.
    QList<QVariantList> run(const RecordPlace &place, const QString &statement)
    {
        return connectTo(place).run(statement);
    }
};

/// Files in memory where that can be had, as syncing a busy disk takes long.
class SqliteEngine : public CloudEngine
{
public:
    [[nodiscard]] RecordPlace newPlace() override;
    [[nodiscard]] SecondConnection connectTo(const RecordPlace &place) override;

private:
    QTemporaryDir m_folder{folderInMemory(QStringLiteral("cloud"))};
    int m_places = 0;
};

} // namespace oblino
