#!/bin/bash
# Makes the machine ready: packages that are missing, and somewhere to run 32-bit Windows programs.
#
#   tools/setup.sh            what building and running needs
#   tools/setup.sh --checks   also what .ci/run needs (clang-format, clang-tidy, cppcheck, fpc, mcs)
#
# For Debian 12 and newer. As root it installs the packages; as an ordinary user it names them and the command to give.
# It asks nothing, says what it does, and a second run finds everything done and takes a moment.
#
#   KWDIALOGS_CACHE=DIR    where the Windows root is kept (default: kwdialogs in the user's cache folder)
#   KWDIALOGS_MIRROR=URL   the Debian mirror for the Windows root (default: the one that apt uses here)
# shellcheck disable=SC2016,SC2054
set -euo pipefail
tools=$(dirname "$(realpath "${BASH_SOURCE[0]}")")
# shellcheck source=tools/places.sh
. "$tools/places.sh"

say() { echo "setup: $*"; }
fail() {
  echo "setup: $*" >&2
  exit 1
}
is_root() { [ "$(id -u)" = 0 ]; }

# ---- Packages

missing=()
need() {  # PACKAGE WHAT-FOR TEST...: notes the package unless the test succeeds
  local package=$1 purpose=$2
  shift 2
  "$@" >/dev/null 2>&1 || { missing+=("$package"); say "missing: $package ($purpose)"; }
}

# The sanitizers stand in a package that is named after the compiler's version.
clang_version() {
  if command -v clang >/dev/null; then
    clang -dumpversion
  else
    apt-cache policy clang 2>/dev/null | sed -n 's/^ *Candidate: [0-9]*://p'
  fi | cut -d. -f1
}
has_sanitizers() {
  local library
  library=$(clang --rtlib=compiler-rt -print-libgcc-file-name) && test -e "${library/builtins/fuzzer}"
}

find_missing() {
  need g++-mingw-w64-i686-win32 "the compiler" command -v i686-w64-mingw32-g++
  need cmake "configures the build" command -v cmake
  need ninja-build "builds" command -v ninja
  need python3 "scripts" command -v python3
  need googletest "the tests' framework, as sources" test -e /usr/src/googletest/CMakeLists.txt
  need llvm "makes the import library for MSVC hosts, names what a sanitizer finds" command -v llvm-dlltool
  need clang "builds the portable part's tests for this machine" command -v clang++
  local version
  version=$(clang_version)
  [ -z "$version" ] || need "libclang-rt-$version-dev" "sanitizers and fuzzing" has_sanitizers
  if [ $with_checks = yes ]; then
    need clang-format "checks the layout of the sources" command -v clang-format
    need clang-tidy "static analysis" command -v clang-tidy
    need cppcheck "static analysis" command -v cppcheck
    need fp-compiler "compiles the Pascal binding" command -v fpc
    need mono-mcs "compiles the C# binding" command -v mcs
  fi
}

# What making the root needs; looked for only when one is to be made.
add_missing_for_root() {
  need mmdebstrap "makes the root that Windows programs run in" command -v mmdebstrap
  need arch-test "tells whether 32-bit programs run here" command -v arch-test
  is_root || need uidmap "lets an ordinary user make that root" command -v newuidmap
}

install_missing() {
  [ ${#missing[@]} -gt 0 ] || return 0
  local command="apt-get install --no-install-recommends ${missing[*]}"
  command -v apt-get >/dev/null || fail "this machine has no apt-get; install these by its own means: ${missing[*]}"
  is_root || fail "these packages are missing, and only root can install them. Give this command:
    sudo $command"
  export DEBIAN_FRONTEND=noninteractive
  local options=(-q -y -o Dpkg::Use-Pty=0 -o DPkg::Lock::Timeout=300) log
  log=$(mktemp)
  if [ -z "${lists_are_fresh:-}" ]; then
    say "reading the package lists (apt-get update)"
    # One broken source among many does not matter as long as the packages are found.
    apt-get "${options[@]}" update >"$log" 2>&1 || say "apt-get update had a complaint: $(grep -m1 '^[EW]:' "$log" || true)"
    lists_are_fresh=yes
  fi
  say "installing ${missing[*]}"
  apt-get "${options[@]}" install --no-install-recommends "${missing[@]}" 2>&1 | tee "$log" |
    grep --line-buffered -E '^(Need to get|Setting up)' | sed -u 's/^/    /' || true
  local package
  for package in "${missing[@]}"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q ' installed$' && continue
    tail -n 15 "$log" >&2
    fail "apt-get did not install $package (its last words stand above)"
  done
  rm -f "$log"
  missing=()
}

check_versions() {
  local version
  version=$(cmake --version | sed -n '1s/[^0-9]*//p')
  [ "$(printf '3.25\n%s\n' "$version" | sort -V | head -n1)" = 3.25 ] ||
    fail "CMake $version is too old: 3.25 or newer is needed (Debian 12 has it)"
}

# ---- The machine's own Wine

# Whether it runs a 32-bit program, with a screen, and knows Japanese. Tried, because packages do not tell.
machine_wine_works() {
  local trial=$1 language prefix
  command -v xvfb-run >/dev/null || return 1
  fc-list :lang=ja 2>/dev/null | grep -q . || return 1
  cat >"$trial/trial.c" <<'C'
#include <windows.h>
#include <stdlib.h>
int main(int argc, char** argv) {
    HWND window = CreateWindowA("BUTTON", "", WS_OVERLAPPEDWINDOW, 0, 0, 9, 9, NULL, NULL, NULL, NULL);
    return argc == 2 && window && GetACP() == (UINT)atoi(argv[1]) ? 0 : 1;
}
C
  i686-w64-mingw32-gcc -o "$trial/trial.exe" "$trial/trial.c" || return 1
  mkdir -p "$machine_prefixes"
  for language in en ja; do
    prefix=$machine_prefixes/$language
    if [ ! -d "$prefix" ]; then
      make_prefix_on_machine "$language" "$prefix" || return 1
    fi
  done
  echo trial >"$machine_wine"  # so that winrun.sh uses it
  timeout -k 10 60 "$tools/winrun.sh" en "$trial/trial.exe" 1252 && timeout -k 10 60 "$tools/winrun.sh" ja "$trial/trial.exe" 932
}

make_prefix_on_machine() {  # LANG PREFIX
  local locale=en_US.UTF-8
  [ "$1" = en ] || locale=ja_JP.UTF-8
  rm -rf "$2.new"
  # shellcheck disable=SC2016
  LC_ALL=$locale WINEPREFIX=$2.new WINEARCH=win32 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=' \
    timeout -k 10 180 xvfb-run -a bash -c 'wineboot -u && wineserver -w' || return 1
  settle_prefix "$2.new"
  mv "$2.new" "$2"
}

# A crash prints its backtrace and ends the program; without this it would wait in a message box. Windows' Japanese
# fonts (the last two lines are their Japanese names) are replaced by those that Debian has.
settle_prefix() {  # PREFIX
  cat >>"$1/user.reg" <<'REG'

[Software\\Wine\\WineDbg]
"ShowCrashDialog"=dword:00000000

[Software\\Wine\\Fonts\\Replacements]
"MS Gothic"="IPAGothic"
"MS PGothic"="IPAPGothic"
"MS UI Gothic"="IPAPGothic"
"\xff2d\xff33 \x30b4\x30b7\x30c3\x30af"="IPAGothic"
"\xff2d\xff33 \xff30\x30b4\x30b7\x30c3\x30af"="IPAPGothic"
REG
}

try_machine_wine() {
  local version trial
  version=$(timeout 20 wine --version 2>/dev/null) || return 1
  if [ -e "$machine_wine" ]; then
    [ "$(cat "$machine_wine")" != "$version" ] || return 0
    rm -rf "$machine_wine" "$machine_prefixes"
  fi
  [ "$(cat "$machine_wine.bad" 2>/dev/null)" != "$version" ] || return 1
  say "trying whether the machine's own $version runs 32-bit programs"
  trial=$(mktemp -d "$cache/trial.XXXXXX")
  if machine_wine_works "$trial" >"$trial/log" 2>&1; then
    say "it does: that Wine is used"
    echo "$version" >"$machine_wine"
    rm -rf "$trial"
    return 0
  fi
  say "it does not (or it lacks xvfb-run, a Japanese font or the locale ja_JP.UTF-8): a root with its own Wine is made"
  rm -rf "$machine_wine" "$machine_prefixes" "$trial"
  echo "$version" >"$machine_wine.bad"
  return 1
}

# ---- The Windows root

check_kernel() {
  local what=(unshare --mount --pid --fork)
  is_root || what+=(--user --map-root-user)
  "${what[@]}" true 2>/dev/null && return
  if is_root; then
    fail "this machine (a container?) does not let root make namespaces, which the Windows root needs.
    Give the container that right, or install a Wine that runs 32-bit programs (and xvfb, xauth, a Japanese font,
    the locales en_US.UTF-8 and ja_JP.UTF-8): then no root is needed."
  fi
  fail "this machine's kernel does not let an ordinary user make namespaces, which the Windows root needs.
    Let root allow it (sysctl kernel.unprivileged_userns_clone=1, user.max_user_namespaces above 0, and no AppArmor
    restriction of user namespaces), or run this script as root, or install a Wine that runs 32-bit programs
    (and xvfb, xauth, a Japanese font, the locales en_US.UTF-8 and ja_JP.UTF-8)."
}

find_mirror() {
  mirror=${KWDIALOGS_MIRROR:-}
  [ -n "$mirror" ] || mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' 2>/dev/null | head -n1)
  [ -n "$mirror" ] || fail "apt knows no Debian mirror here. Name one: KWDIALOGS_MIRROR=ADDRESS $0"
}

build_root() {  # DIRECTORY
  local new=$1 options=() setting log=$1/log
  # The small apt inside goes the same way to the mirror as the machine's own (proxies, certificates, retries).
  while read -r setting; do
    options+=(--aptopt="$setting")
  done < <(apt-config dump 2>/dev/null | grep -E '^Acquire::(https?|Retries|ForceIPv[46])[: ]' | grep -v '""' || true)
  options+=(--architectures=i386 --variant=apt --components=main --aptopt='APT::Install-Recommends "false"'
    --include=wine32,wine,xvfb,xauth,xdotool,imagemagick,locales,fonts-wine,fonts-liberation,fonts-ipafont-gothic
    --customize-hook='printf "en_US.UTF-8 UTF-8\nja_JP.UTF-8 UTF-8\n" >"$1/etc/locale.gen" && chroot "$1" locale-gen'
    --customize-hook='rm -rf "$1"/usr/share/doc "$1"/usr/share/man "$1"/var/lib/apt/lists/*'
    --customize-hook='mkdir "$1/prefix"')
  say "installing a small i386 Debian with Wine from $mirror (one to three minutes)"
  local code=0
  if is_root; then
    mmdebstrap --mode=root "${options[@]}" trixie "$new/root" "$mirror" >"$log" 2>&1 &
  else
    # Packed and unpacked, so that all files belong to the user, who can then remove them like any others.
    mmdebstrap --mode=unshare --format=tar "${options[@]}" trixie "$new/root.tar" "$mirror" >"$log" 2>&1 &
  fi
  worker=$!
  follow $worker "$log" || code=$?
  worker=
  if [ $code = 0 ] && ! is_root; then
    say "unpacking it"
    mkdir "$new/root"
    tar -C "$new/root" --exclude='./dev/*' -xf "$new/root.tar" >>"$log" 2>&1 || code=$?
    chmod -R u+rwX "$new/root"
    rm -f "$new/root.tar"
  fi
  if [ $code != 0 ]; then
    tail -n 20 "$log" >&2
    fail "the i386 Debian could not be installed (mmdebstrap's last words stand above)"
  fi

  local language
  for language in en ja; do
    say "making the Windows folder tree, language $language"
    "$tools/winrun.sh" --making "$new" $language \
      bash -c 'export LC_ALL='"$([ $language = en ] && echo en_US || echo ja_JP)"'.UTF-8; wineboot -u && wineserver -w' >"$log" 2>&1 || {
      tail -n 20 "$log" >&2
      fail "Wine could not make a Windows folder tree (its last words stand above)"
    }
    settle_prefix "$new/root/prefix/$language"
  done

  # Wine copies its libraries into each tree (600 MB); the trees' copies become links to the originals.
  local original=$new/root/usr/lib/i386-linux-gnu/wine/i386-windows file
  find "$new"/root/prefix/*/drive_c/windows -type f -size +8k | while read -r file; do
    [ ! -f "$original/${file##*/}" ] || ! cmp -s "$file" "$original/${file##*/}" || ln -f "$original/${file##*/}" "$file"
  done
  rm -f "$log"
}

# Shows that something goes on while a long command writes its log.
follow() {  # PROCESS LOG
  local seconds=0
  while kill -0 "$1" 2>/dev/null; do
    sleep 1
    seconds=$((seconds + 1))
    [ $((seconds % 10)) != 0 ] || say "    ${seconds} s: $(tr '\r' '\n' <"$2" | grep -v '^$' | tail -n1 | cut -c1-90)"
  done
  wait "$1"
}

check_space() {  # FOLDER MEGABYTES VARIABLE
  local free
  free=$(df --output=avail -m "$1" | tail -n1)
  [ "$free" -ge "$2" ] || fail "$1 has ${free// /} MB free, and $2 MB are needed ($3 names another folder)"
}

make_root() {
  exec 8>"$cache/lock"
  if ! flock -n 8; then
    say "another run is making the Windows root: waiting for it"
    flock 8
  fi
  [ ! -d "$windows_base" ] || return 0

  say "no Windows root yet: making one in $windows_base (once for this machine, about 2 GB)"
  check_kernel
  add_missing_for_root
  install_missing
  arch-test i386 >/dev/null 2>&1 || fail "this machine cannot run 32-bit x86 programs, which Wine here consists of"
  check_space "$cache" 3500 KWDIALOGS_CACHE
  is_root || check_space "${TMPDIR:-/tmp}" 2000 TMPDIR  # mmdebstrap works there for an ordinary user
  find_mirror
  rm -rf --one-file-system "$windows_base".new.*  # left by a run that was killed; nobody else builds now
  new=$(mktemp -d "$windows_base.new.XXXXXX")
  worker=
  trap 'if [ -n "$worker" ]; then kill "$worker"; wait "$worker"; fi; rm -rf --one-file-system "$new"' EXIT
  trap 'exit 130' INT HUP TERM
  build_root "$new"
  chmod 755 "$new"
  mv "$new" "$windows_base"
  trap - EXIT INT HUP TERM
  say "the Windows root is ready"
}

with_checks=no
case ${1:-} in
  --checks) with_checks=yes ;;
  '') ;;
  *) fail "unknown argument $1" ;;
esac
find_missing
# With these in the same list, an ordinary user has to ask for packages once only.
[ -d "$windows_base" ] || command -v wine >/dev/null || add_missing_for_root
install_missing
find_missing  # the sanitizers, when nothing told the compiler's version before
install_missing
check_versions
if command -v wine >/dev/null && try_machine_wine; then exit 0; fi
rm -f "$machine_wine"
[ -d "$windows_base" ] || make_root
