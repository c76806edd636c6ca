#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks to build, test and run the project.
set -euo pipefail

packages=(
  cmake ninja-build ccache g++ clang libclang-rt-14-dev
  libboost1.81-dev libboost-json1.81-dev libboost-url1.81-dev
  libexpat1-dev libicu-dev libpng-dev libjpeg62-turbo-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  qt6-base-dev fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
