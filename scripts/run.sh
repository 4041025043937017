#!/usr/bin/env bash
# Installs, builds and starts the program on the demo company (created on first run in the
# user's data folder); the desktop's menu then offers it too. Extra arguments go to the
# program: scripts/run.sh --user 2
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/comun.sh
bash scripts/setup.sh
# The program, its desktop entry and its icon in the user's own ~/.local, so the desktop's
# menu offers it.
casa=$(como_usuario sh -c 'getent passwd "$(id -un)" | cut -d: -f6')
como_usuario cmake --install build --prefix "$casa/.local" > /dev/null
como_usuario build/app/asientos "$@"
