#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a command with an X server of its own, drawn by Mesa's software renderer, whatever display the caller has.
#
#     scripts/with-xvfb.sh COMMAND [ARGUMENT...]
#
# The server picks a free display, so any number of commands can run side by side, and ends with the command, whose
# status is that of the script.
set -euo pipefail

work=$(mktemp -d)
server=
finish() {
  if [[ -n $server ]]; then
    kill "$server" 2>/dev/null || true
    wait "$server" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 143' TERM INT HUP

mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/log" &
server=$!
# The server writes the number once it takes connections; an end of it that comes first ends the read as well.
if ! IFS= read -r -t 60 number <"$work/display"; then
  echo "with-xvfb: no X server:" >&2
  cat "$work/log" >&2
  exit 1
fi

export DISPLAY=:$number QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=llvmpipe
unset XAUTHORITY WAYLAND_DISPLAY
"$@" &
command=$!
trap 'kill "$command" 2>/dev/null || true; exit 143' TERM INT HUP
status=0
wait "$command" || status=$?
exit "$status"
