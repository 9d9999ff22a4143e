#pragma once

#include <QProcess>

#include <unistd.h>

namespace oblino {

/// Starts a program without the privileges of root, for whom no file is read-only.
inline void startUnprivileged(QProcess &process, QString program, QStringList arguments)
{
    if (::geteuid() == 0) {
        arguments = QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                                QStringLiteral("--clear-groups"), program} +
                    arguments;
        program = QStringLiteral("setpriv");
    }
    process.start(program, arguments);
}

} // namespace oblino
