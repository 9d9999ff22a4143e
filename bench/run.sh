#!/usr/bin/env bash
# Installs what is missing, builds the benchmarks and prints their tables. Options go to bench_tasks, as in
# bench/run.sh --benchmark_filter=sort
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
. scripts/setup.sh

install_missing "${build_packages[@]}" "${run_packages[@]}" "${test_packages[@]}"
build release -DOBLINO_BUILD_BENCH=ON
bench=build/release/bench

"$bench/bench_tasks" "$@"
"$bench/bench_window" 2>/dev/null
"$bench/bench_forms" 2>/dev/null
"$bench/bench_tools" 2>/dev/null
"$bench/bench_cloud"
"$bench/bench_sms"
xvfb-run --auto-servernum --server-args="-screen 0 1440x900x24 -nolisten tcp" \
    dbus-run-session -- "$bench/bench_startup" build/release/oblino "$bench/barewindow" 2>/dev/null
