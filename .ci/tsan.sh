#!/usr/bin/env bash
# ThreadSanitizer run of the threaded test suites (threads, the events in
# nodes, concurrent loading in persist, reference counts and instance lists
# in object, concurrent walks in traversal, stack segments in kernel, scene
# access in viewing, module loading racing unloading in plugins). Builds the
# library and those suites only, in its own build folder.
set -euo pipefail
cd "$(dirname "$0")/.."

missing=()
command -v cmake >/dev/null || missing+=(cmake)
command -v ninja >/dev/null || missing+=(ninja-build)
command -v g++ >/dev/null || missing+=(g++)
command -v ccache >/dev/null || missing+=(ccache)
[ -e /usr/include/gtest/gtest.h ] || missing+=(libgtest-dev)
if [ ${#missing[@]} -gt 0 ]; then
  apt-get update
  apt-get install -y --no-install-recommends "${missing[@]}"
fi

build=build-tsan-ci
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSXCORE_SANITIZE=thread \
  -DSXCORE_BUILD_BENCH=OFF -DSXCORE_BUILD_TOOLS=OFF
ninja -C "$build" sxTest_threads sxTest_nodes sxTest_persist sxTest_object sxTest_traversal sxTest_kernel sxTest_viewing sxTest_plugins

# ThreadSanitizer needs a memory layout without the kernel's widest address
# randomisation; setarch -R gives it one where the kernel uses that.
run=()
if command -v setarch >/dev/null && setarch "$(uname -m)" -R true 2>/dev/null; then
  run=(setarch "$(uname -m)" -R)
fi
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ${TSAN_OPTIONS:-}"
cd "$build"
"${run[@]}" ctest -R '^(sxLock|sxSemaphore|sxTimer|sxThread|sxThreadQueue|sxThreadLinks|sxDeferredDeletion|sxShutdown|sxEvent|ConcurrentLoad|sxOwnership|sxInstanceLists|sxTraverser|sxDeepStack|sxScene|sxLoaderModulesConcurrency|Loader)\.' \
  --output-on-failure -j2 --timeout 300 --no-tests=error
