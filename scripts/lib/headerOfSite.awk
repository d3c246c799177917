# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# A public header as Doxygen reads it, line by line: the head of the file becomes its description, and
# what is indented in a comment, the lists of arguments and the examples, is shown as it stands.
function put(line) {
  if (NR > 1)
    print held
  held = line
}
NR == 3 && /^$/ {
  head = 1
  put("/// @file")
  next
}
head && !/^\/\// { head = 0 }
head { sub(/^\/\//, "///") }
{
  indented = /^ *\/\/\/   /
  if (!indented)
    item = /^ *\/\/\/ - /
  indented = indented && !item # the rest of a list's item is text
  if (shown && !indented)
    held = held " @endverbatim"
  if (indented && !shown)
    sub(/\/\/\/ /, "/// @verbatim ")
  shown = indented
  put($0)
}
END { print held }
