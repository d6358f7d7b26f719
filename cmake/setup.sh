# Installs what the build needs and is not there yet. Sourced by ./run, ./test and .ci/run.
packages="g++ cmake ninja-build git qtbase5-dev libqwt-qt5-dev libgrantlee5-dev libmsgsl-dev libgtest-dev
libgmock-dev libbenchmark-dev fonts-liberation fonts-dejavu-core"
[ -z "${WAVEFORM_EXTRA_PACKAGES:-}" ] || packages="$packages $WAVEFORM_EXTRA_PACKAGES"

missing=""
for package in $packages; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done
if [ -n "$missing" ]; then
    sudo=""
    [ "$(id -u)" = 0 ] || sudo="sudo"
    echo "Installing:$missing"
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    # shellcheck disable=SC2086 # a list of words
    $sudo apt-get install -y -qq --no-install-recommends $missing >/dev/null
fi

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
