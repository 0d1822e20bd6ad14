# Where the scripts keep what is made once for a machine. Sourced, not run.
# shellcheck shell=bash disable=SC2034
#
# KWDIALOGS_CACHE names another folder. Raise the number in windows_base whenever tools/setup.sh builds something
# different, so that an older tree is left alone and a new one is made beside it.
cache=${KWDIALOGS_CACHE:-${XDG_CACHE_HOME:-${HOME:?HOME is not set}/.cache}/kwdialogs}
mkdir -p "$cache"
cache=$(realpath "$cache")
windows_base=$cache/windows-root-3     # root/: a small Debian with Wine of both widths; root/prefix/LANG: a Windows folder tree each
machine_wine=$cache/machine-wine       # the version of the machine's own Wine, once it has run programs of both widths
machine_prefixes=$cache/machine-prefix # that Wine's Windows folder trees, LANG/ each
