#pragma once

#include <QProcess>

#include <unistd.h>

namespace oblino {

/// The user that is nobody, whose group has the same number.
constexpr uid_t nobody = 65534;

/// Starts a program without the privileges of root, for whom no file is read-only.
inline void startUnprivileged(QProcess &process, const QString &program, const QStringList &arguments)
{
    if (::geteuid() != 0)
        return process.start(program, arguments);
    const QString options =
        QStringLiteral("--reuid=%1 --regid=%1 --clear-groups --pdeathsig=keep").arg(nobody);
    process.start(QStringLiteral("setpriv"), options.split(u' ') + QStringList(program) + arguments);
}

} // namespace oblino
