#pragma once

#include <base/trace.h>
#include <support/temporaryhome.h>

#include <QTemporaryFile>

#include <unistd.h>

namespace oblino {

/// What is traced while the function runs.
template<typename Function>
QByteArray tracesOf(const Function &function)
{
    QTemporaryFile output;
    if (!output.open())
        return "no temporary file";
    Trace::setDescriptor(output.handle());
    function();
    Trace::setDescriptor(STDOUT_FILENO);
    return TemporaryHome::content(output.fileName());
}

} // namespace oblino
