#!/usr/bin/env bash
# Checks that every include between the units of src/ follows the allowed direction, and that the
# allowed directions themselves form no cycle. The build refuses most forbidden includes already
# (a unit sees only the headers of the units it links); this names the rule and the offender.
#
#   unit_dependencies.sh <source root>
set -u
src=${1:-$(dirname "$0")/../../src}

# unit: the units whose headers it may include (its own always).
declare -A allowed=(
  [types]=""
  [bstring]=""
  [kavro]="bstring"
  [diagnostics]="kavro bstring"
  [lexical]="types bstring kavro"
  [script]="lexical types bstring kavro"
  [blocks]="types"
  [expression]="lexical types bstring diagnostics kavro"
  [read]="kavro bstring"
  [statements]="expression script blocks lexical types bstring diagnostics read kavro"
  [kvexec]="statements expression script blocks lexical types bstring diagnostics read kavro"
  [kvcheck]="script lexical types bstring kavro"
)

# Which unit each header belongs to.
declare -A owner=()
for dir in "$src"/*/; do
  unit=$(basename "$dir")
  for h in "$dir"*.h; do
    [ -e "$h" ] && owner[$(basename "$h")]=$unit
  done
done

fail=0
for dir in "$src"/*/; do
  unit=$(basename "$dir")
  if [ -z "${allowed[$unit]+set}" ]; then
    echo "unit $unit has no entry in the dependency table"
    fail=1
    continue
  fi
  for f in "$dir"*.h "$dir"*.cpp; do
    [ -e "$f" ] || continue
    while IFS= read -r header; do
      dep=${owner[$header]:-}
      [ -z "$dep" ] || [ "$dep" = "$unit" ] && continue
      case " ${allowed[$unit]} " in
        *" $dep "*) ;;
        *) echo "${f#"$src"/} includes $header: $unit may not depend on $dep"; fail=1 ;;
      esac
    done < <(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' "$f")
  done
done

# The table itself must be acyclic: repeatedly remove units whose dependencies are all removed.
declare -A left=()
for u in "${!allowed[@]}"; do left[$u]=1; done
progress=1
while [ "$progress" = 1 ]; do
  progress=0
  for u in "${!left[@]}"; do
    ready=1
    for d in ${allowed[$u]}; do [ -n "${left[$d]:-}" ] && ready=0; done
    if [ "$ready" = 1 ]; then unset "left[$u]"; progress=1; fi
  done
done
if [ "${#left[@]}" -gt 0 ]; then
  echo "the allowed dependencies form a cycle among: ${!left[*]}"
  fail=1
fi

[ "$fail" = 0 ] && echo "unit dependencies: all includes point down"
exit "$fail"
