#!/usr/bin/env bash
# Fails when a source file is not formatted as .clang-format says.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
find src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format --dry-run --Werror
