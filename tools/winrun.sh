#!/bin/bash
# Runs a Windows program of 32 or of 64 bits on a Linux machine and passes on its exit code.
#
#   tools/winrun.sh [--desktop WIDTHxHEIGHT[@DPI]] LANG PROGRAM.exe ARGUMENTS...
#
# LANG is en (code page 1252) or ja (code page 932). --desktop opens all windows inside one Wine desktop window, where
# they have captions; without it, and without a window manager, they have none. DPI is 96 unless it is named. A program
# that does not end in .exe is a Linux command, run in the same surroundings (for instance: tools/winrun.sh en bash -c
# 'wine a.exe & ...').
#
# The program runs in the root made by tools/setup.sh, in namespaces of its own: it has its own screen, processes, /tmp
# and no network, sees the checkout, its own folder and the current folder at their usual paths, and whatever else it
# writes is gone afterwards. When it ends, or this script is killed, nothing of it stays. Runs may overlap.
#
#   KWDIALOGS_DISPLAY=host   show windows on the caller's display instead of an unseen screen
#   KWDIALOGS_EXTRA=DIR:DIR  more folders that the program may use
#   WINEDEBUG=...            Wine's messages (none without it)
set -euo pipefail
self=$(realpath "${BASH_SOURCE[0]}")
checkout=$(dirname "$(dirname "$self")")
screen=1280x1024x24

fail() {
  echo "winrun: $*" >&2
  exit 125
}

set_language() {  # LANG PREFIX
  case $1 in
    en) export LC_ALL=en_US.UTF-8 ;;
    ja) export LC_ALL=ja_JP.UTF-8 ;;
    *) fail "unknown language '$1' (en, ja)" ;;
  esac
  unset LANGUAGE
  export WINEPREFIX=$2 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
  # No offers to download a browser engine or .NET, no entries in the user's menus.
  export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe='
}

# Has the programs of a Windows folder tree open their windows in a desktop of that size. The program itself could be
# started through Wine's explorer for that, but then its exit code would be lost.
use_desktop() {  # PREFIX WIDTHxHEIGHT[@DPI]
  printf '\n[Software\\\\Wine\\\\Explorer]\n"Desktop"="kwdialogs"\n\n[Software\\\\Wine\\\\Explorer\\\\Desktops]\n"kwdialogs"="%s"\n' \
    "${2%@*}" >>"$1/user.reg"
  case $2 in
    *@*) printf '\n[Control Panel\\\\Desktop]\n"LogPixels"=dword:%08x\n' "${2#*@}" >>"$1/user.reg" ;;
  esac
}

run_program() {
  case $1 in
    *.exe | *.EXE) wine "$@" ;;
    *) "$@" ;;
  esac
}

# Stage 2: process 1 of the namespaces, with the root as /. Everything else ends with it.
inside() {  # LANG DESKTOP DIRECTORY PROGRAM ARGUMENTS...
  set_language "$1" "/prefix/$1"
  local desktop=$2 ready number
  cd "$3"
  shift 3
  [ -z "$desktop" ] || use_desktop "$WINEPREFIX" "$desktop"
  if [ "${KWDIALOGS_DISPLAY:-}" != host ]; then
    unset XAUTHORITY
    ready=$(mktemp -u /tmp/screen.XXXXXX)
    mkfifo "$ready"
    Xvfb -displayfd 3 -screen 0 $screen -nolisten tcp 3<>"$ready" >/dev/null 2>&1 &
    read -r -t 60 number <>"$ready" || fail "the unseen screen did not start"
    export DISPLAY=:$number
  fi
  local code=0
  run_program "$@" || code=$?
  exit $code
}

# Stage 1: in the namespaces, with the machine's own files still in sight.
enter() {  # BASE WRITABLE LANG DESKTOP FOLDERS DIRECTORY PROGRAM ARGUMENTS...
  local base=$1 writable=$2 language=$3 desktop=$4 folders=$5 path
  shift 5
  cd "$base"  # relative paths below: a folder's name may hold what mount's options cannot
  mkdir -p mount
  mount -t tmpfs -o mode=755 winrun mount
  mkdir mount/changes mount/work mount/root
  if [ "$writable" = yes ]; then
    mount --rbind root mount/root
  elif ! mount -t overlay -o lowerdir=root,upperdir=mount/changes,workdir=mount/work winrun mount/root 2>/dev/null; then
    # No overlays here: the root itself, and a copy of the Windows folder tree for this run.
    mount --rbind root mount/root
    cp -a "root/prefix/$language" mount/prefix
    mount --bind mount/prefix "mount/root/prefix/$language"
  fi
  cd mount/root
  mount -t proc proc proc
  mount --rbind /dev dev
  mount -t tmpfs -o mode=1777 winrun dev/shm
  mount -t tmpfs -o mode=1777 winrun tmp
  while read -r path; do
    if [ -d "$path" ]; then
      mkdir -p ".$path"
      mount --rbind "$path" ".$path"
    else
      mkdir -p ".$(dirname "$path")"
      touch ".$path"
      mount --bind "$path" ".$path"
    fi
  done <<<"$folders"
  unset TMPDIR TMP TEMP LD_PRELOAD LD_LIBRARY_PATH XDG_RUNTIME_DIR DBUS_SESSION_BUS_ADDRESS
  export HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
  exec chroot . /bin/bash "$self" --inside "$language" "$desktop" "$@"
}

# The machine's own Wine: one run at a time in a language, because a Windows folder tree knows only one screen.
run_on_machine() {  # LANG DESKTOP PROGRAM ARGUMENTS...
  local language=$1 desktop=$2 prefix=$machine_prefixes/$1 code=0
  shift 2
  [ -d "$prefix" ] || fail "there is no Windows folder tree for '$language' yet: run tools/setup.sh"
  exec 9>"$prefix.lock"
  flock 9
  if [ -n "$desktop" ]; then
    [ -d "$prefix-$desktop" ] || {
      rm -rf "$prefix-$desktop.new"
      cp -a "$prefix" "$prefix-$desktop.new"
      use_desktop "$prefix-$desktop.new" "$desktop"
      mv "$prefix-$desktop.new" "$prefix-$desktop"
    }
    prefix=$prefix-$desktop
  fi
  set_language "$language" "$prefix"
  trap 'wineserver -k 2>/dev/null || true' EXIT
  trap 'exit 130' INT HUP TERM
  case $1 in
    *.exe | *.EXE) set -- wine "$@" ;;
  esac
  # shellcheck disable=SC2016  # the inner shell expands it
  # Wine's own processes end before their screen does, or they complain about that.
  set -- bash -c '"$@"; code=$?; wineserver -k 2>/dev/null; exit $code' winrun "$@"
  [ "${KWDIALOGS_DISPLAY:-}" = host ] || set -- xvfb-run -a -s "-screen 0 $screen -nolisten tcp" "$@"
  "$@" 9>&- || code=$?
  exit $code
}

# Folders that cannot be shown at their own place inside the root, because the root has its own.
is_system_folder() {
  case $1 in
    / | /tmp | /bin | /boot | /dev | /dev/* | /etc | /home | /lib | /lib64 | /prefix | /proc | /proc/* | /root | /run | /sbin | /sys | /sys/* | /usr | /usr/bin | /usr/lib | /var) return 0 ;;
  esac
  return 1
}

case ${1:-} in
  --inside) shift; inside "$@" ;;
  --enter) shift; enter "$@" ;;
esac

# shellcheck source=tools/places.sh
. "$checkout/tools/places.sh"
writable=no
desktop=
while :; do
  case ${1:-} in
    --desktop) desktop=${2:?}; shift 2 ;;
    --making) windows_base=${2:?}; writable=yes; shift 2 ;;  # tools/setup.sh: what is written stays in that root
    *) break ;;
  esac
done
[ $# -ge 2 ] || fail "usage: winrun.sh [--desktop WIDTHxHEIGHT[@DPI]] LANG PROGRAM ARGUMENTS..."
language=$1
shift
case $language in en | ja) ;; *) fail "unknown language '$language' (en, ja)" ;; esac
[[ $desktop =~ ^([0-9]+x[0-9]+(@[0-9]+)?)?$ ]] || fail "--desktop takes WIDTHxHEIGHT[@DPI], not '$desktop'"

# A program that is named without a path is looked for by Wine or in the root.
program=
case $1 in
  */*)
    program=$(realpath -e -- "$1") || fail "there is no $1"
    set -- "$program" "${@:2}"
    ;;
esac

if [ "$writable" = no ] && [ -e "$machine_wine" ]; then
  run_on_machine "$language" "$desktop" "$@"
fi
[ -d "$windows_base/root" ] || fail "there is no Windows root in $windows_base yet: run tools/setup.sh"

directory=$(pwd -P)
folders=$checkout
add_folder() {
  local known
  while read -r known; do
    [[ $1/ != "$known"/* ]] || return 0
  done <<<"$folders"
  folders+=$'\n'$1
}
if is_system_folder "$directory"; then
  [ -n "$program" ] || fail "cannot run in $directory: go to another folder"
  directory=$(dirname "$program")
  is_system_folder "$directory" && directory=$checkout
else
  add_folder "$directory"
fi
if [ -n "$program" ]; then
  if is_system_folder "$(dirname "$program")"; then add_folder "$program"; else add_folder "$(dirname "$program")"; fi
fi
while read -r -d : path; do
  [ -n "$path" ] || continue
  path=$(realpath -e -- "$path") || fail "KWDIALOGS_EXTRA: there is no such folder"
  add_folder "$path"
done <<<"${KWDIALOGS_EXTRA:-}:"

namespaces=(--mount --pid --fork --kill-child)
[ "$(id -u)" = 0 ] || namespaces+=(--user --map-root-user)
if [ "${KWDIALOGS_DISPLAY:-}" = host ]; then
  [ -n "${DISPLAY:-}" ] || fail "KWDIALOGS_DISPLAY=host, but DISPLAY is not set"
  [ -d /tmp/.X11-unix ] && add_folder /tmp/.X11-unix
  export XAUTHORITY=${XAUTHORITY:-$HOME/.Xauthority}
  if [ -e "$XAUTHORITY" ]; then add_folder "$(realpath "$XAUTHORITY")"; fi
else
  namespaces+=(--net --ipc)
fi

# The namespaces end with `unshare`, and that ends with this script, even when it is killed.
setpriv --pdeathsig KILL unshare "${namespaces[@]}" \
  bash "$self" --enter "$windows_base" "$writable" "$language" "$desktop" "$folders" "$directory" "$@" <&0 &
child=$!
trap 'kill -KILL $child 2>/dev/null; exit 130' INT HUP TERM
wait $child
