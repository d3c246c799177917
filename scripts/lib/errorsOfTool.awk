# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# Turns the tables of docs/errors.md into the ERRORS section of a man page.
function roff(text) {
  gsub(/\\/, "\\e", text)
  gsub(/`/, "", text)
  gsub(/-/, "\\-", text)
  sub(/^\./, "\\\\\\&.", text)
  return text
}
/^## Signals/ { exit }
/^## / { printf ".SS %s\n", roff(substr($0, 4)) }
/^\| / && !/^\| situation/ {
  split($0, cell, / *\| */)
  situation = roff(cell[2]) # a method's name at its start stays as it is
  if (cell[2] !~ /^`/)
    situation = toupper(substr(situation, 1, 1)) substr(situation, 2)
  printf ".TP\n.B %s\n%s (standard %s, status %s).\nWhat to do: %s.\n", roff(cell[3]), \
    situation, cell[4], cell[5], roff(cell[6])
}
