#pragma once

#include <base/appearance.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <support/temporaryhome.h>

namespace oblino {

/// A task store of a test's own, with its settings in a temporary home.
struct Store
{
    TemporaryHome home;
    Defaults defaults{home.path(QStringLiteral("settings.ini"))};
    Appearance appearance;
    TaskManager store{defaults, appearance};
};

} // namespace oblino
