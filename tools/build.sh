#!/usr/bin/env bash
# Installs what is missing (Debian 12, as root), builds, and then runs the program or the tests.
#   tools/build.sh run    builds and starts brimsett
#   tools/build.sh test   builds and runs every test
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite
          libqt6sql6-psql qt6-serialport-dev libsqlite3-dev libssl-dev fonts-dejavu-core lrzsz)
# The tests run every database test on a throwaway PostgreSQL server too.
if [ "${1:-run}" = test ]; then packages+=(postgresql); fi
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq "${missing[@]}"
fi

build=${BRIMSETT_BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=${BRIMSETT_BUILD_TYPE:-RelWithDebInfo} >/dev/null
cmake --build "$build" -j"$(nproc)"

case "${1:-run}" in
    run) shift || true; exec "$build/src/brimsett" "$@" ;;
    test) cd "$build" && exec ctest --output-on-failure -j"$(nproc)" ;;
    *) echo "usage: tools/build.sh run|test" >&2; exit 2 ;;
esac
