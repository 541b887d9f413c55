#!/usr/bin/env bash
# Measures the engine beside other embeddable languages, or the component under Wine, and writes what it found into
# docs/performance.md; sets up the machine first. Nothing else should run meanwhile.
#
#   ./bench.sh [--wine]
set -euo pipefail
exec </dev/null
cd "$(dirname "${BASH_SOURCE[0]}")"

measureNative() {
    local build=build/native-release
    tools/setup.sh native bench
    cmake --preset native-release >/dev/null
    cmake --build --preset native-release --target bench >/dev/null
    "$build/bench_systems" "$build" --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \
        --benchmark_min_time=0.1 --benchmark_out="$build/bench.json" --benchmark_out_format=json >/dev/null
    for lines in 1000 100000 1000000; do
        echo "corvane $lines $("$build/bench_memory" "$lines")"
        echo "Lua 5.4 $lines $("$build/bench_memory" "$lines" "$build/libbench_lua.so")"
    done >"$build/memory.txt"
    bench/native_table "$build/bench.json" "$build/memory.txt" | tee "$build/table.md"
    bench/put_table native <"$build/table.md"
}

measureComponent() {
    tools/setup.sh native windows
    cmake --preset windows-x64 >/dev/null
    cmake --build --preset windows-x64 --target list_view_rows >/dev/null
    tools/with-display tools/wine-x64 build/windows-x64/list_view_rows.exe 3
    bench/component/run | tee build/component_table.md
    bench/put_table component <build/component_table.md
}

case ${1:-} in
    '') measureNative ;;
    --wine) measureComponent ;;
    *)
        sed -n '2,/^set /{/^set /!s/^# \{0,1\}//p}' "$0" >&2
        exit 64
        ;;
esac
