#!/usr/bin/env bash
# Holds the direction of includes: a folder of src/ includes only itself and the folders named for it here,
# and Qt only where the desktop is. Run from the root of the sources.
set -euo pipefail

declare -A may_include=(
  [text]=""
  [model]="text"
  [async]=""
  [platform]="model text async"
  [imaging]="async model platform text"
  [presets]="imaging async model platform text"
  [services]="presets imaging async model platform text"
  [library]="services presets async model platform text"
  [views]="library services presets imaging async model platform text"
  [cli]="library services presets imaging async model platform text"
  [app]="views library services presets imaging async model platform text"
)
status=0
complain() {
  printf '%s\n' "$*"
  status=1
}

for folder in src/*/; do
  layer=$(basename "$folder")
  [[ -v may_include[$layer] ]] || { complain "src/$layer is not in the list of layers"; continue; }
  while IFS=: read -r file line text; do
    included=$(sed -E 's/.*#include "([a-z]+)\/.*/\1/' <<<"$text")
    [[ -d src/$included && $included != "$layer" ]] || continue
    [[ " ${may_include[$layer]} " == *" $included "* ]] || complain "$file:$line: $layer must not include $included"
  done < <(grep -rnE '^#include "[a-z]+/' "$folder" || true)
done

# Only the application, its views and the desktop's implementation know Qt; only the composition roots know Linux.
# The command line asks for volumes over the bus in one file that only builds with Qt have.
core=(src/text src/model src/async src/imaging src/presets src/services src/library src/cli)
if grep -rnE '#include [<"]Q[A-Z]' --exclude=DesktopVolumes.cpp "${core[@]}" src/platform/*.h; then complain "Qt in the core"; fi
if grep -rnE '#include "platform/linux/' src/text src/model src/async src/imaging src/presets src/services src/library src/views; then
  complain "the core includes one platform's implementation"
fi

# g++ 12 destroys temporaries twice when co_await stands inside ?:, && or ||.
if grep -rnE '(\?|&&|\|\|).*co_await|co_await.*(\?[^:]*:|&&|\|\|)' src --include='*.cpp' --include='*.h' |
  grep -vE '^\S+\s*//'; then
  complain "co_await must be a whole statement or initialiser"
fi
exit "$status"
