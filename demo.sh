#!/bin/bash
# Builds the library and its demo host, and shows the dialogs at work. Installs what is missing first (tools/setup.sh).
#
#   ./demo.sh [--lang en|ja]           the demo's window on the caller's display
#   ./demo.sh --shots [--lang en|ja]   no display needed: the demo drives itself and leaves pictures in build/demo/,
#                                      in both languages unless one is named, at 96 and at 144 dots per inch (also
#                                      done when there is no display, but at 96 only)
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
shots=no
language=
while [ $# -gt 0 ]; do
  case $1 in
    --shots) shots=yes ;;
    --lang)
      language=${2:-}
      shift
      ;;
    *) language=none ;;
  esac
  case $language in
    '' | en | ja) shift ;;
    *)
      echo "usage: ./demo.sh [--shots] [--lang en|ja]" >&2
      exit 2
      ;;
  esac
done

tools/setup.sh
tools/build.sh mingw
demo=build/mingw/bin/kwdemo.exe

if [ $shots = no ] && [ -n "${DISPLAY:-}" ]; then
  if [ -z "$language" ]; then
    case ${LC_ALL:-${LC_MESSAGES:-${LANG:-}}} in ja*) language=ja ;; *) language=en ;; esac
  fi
  echo "demo: opening its window on display $DISPLAY"
  KWDIALOGS_DISPLAY=host exec tools/winrun.sh "$language" $demo
fi

[ $shots = yes ] || echo "demo: no display here, so it drives itself on an unseen one and takes pictures"
mkdir -p build/demo
resolutions=96
[ $shots = no ] || resolutions='96 144'
for dpi in $resolutions; do
  for each in ${language:-en ja}; do
    echo "demo: language $each, $dpi dots per inch"
    suffix=$each
    [ "$dpi" = 96 ] || suffix=${each}_$dpi
    timeout -k 10 300 \
      tools/winrun.sh --desktop "1280x1024@$dpi" "$each" $demo --shots build/demo --lang-suffix "$suffix"
  done
done
echo "demo: the pictures are in build/demo/"
