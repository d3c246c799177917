# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# A Markdown page of the project as a page of the site, where all pages are in one folder: pictures
# come from `pictures/`, by their path from docs/; links to other pages become references by the page's
# name, those to anything else plain text. `home` is the page's folder as seen from docs/, such as
# "tutorials/".
function name_of(path) {
  sub(/#.*/, "", path)
  sub(/.*\//, "", path)
  return path
}
function anchor_of(page) {
  sub(/\.md$/, "", page)
  return page == "README" ? "index" : tolower(page)
}
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
  target = name_of(target)
  return index(" " pages " ", " " target " ") ? "[" text "](@ref " anchor_of(target) ")" : text
}
FNR == 1 {
  anchor = anchor_of(name_of(FILENAME))
  $0 = $0 " {#" (anchor == "index" ? "mainpage" : anchor) "}"
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
