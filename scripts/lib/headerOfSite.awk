# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# A public header as Doxygen reads it, line by line: the head of the file becomes its description, and
# what is indented in a comment, the lists of arguments and the examples, is shown as it stands. For
# that, the comments become those of C, which have nothing before each line.
function put(line) {
  if (NR > 1)
    print held
  held = line
}
NR == 3 && /^$/ {
  head = 1
  inside = 1
  put("/** @file")
  next
}
head && !/^\/\// { head = 0 }
head { sub(/^\/\//, "///") }
{
  comment = /^ *\/\/\/( |$)/
  indented = /^ *\/\/\/   /
  if (!indented)
    item = /^ *\/\/\/ - / # the rest of a list's item is text
  indented = indented && !item
  if (shown && !indented)
    held = held " @endverbatim"
  if (inside && !comment)
    held = held " */"
  line = $0
  if (comment) {
    sub(/^ *\/\/\/ ?/, "", line)
    gsub(/\*\//, "* /", line)
    line = (inside ? "" : "/** ") (indented && !shown ? "@verbatim " : "") \
      (indented ? substr(line, 3) : line)
  }
  shown = indented
  inside = comment
  put(line)
}
END { print held }
