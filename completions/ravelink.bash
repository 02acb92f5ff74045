# Completes the command lines of ravelink, ravelink-pack and ravelink-device in bash.

# The options of each program, and what the value of one is that takes any: a file so named, a folder
# or a text.
declare -gA _ravelink_options=(
  [ravelink]='-o:--origin:rvl -a:--address:text -h:--help:'
  [ravelink-pack]='-b:--build:conf -o:--output:rvl -l:--list:rvl -j:--json: -c:--check:rvl
    -x:--extract:rvl -d:--directory:folder -f:--force: -h:--help:'
  [ravelink-device]='-b:--bind:text -n:--count:text -s:--scenario:conf -c:--check:
    -d:--directory:folder -1:--once: -v:--verbose: -h:--help:'
)

# Bash calls it with the command and the word to be completed, which begins behind a "=".
_ravelink() {
  local program=${1##*/} word=$2 before=$((COMP_CWORD - 1)) entry short long value names=() kind=
  # In COMP_WORDS a "=" is a word by itself, and so is the ":" of an address.
  [[ ${COMP_WORDS[COMP_CWORD]} != = ]] || before=$COMP_CWORD
  [[ ${COMP_WORDS[before]} != = ]] || before=$((before - 1))
  [[ ${COMP_WORDS[COMP_CWORD]} != : && ${COMP_WORDS[before]} != : ]] || return 0

  for entry in ${_ravelink_options[$program]}; do
    IFS=: read -r short long value <<<"$entry"
    names+=("$short" "$long")
    case ${COMP_WORDS[before]} in
      "$short" | "$long") kind=$value ;;
    esac
  done
  case $kind in
    '') mapfile -t COMPREPLY < <(compgen -W "${names[*]}" -- "$word") ;;
    folder) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    rvl | conf)
      mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X "!*.$kind" -- "$word")
      ;;
  esac
  # A name gets a backslash before its blanks, a folder a "/"; there is nobody to tell in a test.
  [[ -z $kind ]] || compopt -o filenames 2>/dev/null
}

complete -F _ravelink ravelink ravelink-pack ravelink-device
