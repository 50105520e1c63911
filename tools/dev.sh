#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# One entry point for set-up, build and run on Debian 12.
#   tools/dev.sh test   install what is missing, check the formatting, build, run
#                       every test (a normal build, then one under address and UB
#                       sanitizers), then build the libraries and programs for
#                       Release, install them into a temporary prefix and build
#                       and run the example against it (CMake and pkg-config)
#   tools/dev.sh run    install what is missing, build the gallery and start it
#                       (more arguments go to it); without a display it runs
#                       offscreen and writes a screenshot instead
#   tools/dev.sh run-host [SCRIPT]
#                       install what is missing, build the script host, run it
#                       (on its sample script unless given one; more arguments go to it)
#   tools/dev.sh build  install what is missing and build, nothing else
#   tools/dev.sh docs   install Doxygen too and write the API documentation of
#                       the public headers to build/docs/html
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
          qt6-base-dev qt6-tools-dev libqt6opengl6-dev qt6-svg-dev libgl-dev fonts-dejavu-core
          # The gallery's end-to-end tests: a real X server, a pointer and a
          # keyboard driven from a script, and a screen reader's view of it
          # through the accessibility bus.
          xvfb xdotool python3 dbus-daemon at-spi2-core python3-pyatspi)

# ---- Fuzzing ---------------------------------------------------------------
# The libFuzzer programs, built by clang with the address and undefined-
# behaviour sanitizers in build-fuzz; only the fuzz targets are built there.
packages+=(clang libclang-rt-dev)

build_fuzz() {
    [ -f build-fuzz/CMakeCache.txt ] ||
        CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
            -DKELVARIN_FUZZ=ON -DKELVARIN_BENCH=OFF -DKELVARIN_WERROR=ON
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

# configure DIR [cmake options...]: once; later runs keep the cache.
configure() {
    local dir=$1
    shift
    [ -f "$dir/CMakeCache.txt" ] || cmake -S . -B "$dir" -G Ninja "$@"
}

# build DIR [cmake options...]: configure once, then build incrementally.
build() {
    configure "$@"
    cmake --build "$1" --parallel "$(nproc)"
}

# The development build, with warnings as errors.
dev_options=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DKELVARIN_WERROR=ON)

# What a distribution builds (Release, -O3, no tests or benchmarks), installed
# into a temporary prefix as a packager stages it; then the example is built
# against that prefix only, with find_package and with pkg-config, and run.
check_release_install() {
    build build-release -DCMAKE_BUILD_TYPE=Release -DKELVARIN_WERROR=ON \
        -DKELVARIN_TESTS=OFF -DKELVARIN_BENCH=OFF
    local prefix
    prefix=$(mktemp -d)
    cmake --install build-release --prefix "$prefix" >/dev/null
    local pcdir
    pcdir=$(dirname "$(find "$prefix" -name kelvarin-widgets.pc)")
    "$prefix/bin/kelvarin-host" --version
    QT_QPA_PLATFORM=offscreen "$prefix/bin/kelvarin-gallery" --version
    local hello=build-release/hello
    rm -rf "$hello"
    cmake -S examples/hello -B "$hello" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build "$hello" >/dev/null
    QT_QPA_PLATFORM=offscreen "$hello/kelvarin-hello" --once
    # shellcheck disable=SC2046  # the flags are words
    c++ -std=c++17 -o "$hello/kelvarin-hello-pc" examples/hello/main.cpp \
        $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs kelvarin-widgets)
    LD_LIBRARY_PATH="$(dirname "$pcdir")" QT_QPA_PLATFORM=offscreen \
        "$hello/kelvarin-hello-pc" --once
    rm -rf "$prefix"
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
    build build "${dev_options[@]}"
    run_tests build
    build build-san -DCMAKE_BUILD_TYPE=Debug -DKELVARIN_SANITIZE=ON -DKELVARIN_BENCH=OFF \
        -DKELVARIN_WERROR=ON
    run_tests build-san
    check_release_install
    fuzz_briefly
    ;;
run)
    install_missing
    configure build "${dev_options[@]}"
    cmake --build build --parallel "$(nproc)" --target kelvarin-gallery
    shift
    if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
        shot=build/kelvarin-gallery.png
        echo "No display (DISPLAY and WAYLAND_DISPLAY are unset): running the gallery offscreen."
        # The offscreen screen is small: the window of a 1366 x 768 screen.
        QT_QPA_PLATFORM=offscreen build/apps/gallery/kelvarin-gallery --screenshot "$shot" \
            --size 1340x690 "$@"
        echo "Open $PWD/$shot to see the window."
        exit 0
    fi
    exec build/apps/gallery/kelvarin-gallery "$@"
    ;;
run-host)
    install_missing
    configure build "${dev_options[@]}"
    cmake --build build --parallel "$(nproc)" --target kelvarin-host
    shift
    if [ $# -eq 0 ]; then set -- apps/host/samples/welcome.khs; fi
    exec build/apps/host/kelvarin-host "$@"
    ;;
build)
    install_missing
    build build "${dev_options[@]}"
    ;;
docs)
    packages+=(doxygen)
    install_missing
    cmake -S . -B build -G Ninja "${dev_options[@]}" >/dev/null  # finds Doxygen
    cmake --build build --target docs
    echo "Open $PWD/build/docs/html/index.html to read the documentation."
    ;;
fuzz)
    [ $# -ge 2 ] || { echo "usage: tools/dev.sh fuzz TARGET [SECONDS]" >&2; exit 2; }
    install_missing
    build_fuzz
    fuzz_one "$2" "${3:-600}"
    ;;
*)
    echo "usage: tools/dev.sh test|run [GALLERY OPTIONS]|run-host [SCRIPT]|build|docs|fuzz TARGET [SECONDS]" >&2
    exit 2
    ;;
esac
