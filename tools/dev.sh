#!/usr/bin/env bash
# One entry point for set-up, build and run on Debian 12.
#   tools/dev.sh test   install what is missing, check the formatting, build, run
#                       every test (a normal build, then one under address and UB
#                       sanitizers)
#   tools/dev.sh run    install what is missing, build, start the main program,
#                       the gallery (more arguments go to it); without a display
#                       it runs offscreen and writes a screenshot instead
#   tools/dev.sh run-host [SCRIPT]
#                       install what is missing, build, run the script host
#                       (on its sample script unless given one; more arguments go to it)
#   tools/dev.sh build  install what is missing and build, nothing else
#   tools/dev.sh fuzz TARGET [SECONDS]
#                       install what is missing, build the fuzz targets with clang
#                       and run one (bmp, dispatch, form, ...: fuzz/TARGET_fuzz.cpp)
#                       for SECONDS (default 600); `test` runs each for 20 seconds
# Re-running only rebuilds what changed.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(g++ cmake ninja-build pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          nlohmann-json3-dev clang-format
          # Qt 6 Widgets, Designer's plugin and extension interfaces (Designer
          # needs the OpenGL module's CMake files), SVG pictures, and what the
          # offscreen platform needs to draw text in tests and screenshots.
          qt6-base-dev qt6-tools-dev libqt6opengl6-dev qt6-svg-dev libgl-dev fonts-dejavu-core)

# ---- Fuzzing ---------------------------------------------------------------
# The libFuzzer programs, built by clang with the address and undefined-
# behaviour sanitizers in build-fuzz; only the fuzz targets are built there.
packages+=(clang libclang-rt-dev)

build_fuzz() {
    [ -f build-fuzz/CMakeCache.txt ] ||
        CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DKELVARIN_FUZZ=ON -DKELVARIN_BENCH=OFF
    cmake --build build-fuzz --target fuzz_targets --parallel "$(nproc)"
}

# fuzz_one TARGET SECONDS: fuzzes one target from its checked-in corpus; new
# inputs and any finding go to build-fuzz/fuzz-work/TARGET. Fails on a finding
# (a crash, a sanitizer report, a broken rule, 10 s for one input, 2 GiB).
fuzz_one() {
    local name=$1 seconds=$2 work=build-fuzz/fuzz-work/$1
    [ -f "fuzz/${name}_fuzz.cpp" ] || { echo "no fuzz target $name (fuzz/${name}_fuzz.cpp)" >&2; return 2; }
    mkdir -p "$work"
    local dict=()
    [ -f "fuzz/dict/$name.dict" ] && dict=("-dict=fuzz/dict/$name.dict")
    if ! "build-fuzz/fuzz/${name}_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$work/" "${dict[@]}" "$work" "fuzz/corpus/$name" \
        >"$work.log" 2>&1; then
        tail -n 80 "$work.log"
        echo "fuzz: $name found a fault; the input is in $work/" >&2
        return 1
    fi
    echo "fuzz: $name ${seconds}s, $(grep -o 'exec/s: [0-9]*' "$work.log" | tail -n 1)," \
        "$(grep -o 'corp: [0-9]*/[0-9a-zA-Z]*' "$work.log" | tail -n 1)"
}

# Every target briefly: the corpus first, then 20 seconds of new inputs.
fuzz_briefly() {
    build_fuzz
    local target
    for target in fuzz/*_fuzz.cpp; do
        target=${target#fuzz/}
        fuzz_one "${target%_fuzz.cpp}" 20
    done
}

install_missing() {
    local missing=()
    for p in "${packages[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$p")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    local sudo=()
    [ "$(id -u)" -eq 0 ] || sudo=(sudo)
    "${sudo[@]}" apt-get update -q
    DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -q --no-install-recommends \
        "${missing[@]}"
}

# build DIR [cmake options...]: configure once, then build incrementally.
build() {
    local dir=$1
    shift
    [ -f "$dir/CMakeCache.txt" ] || cmake -S . -B "$dir" -G Ninja "$@"
    cmake --build "$dir" --parallel "$(nproc)"
}

# The tracked C++ sources must be as .clang-format writes them.
check_format() {
    git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format --dry-run -Werror
}

run_tests() {
    local dir=$1
    ctest --test-dir "$dir" --output-on-failure --parallel "$(nproc)"
}

case "${1:-test}" in
test)
    install_missing
    check_format
    build build -DCMAKE_BUILD_TYPE=RelWithDebInfo
    run_tests build
    build build-san -DCMAKE_BUILD_TYPE=Debug -DKELVARIN_SANITIZE=ON -DKELVARIN_BENCH=OFF
    run_tests build-san
    fuzz_briefly
    ;;
run)
    install_missing
    build build -DCMAKE_BUILD_TYPE=RelWithDebInfo
    shift
    if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
        shot=build/kelvarin-gallery.png
        echo "No display (DISPLAY and WAYLAND_DISPLAY are unset): running the gallery offscreen."
        QT_QPA_PLATFORM=offscreen build/apps/gallery/kelvarin-gallery --screenshot "$shot" "$@"
        echo "Open $PWD/$shot to see the window."
        exit 0
    fi
    exec build/apps/gallery/kelvarin-gallery "$@"
    ;;
run-host)
    install_missing
    build build -DCMAKE_BUILD_TYPE=RelWithDebInfo
    shift
    if [ $# -eq 0 ]; then set -- apps/host/samples/welcome.khs; fi
    exec build/apps/host/kelvarin-host "$@"
    ;;
build)
    install_missing
    build build -DCMAKE_BUILD_TYPE=RelWithDebInfo
    ;;
fuzz)
    [ $# -ge 2 ] || { echo "usage: tools/dev.sh fuzz TARGET [SECONDS]" >&2; exit 2; }
    install_missing
    build_fuzz
    fuzz_one "$2" "${3:-600}"
    ;;
*)
    echo "usage: tools/dev.sh test|run [GALLERY OPTIONS]|run-host [SCRIPT]|build|fuzz TARGET [SECONDS]" >&2
    exit 2
    ;;
esac
