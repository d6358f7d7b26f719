# Installs what the build needs and is not there yet. Sourced by ./run, ./test and .ci/run.
packages="g++ cmake ninja-build git qtbase5-dev libqwt-qt5-dev libgrantlee5-dev libmsgsl-dev libgtest-dev
libgmock-dev libbenchmark-dev fonts-liberation fonts-dejavu-core qttools5-dev-tools qttranslations5-l10n"
[ -z "${WAVEFORM_EXTRA_PACKAGES:-}" ] || packages="$packages $WAVEFORM_EXTRA_PACKAGES"

# Those of the named packages that are not there.
missing_of() {
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || printf ' %s' "$package"
    done
}

install_packages() {
    sudo=""
    [ "$(id -u)" = 0 ] || sudo="sudo"
    echo "Installing: $*"
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq &&
        $sudo apt-get install -y -qq --no-install-recommends "$@" >/dev/null
}

# shellcheck disable=SC2086 # lists of words
missing=$(missing_of $packages)
# shellcheck disable=SC2086
[ -z "$missing" ] || install_packages $missing
# What only some tests want; without it they say that they are skipped.
# shellcheck disable=SC2086
missing=$(missing_of ${WAVEFORM_OPTIONAL_PACKAGES:-})
# shellcheck disable=SC2086
[ -z "$missing" ] || install_packages $missing || echo "Not installed:$missing"

# Configures on the first call, then builds the given targets (all when none is named).
build() {
    if [ ! -f build/build.ninja ]; then
        cmake --preset release >/dev/null
    fi
    if [ $# = 0 ]; then
        cmake --build --preset release
    else
        cmake --build --preset release --target "$@"
    fi
}
