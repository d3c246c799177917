# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# Prints the code of a page in the language `want`: shell, python, r or cpp. In Markdown, shell commands
# are the indented lines and what stands in a table's last column and begins with a program's name; the
# others are fenced. In a man page they are the blocks under EXAMPLES. Continued commands become one
# line.
function put(line) {
  if (sub(/\\$/, "", line)) {
    held = held line
    return
  }
  print held line
  held = ""
}
function unroff(text) {
  gsub(/\\-/, "-", text)
  gsub(/\\\(aq/, "'", text)
  gsub(/\\&/, "", text)
  gsub(/\\e/, "\\", text)
  return text
}
function language_of(block) {
  return block ~ /^import / ? "python" : block ~ /<- / ? "r" : "shell"
}

FILENAME ~ /\.1$/ {
  if (/^\.SH/)
    examples = /EXAMPLES/
  else if (examples && /^\.(EX|nf)/) {
    inside = 1
    block = ""
  } else if (inside && /^\.(EE|fi)/) {
    inside = 0
    if (language_of(block) == want)
      printf "%s", block
  } else if (inside)
    block = block unroff($0) "\n"
  next
}
/^```/ {
  fence = fence == "" ? substr($0, 4) "." : "" # the dot: a fence without a language is one too
  next
}
fence != "" {
  if (fence == want ".")
    print
  next
}
want == "shell" && /^    / { put(substr($0, 5)) }
want == "shell" && /\| `(seedforest|build\/)[^`|]*` \|$/ {
  sub(/` \|$/, "")
  sub(/.*\| `/, "")
  print
}
