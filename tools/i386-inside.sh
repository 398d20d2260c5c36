# shellcheck shell=bash
# The second half of tools/i386, started by it as root of a mount namespace of its own.
# Arguments: ROOT FOLDER... -- COMMAND [ARGUMENT...]. The second folder is the one to start in.

set -euo pipefail
caller=tools/i386
tree=$1/tree
inside=$1/mount
shift
folders=()
while [[ $1 != -- ]]; do
  folders+=("$1")
  shift
done
shift
start=${folders[1]}

# Folders of the Debian root that are mounted as they are, and the machine's own.
readonly debianFolders=(etc usr)
readonly machineFolders=(dev proc)

# showReadOnly FOLDER PLACE. A remount must repeat what the file system is mounted with.
showReadOnly() {
  mount --bind "$1" "$2"
  local -r options=$(findmnt --noheadings --first-only --output VFS-OPTIONS --target "$2")
  mount -o "remount,bind,ro,${options#r[wo],}" "$2"
}

makeSkeleton() {
  local entry name
  mount -t tmpfs -o mode=755 tmpfs "$inside"
  for entry in "$tree"/*; do
    name=${entry##*/}
    if [[ -L $entry ]]; then
      cp --no-dereference -- "$entry" "$inside/$name"
    else
      mkdir -- "$inside/$name"
    fi
  done
  mkdir -p -- "$inside"/{dev,proc,root,run,tmp,var/tmp}
  chmod 700 -- "$inside/root"
  chmod 1777 -- "$inside"/{tmp,var/tmp}
  for name in "${debianFolders[@]}"; do showReadOnly "$tree/$name" "$inside/$name"; done
  for name in "${machineFolders[@]}"; do mount --rbind "/$name" "$inside/$name"; done
}

showFolder() {
  local name
  # It stands inside already, as the whole.
  [[ $1 != / ]] || return 0
  for name in "${debianFolders[@]}" "${machineFolders[@]}" bin lib sbin sys; do
    if [[ "$1/" == "/$name/"* ]]; then
      printf '%s: the folder %s is part of the system, which the 32-bit root has one of its own.\n' \
        "$caller" "$1" >&2
      printf 'Put the project elsewhere, or start this from another folder.\n' >&2
      exit 1
    fi
  done
  mkdir -p -- "$inside$1"
  mount --rbind "$1" "$inside$1"
}

makeSkeleton
# Outer folders first, or they would hide the ones inside them.
while IFS= read -r -d '' folder; do
  showFolder "$folder"
done < <(printf '%s\0' "${folders[@]}" | sort --zero-terminated --unique)

# setarch: the command sees a 32-bit machine, as it would on one.
# shellcheck disable=SC2016  # expanded by the inner shell
exec setarch linux32 chroot "$inside" /usr/bin/env --unset=TMPDIR --unset=LD_LIBRARY_PATH \
  HOME=/root LC_ALL=C.UTF-8 \
  PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
  /bin/sh -c 'cd -- "$1" && shift && exec "$@"' sh "$start" "$@"
