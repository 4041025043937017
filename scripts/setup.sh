#!/usr/bin/env bash
# Installs the Debian packages the program and its tests need (when missing) and builds
# everything into build/. Run as root or with sudo on a fresh Debian 12 machine.
set -euo pipefail
cd "$(dirname "$0")/.."

paquetes=(g++ cmake ninja-build qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql qt6-l10n-tools
          libgtest-dev libbenchmark-dev fonts-dejavu-core postgresql)
faltan=()
for p in "${paquetes[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || faltan+=("$p")
done
if [ ${#faltan[@]} -gt 0 ]; then
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${faltan[@]}"
fi

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo > /dev/null
cmake --build build
