# Sourced by the scripts beside it: strict mode, the root of the tree, set-up and build.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

build_packages=(
    build-essential g++ cmake ninja-build ccache mold
    qt6-base-dev libqt6opengl6-dev qt6-svg-dev zlib1g-dev libtiff-dev libjpeg-dev
    qt6-tools-dev qt6-qpa-plugins
    libgl1-mesa-dev libglu1-mesa-dev libgl1-mesa-dri libbenchmark-dev
)
display_packages=(xvfb xauth xdotool openbox x11-utils)
fuzz_packages=(clang libclang-rt-14-dev)
test_packages=(
    python3 imagemagick admesh assimp-utils
    appstream desktop-file-utils shared-mime-info libglib2.0-bin
)

say() { printf '%s\n' "$*" >&2; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        say "Missing packages can only be installed as root or with sudo: $*"
        exit 1
    fi
}

# ensure_packages NAME...: installs those that are missing; asks nothing, does nothing otherwise.
ensure_packages() {
    local installed missing
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        sed -n 's/^installed //p' | sort -u) || true
    missing=$(comm -23 <(printf '%s\n' "$@" | sort -u) <(printf '%s\n' "$installed"))
    [ -n "$missing" ] || return 0
    say "Installing" $missing
    as_root apt-get -q update </dev/null >&2
    # shellcheck disable=SC2086 # one argument a package
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get -q install -y --no-install-recommends $missing </dev/null >&2
}

# build PRESET [TARGET...]: configures when needed (afresh when the presets have changed since) and
# builds the targets (all without any).
build() {
    local preset=$1
    shift
    cd "$root"
    if [ ! -f "build/$preset/build.ninja" ] ||
        [ CMakePresets.json -nt "build/$preset/CMakeCache.txt" ]; then
        cmake --fresh --preset "$preset" >&2
    fi
    cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"} >&2
}

# with_display COMMAND...: runs it on the display that is there, else on a virtual one with a window
# manager.
with_display() {
    if [ -n "${DISPLAY:-}" ]; then
        "$@"
    else
        xvfb-run -a -s "-screen 0 1600x1000x24" "$root/scripts/managed" "$@"
    fi
}
