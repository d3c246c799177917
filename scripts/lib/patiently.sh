# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# Sourced by scripts that keep people waiting.
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# patiently WHAT COMMAND...: runs the command with its output in $log. Says every ten seconds how long
# it has been at work, and how far a build is. Where the command fails, shows its output and ends.
patiently() {
  local what=$1 teller failed=0
  shift
  : >"$log"
  for ((waited = 10; ; waited += 10)); do
    sleep 10 >/dev/null 2>&1 # may outlive the script; holds no pipe open
    kill -0 $$ 2>/dev/null || break
    echo "  $what: $waited s $(grep -o '^\[ *[0-9]*%\]' "$log" | tail -n 1)"
  done &
  teller=$!
  "$@" >"$log" 2>&1 || failed=1
  kill "$teller"
  wait "$teller" 2>/dev/null || true
  [ $failed = 0 ] || {
    cat "$log" >&2
    exit 1
  }
}
