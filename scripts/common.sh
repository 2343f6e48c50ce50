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

# folder_of_this_run COMMAND: a folder of its own in $work; it goes at the end of the script, the children before it.
folder_of_this_run() {
  work=$(mktemp -d "${TMPDIR:-/tmp}/tarvo-$1.XXXXXX")
  simulator=
  program=
  trap finish EXIT
  trap 'exit 129' HUP
  trap 'exit 130' INT
  trap 'exit 143' TERM
}

# end_of CHILD: ends a child, if there is one, and waits for it.
end_of() {
  [[ -n $1 ]] || return 0
  kill "$1" || true
  wait "$1" || true
} 2>/dev/null

# shellcheck disable=SC2317  # a trap calls it
finish() {
  end_of "$program"
  end_of "$simulator"
  rm -rf "$work"
}

# start_simulator ARGUMENTS...: a simulator whose ports are $work/com1 to com4; comes back when they are there.
start_simulator() {
  local tenths
  build/release/simulator/tarvo-sim "$@" --link "$work" </dev/null >"$work/simulator.log" 2>&1 &
  simulator=$!
  for ((tenths = 0; ; ++tenths)); do
    grep -qs ready "$work/simulator.log" && return
    if [[ $tenths -ge 100 ]] || ! kill -0 "$simulator" 2>/dev/null; then
      cat "$work/simulator.log" >&2
      echo "the simulator did not start" >&2
      return 1
    fi
    sleep 0.1
  done
}
