#!/usr/bin/env bash
# Installs the Debian packages the project needs when any is missing.
set -euo pipefail
packages=(build-essential cmake pkg-config ccache clang-format libsqlite3-dev libpq-dev postgresql
          nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev libxlsxwriter-dev
          zlib1g-dev
          # the web client: HTTP server, password hashing; its browser tests (chromium, node,
          # a font with Chinese glyphs for the screenshots)
          libcpp-httplib-dev libssl-dev chromium nodejs fonts-wqy-zenhei
          # the export test reads its workbooks back with a spreadsheet program
          libreoffice-calc-nogui)
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

# The browser tests' driver, pinned in tests/e2e/package-lock.json; it uses Debian's chromium
# and downloads no browser of its own.
# npm comes with some builds of nodejs; Debian's own nodejs needs its npm package.
if ! command -v npm >/dev/null 2>&1; then
  sudo_cmd=""
  [ "$(id -u)" = 0 ] || sudo_cmd=sudo
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq npm
fi
e2e="$(dirname "$0")/../tests/e2e"
if command -v npm >/dev/null 2>&1 &&
   { [ ! -f "$e2e/node_modules/.package-lock.json" ] ||
     [ "$e2e/package-lock.json" -nt "$e2e/node_modules/.package-lock.json" ]; }; then
  (cd "$e2e" && PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --no-audit --no-fund --loglevel=error)
fi
