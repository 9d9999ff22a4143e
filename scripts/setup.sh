# Sourced by the commands at the top of the repository and the scripts that take pictures: says what a Debian 12
# machine needs and installs what is missing. The including script has set `set -euo pipefail`; to build, it stands
# in the repository's top folder.

build_packages=(
    g++ cmake ninja-build
    qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev qt6-svg-dev libcurl4-openssl-dev libssl-dev libpq-dev libicu-dev
    qtkeychain-qt6-dev
)
# What the built program loads at run time.
run_packages=(
    libqt6svg6 libqt6sql6-sqlite libqt6sql6-psql libqt6multimedia6 libsecret-1-0 xdg-utils ca-certificates fonts-dejavu-core
)
# For a machine without a display.
display_packages=(xvfb xauth xdotool imagemagick)
# For pictures of every window, beside those.
picture_packages=(dbus python3)
test_packages=(
    libbenchmark-dev libxcb1-dev dbus gnome-keyring xvfb xauth xdotool strace util-linux openssl postgresql clang-format clang-tidy python3
    tzdata
)

fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

install_missing() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    command -v apt-get >/dev/null || fail "these Debian packages are missing and apt-get is not here: ${missing[*]}"
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "installing ${missing[*]} needs root: run this as root, or install sudo"
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq || fail "apt-get update failed; see above"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
        >/dev/null || fail "apt-get could not install: ${missing[*]}"
}

# build <preset> [cmake options]
build() {
    local preset=$1 log
    shift
    log=$(mktemp)
    cmake --preset "$preset" "$@" >"$log" 2>&1 || { tail -n 20 "$log" >&2; fail "cmake could not configure the $preset build; see above"; }
    cmake --build --preset "$preset" || fail "the $preset build failed; see the first error above"
    rm -f "$log"
}
