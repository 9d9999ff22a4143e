#pragma once

#include <QProcess>

#include <unistd.h>

namespace oblino {

/// The user that is nobody, whose group has the same number.
constexpr uid_t nobody = 65534;

/// Starts a program without the privileges of root, for whom no file is read-only.
inline void startUnprivileged(QProcess &process, QString program, QStringList arguments)
{
    if (::geteuid() == 0) {
        const QString number = QString::number(nobody);
        arguments =
            QStringList{QStringLiteral("--reuid=") + number, QStringLiteral("--regid=") + number,
                        QStringLiteral("--clear-groups"), QStringLiteral("--pdeathsig=keep"), program} +
            arguments;
        program = QStringLiteral("setpriv");
    }
    process.start(program, arguments);
}

} // namespace oblino
