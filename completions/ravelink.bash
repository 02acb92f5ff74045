# Completes the command lines of ravelink, ravelink-job, ravelink-pack and ravelink-device in bash.

# The options of each program, as short:long:value. The value is "rvl", "conf" or "jsonl" for files
# with that extension, "directory", "text", or empty for none; "+" after it means one or more.
declare -gA _ravelink_options=(
  [ravelink]='-o:--origin:rvl -a:--address:text -h:--help:'
  [ravelink-job]='-o:--origin:rvl -a:--address:text -n:--name:text -c:--check: -r:--retry:text
    -w:--wait:text -k:--connect-timeout:text -m:--max-time:text -j:--json: -l:--log:jsonl
    -q:--quiet: -v:--version: -h:--help:'
  [ravelink-pack]='-b:--build:conf -o:--output:rvl -l:--list:rvl+ -j:--json: -c:--check:rvl+
    -x:--extract:rvl -d:--directory:directory -f:--force: -V:--version: -h:--help:'
  [ravelink-device]='-b:--bind:text -n:--count:text -s:--scenario:conf -c:--check:
    -t:--target:text -m:--max-size:text -d:--directory:directory -1:--once: -v:--verbose:
    -V:--version: -h:--help:'
)

# Completes the last argument. Bash passes the command and the text to complete, which begins after "=".
_ravelink() {
  local program=${1##*/} word=$2 before=$((COMP_CWORD - 1)) entry short long value names=() kind= last
  # Bash splits "=" and ":" into elements of their own in COMP_WORDS.
  [[ ${COMP_WORDS[COMP_CWORD]} != = ]] || before=$COMP_CWORD
  [[ ${COMP_WORDS[before]} != = ]] || before=$((before - 1))
  [[ ${COMP_WORDS[COMP_CWORD]} != : && ${COMP_WORDS[before]} != : ]] || return 0

  # The last option may accept more values.
  for ((last = before; last > 0; --last)); do
    [[ ${COMP_WORDS[last]} != -* ]] || break
  done

  for entry in ${_ravelink_options[$program]}; do
    IFS=: read -r short long value <<<"$entry"
    names+=("$short" "$long")
    case ${COMP_WORDS[before]} in
      "$short" | "$long") kind=${value%+} ;;
    esac
    [[ $value == *+ && $word != -* ]] || continue
    case ${COMP_WORDS[last]} in
      "$short" | "$long") kind=${value%+} ;;
    esac
  done
  case $kind in
    '') mapfile -t COMPREPLY < <(compgen -W "${names[*]}" -- "$word") ;;
    directory) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    rvl | conf | jsonl)
      mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X "!*.$kind" -- "$word")
      ;;
  esac
  # Makes bash quote spaces and append "/" to directories. Fails outside of a completion, as in tests.
  [[ -z $kind ]] || compopt -o filenames 2>/dev/null
}

complete -F _ravelink "${!_ravelink_options[@]}"
