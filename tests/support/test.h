#pragma once

#include <support/table.h>
#include <support/temporaryhome.h>
#include <support/testmain.h>
#include <support/timezone.h>
#include <support/traces.h>

#include <QtCore>
#include <QtTest>

#include <array>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <optional>

// What every test needs, names included. Only tests include it.
using namespace oblino;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
