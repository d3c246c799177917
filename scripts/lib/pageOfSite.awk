# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# A Markdown page of the project as a page of the site, where all pages are in one folder: pictures
# come from `pictures/`, by their path from docs/; links to other pages keep the name alone, those to
# anything else become plain text. `home` is the page's folder as seen from docs/, such as "tutorials/".
function target_of(part) {
  sub(/^.*\]\(/, "", part)
  sub(/\)$/, "", part)
  return part
}
function text_of(part) {
  sub(/\]\(.*$/, "", part)
  sub(/^!?\[/, "", part)
  return part
}
function rewritten(part, target, text) {
  target = target_of(part)
  text = text_of(part)
  if (part ~ /^!/) {
    sub(/^docs\//, "", target)
    return "<img src=\"pictures/" home target "\" alt=\"" text "\"/>"
  }
  if (target ~ /^https?:/)
    return part
  sub(/#.*/, "", target)
  sub(/.*\//, "", target)
  return index(" " pages " ", " " target " ") ? "[" text "](" target ")" : text
}
/^```/ { fenced = !fenced }
!fenced && !/^    / {
  line = ""
  while (match($0, /!?\[[^]]*\]\([^)]*\)/)) {
    line = line substr($0, 1, RSTART - 1) rewritten(substr($0, RSTART, RLENGTH))
    $0 = substr($0, RSTART + RLENGTH)
  }
  $0 = line $0
}
{ print }
