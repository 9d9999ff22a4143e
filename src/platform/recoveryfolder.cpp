#include <platform/recoveryfolder.h>

#include <platform/openfile.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <cerrno>
#include <utility>

#include <fcntl.h>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

namespace {

const QString timeFormat = u"yyyy-MM-dd HH.mm.ss"_s;

// A name may have 255 bytes, and a character may take three of them.
QString keptName(const QString &name)
{
    constexpr int longest = 60;
    return name.right(longest);
}

} // namespace

RecoveryFolder::RecoveryFolder(QString path, FileCalls &calls)
    : m_path(std::move(path))
    , m_calls(calls)
{
}

QString RecoveryFolder::asidePath(const QString &name) const
{
    return m_path + u"/set-aside "_s + keptName(name);
}

RecoveryFolder::Kept RecoveryFolder::create(OpenFile &file, const QString &name)
{
    constexpr int mostInOneSecond = 1000;
    const QString start = m_path + u'/' + QDateTime::currentDateTime().toString(timeFormat);
    Kept kept{EEXIST, {}};
    for (int number = 1; kept.error == EEXIST && number <= mostInOneSecond; ++number) {
        const QString counter = number > 1 ? u" (%1)"_s.arg(number) : QString();
        kept.path = start + counter + u' ' + keptName(name);
        kept.error = file.openPrivate(QFile::encodeName(kept.path), O_EXCL);
    }
    return kept;
}

RecoveryFolder::Kept RecoveryFolder::keep(const QByteArray &bytes, const QString &name)
{
    OpenFile file(m_calls);
    Kept kept = create(file, name);
    if (kept.error != 0)
        return kept;
    kept.error = file.writeAll(bytes);
    if (kept.error == 0)
        kept.error = file.sync();
    if (kept.error == 0)
        kept.error = syncFolder(m_calls, QFile::encodeName(m_path));
    if (kept.error != 0)
        m_calls.unlink(QFile::encodeName(kept.path));
    return kept;
}

RecoveryFolder::Kept RecoveryFolder::move(const QByteArray &file, const QString &name)
{
    // rename() replaces what is in its way, so the new name is taken first.
    OpenFile placeholder(m_calls);
    Kept kept = create(placeholder, name);
    if (kept.error != 0)
        return kept;
    const QByteArray to = QFile::encodeName(kept.path);
    kept.error = renameFile(m_calls, file, to);
    if (kept.error != 0) {
        m_calls.unlink(to);
        return kept;
    }
    kept.error = syncFolder(m_calls, QFile::encodeName(m_path));
    if (kept.error == 0)
        kept.error = syncFolder(m_calls, parentFolder(file));
    return kept;
}

int RecoveryFolder::append(const QByteArray &bytes, const QString &name)
{
    const QString time = QDateTime::currentDateTime().toString(u"yyyy-MM-dd HH:mm:ss"_s);
    QByteArray entry = u"== %1 %2 ==\n"_s.arg(time, name).toUtf8() + bytes;
    if (!entry.endsWith('\n'))
        entry += '\n';

    OpenFile file(m_calls);
    int error = file.openPrivate(QFile::encodeName(asidePath(name)), 0);
    if (error != 0)
        return error;
    const off_t end = file.status().st_size;
    error = file.writeAll(entry, end);
    if (error == 0)
        error = file.sync();
    if (error == 0)
        return syncFolder(m_calls, QFile::encodeName(m_path));
    // Half an entry would be taken for the whole; nothing is left to do where it cannot be removed.
    static_cast<void>(file.resize(end));
    return error;
}

int RecoveryFolder::erase(const QString &name)
{
    const QStringList files = filesOf(name);
    for (const QString &file : files) {
        if (m_calls.unlink(QFile::encodeName(m_path + u'/' + file)) != 0 && errno != ENOENT)
            return errno;
    }
    return files.isEmpty() ? 0 : syncFolder(m_calls, QFile::encodeName(m_path));
}

QStringList RecoveryFolder::filesOf(const QString &name) const
{
    static const QString start = u"\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d( \\(\\d+\\))?"_s;
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(
        u"(%1|set-aside) %2(\\.journal)?"_s.arg(start, QRegularExpression::escape(keptName(name)))));
    return QDir(m_path).entryList(QDir::Files | QDir::Hidden).filter(pattern);
}

} // namespace oblino
