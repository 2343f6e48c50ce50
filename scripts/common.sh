# Read by the project's commands, which stand in the project's folder then.
# shellcheck shell=bash

jobs=$(nproc)
export CMAKE_BUILD_PARALLEL_LEVEL="${CMAKE_BUILD_PARALLEL_LEVEL:-$jobs}"
export CTEST_PARALLEL_LEVEL="${CTEST_PARALLEL_LEVEL:-$jobs}"
# Qt wants UTF-8, and a bare system has no locale set.
[[ -n ${LC_ALL:-}${LC_CTYPE:-}${LANG:-} ]] || export LC_ALL=C.UTF-8

# logged LOG COMMAND...: adds what the command says to LOG, and shows LOG when the command fails.
logged() {
  local log=$1 status=0
  shift
  "$@" </dev/null >>"$log" 2>&1 || status=$?
  [[ $status -eq 0 ]] || cat "$log" >&2
  return "$status"
}

# build PRESET: configures where that is due, and builds. TARVO_WERROR=ON in the environment makes warnings errors.
build() {
  local preset=$1 werror=${TARVO_WERROR:-OFF}
  local folder=build/$preset
  local log=$folder/build.log
  mkdir -p "$folder"
  : >"$log"
  if [[ ! $folder/build.ninja -nt CMakePresets.json ]] ||
    ! grep -qs "^TARVO_WERROR:[A-Z]*=$werror\$" "$folder/CMakeCache.txt"; then
    echo "Configuring $folder ..."
    logged "$log" cmake --preset "$preset" -DTARVO_WERROR="$werror"
  fi
  echo "Building $folder ..."
  logged "$log" cmake --build --preset "$preset"
}
