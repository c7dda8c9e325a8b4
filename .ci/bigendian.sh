#!/usr/bin/env bash
# Byte-order proof on a real big-endian target: cross-builds the library and
# the byte-order probe for s390x, runs it under qemu-user, and checks that
#  - files written on s390x read back on x86-64 (probe and test suite),
#  - files written on x86-64 read back on s390x,
#  - the committed fixtures of both machines still read on both.
# Needs: g++-s390x-linux-gnu, qemu-user (installed when missing), cmake, ninja.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

if ! command -v s390x-linux-gnu-g++ >/dev/null || ! command -v qemu-s390x >/dev/null; then
  apt-get update
  apt-get install -y g++-s390x-linux-gnu qemu-user
fi

cross=${SXCORE_S390X_BUILD:-$root/build-ci-s390x}
jobs=$(nproc)
# The host side reuses the tree of the plain build when there is one.
if [ -z "${SXCORE_HOST_BUILD:-}" ] && [ -f "$root/build/CMakeCache.txt" ]; then
  host=$root/build
else
  host=${SXCORE_HOST_BUILD:-$root/build-ci-host}
  cmake -S . -B "$host" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSXCORE_BUILD_BENCH=OFF -DSXCORE_BUILD_TOOLS=OFF >/dev/null
fi

cmake -S . -B "$cross" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/s390x-linux-gnu.cmake" \
  -DSXCORE_BUILD_TESTS=OFF -DSXCORE_BUILD_BENCH=OFF -DSXCORE_BUILD_TOOLS=OFF \
  -DSXCORE_BUILD_SCENE_PROBE=ON >/dev/null
cmake --build "$cross" -j "$jobs" --target sxSceneProbe

cmake --build "$host" -j "$jobs" --target sxSceneProbe sxTest_persist

be() { qemu-s390x -L /usr/s390x-linux-gnu "$cross/tests/support/sxSceneProbe" "$@"; }
le() { "$host/tests/support/sxSceneProbe" "$@"; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/be" "$work/le"

echo "== s390x writes, x86-64 reads"
be write "$work/be"
le check "$work/be" expect-swapped
SXCORE_BIGENDIAN_DIR="$work/be" "$host/tests/sxTest_persist" --gtest_filter='ByteOrder*'

echo "== x86-64 writes, s390x reads"
le write "$work/le"
be check "$work/le" expect-swapped

echo "== committed fixtures on both machines"
be check tests/fixtures/x86_64 expect-swapped
be check tests/fixtures/s390x expect-native
le check tests/fixtures/s390x expect-swapped
le check tests/fixtures/x86_64 expect-native
echo "byte-order checks passed"
