#!/usr/bin/env bash
# Installs the Debian packages the program and its tests need (when missing) and builds
# everything into build/. Run it as root or as a user allowed to use sudo: packages are
# installed with apt-get directly as root and through sudo otherwise; the build always
# belongs to the user who started the command (the one behind sudo, if sudo was used).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/comun.sh

paquetes=(g++ cmake ninja-build qt6-base-dev libqt6sql6-sqlite libsqlite3-dev libqt6sql6-psql libpq-dev qt6-l10n-tools qt6-translations-l10n
          libgtest-dev libbenchmark-dev fonts-dejavu-core postgresql
          zlib1g-dev pkg-config python3-openpyxl poppler-utils faketime libfaketime)
faltan=()
for p in "${paquetes[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || faltan+=("$p")
done
if [ ${#faltan[@]} -gt 0 ]; then
    como_root apt-get update -qq
    como_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${faltan[@]}"
fi

como_usuario cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
como_usuario cmake --build build
