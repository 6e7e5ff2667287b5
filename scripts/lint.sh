#!/bin/sh
# Formatting, static analysis, shell and Python scripts. Static analysis looks again only at what changed since it last
# found nothing: a source's stamp is named after what the compiler sees of it.
set -eu
cd "$(dirname "$0")/.."

git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run -Werror
git ls-files -z '*.sh' '.ci/run' 'examples/packages/*/run' 'scripts/system/*' 'packaging/debian/*' ':!*CMakeLists.txt' | xargs -0 shellcheck -x
git ls-files -z '*.py' tools/make-update tools/update-server | xargs -0 pyflakes3
if git ls-files -z -- '*.cpp' '*.h' '*.sh' 'scripts/system/*' '*.py' '*.ts' 'tools/*' '*.md' '*.txt' '*.cmake' | xargs -0 grep -nE '[[:blank:]]+$'; then
  echo "lint: blanks at line ends" >&2
  exit 1
fi

scripts/build-preset.sh release >/dev/null
python3 scripts/tidy.py build
