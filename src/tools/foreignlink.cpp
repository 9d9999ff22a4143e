#include <tools/foreignlink.h>

#include <files/openfile.h>

#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace oblino {

namespace {

bool mayOthersWrite(const QByteArray &folder)
{
    struct stat status = {};
    if (::stat(folder.constData(), &status) != 0)
        return true;
    const bool isOfOther = status.st_uid != ::geteuid() && status.st_uid != 0;
    return isOfOther || (status.st_mode & (S_IWGRP | S_IWOTH)) != 0;
}

} // namespace

bool leadsOverForeignLink(const QString &path)
{
    constexpr int mostLinks = 40;
    QByteArray file = QFile::encodeName(QFileInfo(path).absoluteFilePath());
    for (int links = 0; links < mostLinks; ++links) {
        struct stat status = {};
        if (::lstat(file.constData(), &status) != 0 || !S_ISLNK(status.st_mode))
            return false;
        const QByteArray folder = parentFolder(file);
        if (status.st_uid != ::geteuid() && mayOthersWrite(folder))
            return true;
        std::error_code error;
        const auto next = std::filesystem::read_symlink(file.toStdString(), error);
        if (error)
            return true;
        file = QByteArray::fromStdString((std::filesystem::path(folder.toStdString()) / next).string());
    }
    return true;
}

} // namespace oblino
