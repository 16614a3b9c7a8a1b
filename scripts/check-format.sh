#!/usr/bin/env bash
# Fails when a C++ source differs from what .clang-format makes of it; --fix rewrites them instead.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t files < <(git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp')
[ ${#files[@]} -eq 0 ] && exit 0
if [ "${1:-}" = "--fix" ]; then
    clang-format -i "${files[@]}"
else
    clang-format --dry-run -Werror "${files[@]}"
fi
