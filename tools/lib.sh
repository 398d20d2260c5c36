# shellcheck shell=bash
# What the tools have in common. Sourced by them, never run.
#
# Functions report trouble on stderr. Exit status 2 is wrong usage, 1 is everything else.

tools=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
project=$(dirname -- "$tools")
logs="$project/build/logs"
jobs=$(nproc)
caller=tools/${0##*/}

# The system whose packages the tools know, and its name in package archives.
export debianRelease=12
export debianSuite=bookworm

# Says what went wrong, then stops.
die() {
  printf '%s: %s\n' "$caller" "$1" >&2
  (($# < 2)) || printf '%s\n' "${@:2}" >&2
  exit 1
}

# wrongUsage WHAT HOW: what is wrong with the command line and how to mend it, then stops.
wrongUsage() {
  printf '%s: %s\n%s\nSee: %s --help\n' "$caller" "$1" "$2" "$caller" >&2
  exit 2
}

# The tool's usage text: the comment at the head of its file, after the "#!" line.
usage() {
  sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$0"
}

# step LOG LABEL COMMAND...: runs a command as one line of progress: what, how it went, how long.
# All of its output goes to build/logs/LOG.log; a failure shows where that is and how it ends.
# Gives back the command's exit status. A function runs in a shell of its own that doesn't stop at
# the first failing command, so it has to say && itself.
step() {
  local -r log="$logs/$1.log" label=$2 start=$SECONDS
  local status=0
  shift 2
  mkdir -p -- "$logs"
  printf '%-48s ' "$label"
  ("$@") >"$log" 2>&1 </dev/null || status=$?
  if ((status == 0)); then
    printf 'ok      %4d s\n' $((SECONDS - start))
  else
    printf 'FAILED  %4d s\n' $((SECONDS - start))
    showFailure "$log"
  fi
  return "$status"
}

# The end of a log, without what only says that all went well.
showFailure() {
  printf '  The last lines of %s:\n' "$1"
  { grep -vE '^ *(Start +[0-9]+:|[0-9]+/[0-9]+ Test +#.* Passed )|^\[[0-9]+/[0-9]+\] |^(passed|skipped) ' "$1" ||
    true; } | tail -n "${ZEL_LOG_LINES:-60}" | sed 's/^/  | /'
}

# sourcesIn FOLDER...: the source files of those of these folders that exist, one per line.
sourcesIn() {
  local folder
  for folder; do
    [[ ! -d $folder ]] || find "$folder" -type f \
      \( -name '*.cc' -o -name '*.c' -o -name '*.h' -o -name '*.def' -o -name '*.m' \)
  done | sort
}

# packagesOf SECTION...: the packages of these sections of packages.txt, one per line.
packagesOf() {
  local section
  for section; do
    awk -v wanted="[$section]" '
      /^\[/ { within = ($0 == wanted); next }
      within && NF && !/^#/ { print $1 }' "$tools/packages.txt"
  done | sort -u
}

# missingPackages SECTION...: those of them that aren't installed, one per line.
missingPackages() {
  local -a wanted
  mapfile -t wanted < <(packagesOf "$@")
  comm -23 <(printf '%s\n' "${wanted[@]}" | sort -u) <(
    dpkg-query --show --showformat '${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null |
      awk '$2 == "installed" { print $1 }' | sort -u
  )
}

# Where the sysroot of today's package list stands, made or not: the files of Debian packages for
# i386, to build against and to run with. It is whole whenever it exists.
i386Sysroot() {
  local hash
  hash=$({
    printf '%s\n' "$debianSuite"
    packagesOf sysroot
    packagesOf sysroot-without
  } | sha256sum)
  printf '%s/i386-sysroot-%s\n' "$(cacheFolder)" "${hash:0:12}"
}

cacheFolder() {
  printf '%s/NSUserDefaultsZEL\n' "${XDG_CACHE_HOME:-$HOME/.cache}"
}

# cached PRESET ENTRY: what the cache of build/PRESET says; nothing when it isn't there.
cached() {
  sed -n "s/^$2:[A-Z]*=//p" "$project/build/$1/CMakeCache.txt" 2>/dev/null || true
}

# configurePreset PRESET [OPTION...]: configures build/PRESET, from scratch when that folder was made
# for a copy of the project that stood elsewhere or with a sysroot of other packages. The options are
# CMake's.
configurePreset() {
  local -a fresh=()
  local home sysroot
  home=$(cached "$1" CMAKE_HOME_DIRECTORY)
  sysroot=$(cached "$1" ZEL_I386_SYSROOT)
  [[ ${home:-$project} == "$project" && ${sysroot:-$(i386Sysroot)} == "$(i386Sysroot)" ]] ||
    fresh=(--fresh)
  (cd -- "$project" && cmake --preset "$@" "${fresh[@]}")
}

# What a user gets, as targets.
export productTargets='NSUserDefaultsZEL NSExceptionZEL zelnative'

# buildPreset PRESET TARGETS [OPTION...]: configures and builds. TARGETS is one word list, the options
# are CMake's.
buildPreset() {
  local -a targets
  read -ra targets <<<"$2"
  configurePreset "$1" "${@:3}" &&
    (cd -- "$project" &&
      cmake --build --preset "$1" --parallel "$jobs" --target "${targets[@]}")
}
