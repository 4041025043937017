#!/usr/bin/env bash
# Installs, builds and starts the program on the demo company (created on first run in the
# user's data folder). Extra arguments go to the program: scripts/run.sh --user 2
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/comun.sh
bash scripts/setup.sh
como_usuario build/app/asientos "$@"
