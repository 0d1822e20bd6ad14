#!/bin/bash
# Builds the library and its demo host, and shows the dialogs at work. Installs what is missing first (tools/setup.sh).
#
#   ./demo.sh           the demo's window on the caller's display
#   ./demo.sh --shots   no display needed: the demo drives itself and leaves pictures in build/demo/, in both languages
#                       unless one is named, at 96 and at 144 dots per inch (also done when there is no display, but at
#                       96 only)
#
#   --lang en|ja   --bits 32|64
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
usage() {
  echo "usage: ./demo.sh [--shots] [--lang en|ja] [--bits 32|64]" >&2
  exit 2
}
shots=no
language=
preset=mingw
while [ $# -gt 0 ]; do
  case $1 in
    --shots) shots=yes ;;
    --lang)
      case ${2:-} in en | ja) language=$2 ;; *) usage ;; esac
      shift
      ;;
    --bits)
      case ${2:-} in 32) preset=mingw ;; 64) preset=mingw64 ;; *) usage ;; esac
      shift
      ;;
    *) usage ;;
  esac
  shift
done

tools/setup.sh
tools/build.sh $preset kwdemo
demo=build/$preset/bin/kwdemo.exe

if [ $shots = no ] && [ -n "${DISPLAY:-}" ]; then
  if [ -z "$language" ]; then
    case ${LC_ALL:-${LC_MESSAGES:-${LANG:-}}} in ja*) language=ja ;; *) language=en ;; esac
  fi
  echo "demo: opening its window on display $DISPLAY"
  KWDIALOGS_DISPLAY=host exec tools/winrun.sh "$language" $demo
fi

[ $shots = yes ] || echo "demo: no display here, so it drives itself on an unseen one and takes pictures"
resolutions=96
[ $shots = no ] || resolutions='96 144'
for dpi in $resolutions; do
  pictures=build/demo
  [ "$dpi" = 96 ] || pictures=build/demo/${dpi}dpi
  mkdir -p "$pictures"
  for each in ${language:-en ja}; do
    echo "demo: language $each, $dpi dots per inch"
    timeout -k 10 300 \
      tools/winrun.sh --desktop "1280x1024@$dpi" "$each" $demo --shots "$pictures" --lang-suffix "$each"
  done
done
echo "demo: the pictures are in build/demo/"
