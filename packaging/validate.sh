#!/usr/bin/env bash
# Asks the validators of each format about the files of this folder; 77 when one is not installed.
cd "$(dirname "$0")" || exit 1
failed=0 missing=
# check PROGRAM ARGUMENT...
check() {
  command -v "$1" >/dev/null || { missing+=" $1"; return; }
  "$@" || { echo "FAILED: $*"; failed=1; }
}
check desktop-file-validate io.github.facetbench.vxmviewer.desktop
check appstreamcli validate --no-net --no-color io.github.facetbench.vxmviewer.metainfo.xml
check xmllint --noout facetbench.mime.xml io.github.facetbench.vxmviewer.metainfo.xml ../src/app/icons/*.svg
for page in man/*.1; do
  check man --warnings --local-file --encoding=UTF-8 --pager=cat "$page" >/dev/null
done
check bash -n completions/facetbench.bash
if command -v zsh >/dev/null; then check zsh -n completions/_facetbench; fi

# The desktop must be able to take the types in.
if command -v update-mime-database >/dev/null; then
  folder=$(mktemp -d)/mime
  mkdir -p "$folder/packages"
  cp facetbench.mime.xml "$folder/packages/facetbench.xml"
  XDG_DATA_HOME=${folder%/*} check update-mime-database "$folder" >/dev/null
  rm -rf "${folder%/*}"
else
  missing+=" update-mime-database"
fi
[ $failed -eq 0 ] || exit 1
[ -z "$missing" ] || { echo "passed without:$missing"; exit 77; }
