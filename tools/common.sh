# What ./run and ./test share. Sourced from the project's root folder.

jobs=$(nproc 2>/dev/null || echo 2)

# Installs the packages of packages.txt that are missing, or says how.
install_packages() {
  local wanted missing=() as_root=()
  wanted=$(sed -e 's/#.*//' packages.txt)
  for package in $wanted; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    if ! sudo -n true 2>/dev/null && ! { [ -t 0 ] && command -v sudo >/dev/null; }; then
      echo "These packages are missing; install them as root and run this again:" >&2
      echo "  apt-get install --no-install-recommends ${missing[*]}" >&2
      exit 1
    fi
    as_root=(sudo)
  fi
  echo "installing ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures and builds, printing only what matters.
build() {
  local preset=$1
  shift
  cmake --preset "$preset" >"/tmp/facet-configure-$$.log" 2>&1 || { cat "/tmp/facet-configure-$$.log"; exit 1; }
  rm -f "/tmp/facet-configure-$$.log"
  cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"} -- --quiet
}
