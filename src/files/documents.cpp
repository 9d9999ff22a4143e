#include <files/documents.h>

#include <QDir>
#include <QStandardPaths>

#include <utility>

namespace oblino {

namespace {

std::optional<QString> documentsFolder()
{
    // Without a home QStandardPaths answers folders below the root, which are nobody's.
    if (qEnvironmentVariableIsEmpty("HOME"))
        return std::nullopt;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder))
        return std::nullopt;
    return folder;
}

} // namespace

Documents::Documents(std::optional<QString> folder, QString privateFolder, FileCalls &calls)
    : m_folder(std::move(folder))
    , m_privateFolder(std::move(privateFolder))
    , m_calls(calls)
{
}

Documents &Documents::standard()
{
    static Documents documents(documentsFolder(),
                               QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    return documents;
}

SafeFile *Documents::file(const QString &name)
{
    if (!m_folder)
        return nullptr;
    const auto [entry, isNew] = m_files.try_emplace(name, path(name), m_privateFolder, m_calls);
    if (isNew)
        m_notices += entry->second.recover();
    return &entry->second;
}

QString Documents::path(const QString &name) const
{
    return m_folder ? QDir(*m_folder).filePath(name) : name;
}

EarlierVersions Documents::versions(const QString &name) const
{
    return EarlierVersions(
        name, EarlierVersions::standardFolders(m_privateFolder, m_folder.value_or(QString())), m_calls);
}

QString Documents::erase(const QString &name)
{
    if (SafeFile *documentsFile = file(name))
        return documentsFile->erase();
    const QString left = versions(name).removeAll();
    return left.isEmpty() ? QStringLiteral("There is no documents folder.")
                          : QStringLiteral("There is no documents folder. %1").arg(left);
}

QStringList Documents::takeNotices()
{
    return std::exchange(m_notices, {});
}

} // namespace oblino
