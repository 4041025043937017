#!/usr/bin/env bash
# Installs, builds and starts the program on the demo company (created on first run).
# Extra arguments go to the program: scripts/run.sh --user 2
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
exec build/app/asientos "$@"
