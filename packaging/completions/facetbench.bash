# Completion of facetbench and vxmviewer for bash.
_facetbench_models='@(vxm|VXM|object|OBJECT|msh|MSH|model|MODEL|mesh|MESH|ds2md|DS2MD|dds|DDS)'

_facetbench_files() {
  local IFS=$'\n' shown
  shopt -q extglob || { shopt -s extglob; shown=1; }
  compopt -o filenames
  COMPREPLY=($(compgen -f -X "!*.$1" -- "$2") $(compgen -d -- "$2"))
  [ -z "$shown" ] || shopt -u extglob
}

_facetbench() {
  local word=$2 before=$3 command=${COMP_WORDS[1]}
  local convert='--out --output --to --textures --no-search --recursive --jobs --quiet
    --style --textures-out --up --scale'
  local render='--out --output --size --mode --light --untextured --environment --time --filter --background --eye --pitch
    --yaw --fov --aspect --no-distance-cut --overlay --device --seed --turntable --textures --no-search --recursive --jobs --quiet'
  local info='--json --details --textures --no-search' texture='--json --output' log='--output --textures --no-search'
  if [ "$COMP_CWORD" -eq 1 ]; then
    COMPREPLY=($(compgen -W 'convert render info texture log --help --version' -- "$word"))
    return
  fi
  case $before in
    --to) COMPREPLY=($(compgen -W 'obj smd ase pov dae dxf stl ms3d vxm glb gltf all' -- "$word")); return ;;
    --mode) COMPREPLY=($(compgen -W 'wireframe lit textured' -- "$word")); return ;;
    --light) COMPREPLY=($(compgen -W 'off head sun' -- "$word")); return ;;
    --untextured) COMPREPLY=($(compgen -W 'lit skip' -- "$word")); return ;;
    --aspect) COMPREPLY=($(compgen -W '5:4 4:3 3:2 16:10 5:3 16:9' -- "$word")); return ;;
    --style) COMPREPLY=($(compgen -W 'exact modern' -- "$word")); return ;;
    --textures-out) COMPREPLY=($(compgen -W 'png copy none' -- "$word")); return ;;
    --up) COMPREPLY=($(compgen -W 'y z' -- "$word")); return ;;
    --device) COMPREPLY=($(compgen -W 'hal ref' -- "$word")); return ;;
    --out | --textures) compopt -o filenames; COMPREPLY=($(compgen -d -- "$word")); return ;;
    -o | --output) compopt -o filenames; COMPREPLY=($(compgen -f -- "$word")); return ;;
  esac
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "--help ${!command}" -- "$word"))
  elif [ "$command" = texture ]; then
    _facetbench_files '@(dds|DDS|tga|TGA|png|PNG|bmp|BMP)' "$word"
  else
    _facetbench_files "$_facetbench_models" "$word"
  fi
}

_vxmviewer() {
  if [ "$3" = --device ]; then
    COMPREPLY=($(compgen -W 'hal ref' -- "$2"))
  elif [ "$3" = --textures ]; then
    compopt -o filenames
    COMPREPLY=($(compgen -d -- "$2"))
  elif [[ $2 == -* ]]; then
    COMPREPLY=($(compgen -W '--device --textures --no-search --help --version' -- "$2"))
  else
    _facetbench_files "$_facetbench_models" "$2"
  fi
}

complete -F _facetbench facetbench
complete -F _vxmviewer vxmviewer
