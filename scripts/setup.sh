#!/usr/bin/env bash
# Installs the Debian packages the project needs when any is missing.
set -euo pipefail
packages=(build-essential cmake pkg-config ccache clang-format libsqlite3-dev libpq-dev postgresql
          nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  sudo_cmd=""
  [ "$(id -u)" = 0 ] || sudo_cmd=sudo
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}"
fi
