#!/usr/bin/env bash
# Installs from Debian whatever the build, the tests, the fuzzers and the
# benchmarks need and the machine lacks. Run as root.
set -euo pipefail
packages=(g++ cmake ninja-build pkg-config qt6-base-dev zlib1g-dev libbz2-dev
          libgoogle-perftools-dev libgtest-dev googletest libbenchmark-dev clang libclang-rt-14-dev
          libxml2-utils srecord binutils python3 diffutils qt6-5compat-dev gforth)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || missing+=("$package")
done
if ((${#missing[@]})); then
  echo "installing: ${missing[*]}"
  apt-get update -qq
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
