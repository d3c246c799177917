# Copyright the Seedforest authors
# SPDX-License-Identifier: Apache-2.0

# Sourced by scripts that run the commands of the documents; $folder is the project's.

# code_of LANGUAGE PAGE: what scripts/lib/codeOf.awk finds.
code_of() { awk -v want="$1" -f "$folder/scripts/lib/codeOf.awk" "$2"; }

# run_commands FILE: runs its lines, one after the other, in one shell in the current folder. Ends at
# the first that fails, or whose last line of output is not what stands in it behind "# prints ".
run_commands() (
  PATH=$folder/build:$folder/build/examples:$PATH
  set -uo pipefail
  said=$(mktemp)
  trap 'rm -f "$said"' EXIT
  while IFS= read -r line <&3; do
    echo "+ $line"
    eval "$line" >"$said" 2>&1 </dev/null || {
      cat "$said"
      echo "This command failed."
      exit 1
    }
    cat "$said"
    case $line in *"# prints "*)
      [ "$(tail -n 1 "$said")" = "${line##*# prints }" ] || {
        echo "The page says that this command prints something else."
        exit 1
      }
      ;;
    esac
  done 3<"$1"
)
