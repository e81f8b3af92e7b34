# Completion of keloaudio for bash.
# shellcheck shell=bash

# The words of one option that takes a fixed set.
_keloaudio_values() {
  case $1 in
    --bits) echo 8 16 24 32 ;;
    --quality) echo quick high very-high ;;
    --dither) echo none rectangular triangular shaped ;;
    --rate) echo 8000 16000 22050 32000 44100 48000 88200 96000 176400 192000 ;;
    --to) echo flac wav ogg opus mp3 aiff caf ;;
  esac
}

_keloaudio_options() {
  local plugins='--plugins --trust-plugins --help'
  case $1 in
    list) echo "--json --timeout $plugins" ;;
    info) echo "--json $plugins" ;;
    settings) echo "--images $plugins" ;;
    convert)
      echo "--to --out-dir --stdout --skip-existing --dry-run --set --recursive --shard --jobs --start --end --rate" \
        "--bits --channels --quality --dither --json --quiet $plugins"
      ;;
    validate) keloaudio validate --help 2>/dev/null | grep -oE -- '--[a-z][a-z-]*' | sort -u ;;
    *) echo '--help --version' ;;
  esac
}

_keloaudio() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  local commands='list info convert settings validate' values
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W "$commands $(_keloaudio_options '')" -- "$current")
    return
  fi
  case $previous in
    --plugins | --images | --out-dir)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return
      ;;
    --set | --shard | --jobs | -j | --start | --end | --channels | --timeout) return ;;
  esac
  values=$(_keloaudio_values "$previous")
  if [[ -n $values ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_keloaudio_options "$command")" -- "$current")
  elif [[ $command != list && $command != settings ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}

complete -F _keloaudio keloaudio
