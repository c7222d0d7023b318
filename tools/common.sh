# What ./run and ./test share. Sourced from the project's root folder.

jobs=$(nproc 2>/dev/null || echo 2)

# Installs those of these packages that are missing (of packages.txt when none are given), or says how.
install_packages() {
  local missing=() as_root=()
  [ $# -gt 0 ] || set -- $(sed -e 's/#.*//' packages.txt)
  for package; do
    [ "$package" = npm ] && command -v npm >/dev/null && continue  # some builds of Node bring it along
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

# Fetches the judges of glb, glTF and OBJ files that Debian does not have: these versions, with these checksums, by the
# npm client. Where that fails, their tests are skipped.
install_npm_judges() {
  install_npm_judge gltf-validator 2.0.0-dev.3.10 \
    a1d278934b519065e20c69fbf320c183e7c16c022f0675f187747002d6b47a64b11adc9a80513c078c442c1d6861edd2e510fc0a2dee640b1969ab1c1f62c011
  install_npm_judge three 0.170.0 \
    1502be2c4a587347c10fe27c83aa12132c8dce3a7e43b2acd42e7af1659aa0c44b5be4e434d5a67a759e1a0263575d3919dfa9ff6aa5d5972362f3623d9061b9
}

install_npm_judge() {
  local name=$1 version=$2 sum=$3 modules=build/judges/node_modules
  [ -e $modules/$name ] && return
  mkdir -p $modules/unpacked
  if (
    cd $modules/unpacked && timeout 120 npm pack --silent "$name@$version" >/dev/null &&
      echo "$sum  $name-$version.tgz" | sha512sum --check --quiet && tar -xzf "$name-$version.tgz"
  ); then
    mv $modules/unpacked/package $modules/$name
  else
    echo "$name could not be fetched; its test will be skipped" >&2
  fi
  rm -r $modules/unpacked
}

# build PRESET [TARGET...]: configures and builds, printing only what matters.
build() {
  local preset=$1
  shift
  cmake --preset "$preset" >"/tmp/facet-configure-$$.log" 2>&1 || { cat "/tmp/facet-configure-$$.log"; exit 1; }
  rm -f "/tmp/facet-configure-$$.log"
  cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"} -- --quiet
}
