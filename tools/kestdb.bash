# Completion of kestdb for bash.

_kestdb_reports='auxiliaries control counters dcons deqn design dlink dobj dresp dset dvar
  final-model inputs iteration messages model point points residuals responses result task'

_kestdb_commands='check export index-check index-stats info list new rebuild rebuild-index
  remove-task report restart stats unlock'

# _kestdb_options COMMAND: its options.
_kestdb_options() {
  case $1 in
    info) echo '--help --json --upgrade --wait' ;;
    list) echo '--help --json --task --upgrade --wait' ;;
    report) echo '--help --all-constraints --best --design-numbers --iter --point --resp --sub
      --sub-iterations --task --upgrade --wait' ;;
    check | index-check | index-stats | rebuild-index) echo '--help --wait' ;;
    stats) echo '--help --wait --walk' ;;
    rebuild) echo '--help --wait --yes' ;;
    unlock) echo '--help --directory --header' ;;
    new) echo '--help' ;;
    export) echo '--help --force --format --output --task --upgrade --wait --what' ;;
    restart) echo '--help --link --point --single-start --task --title --upgrade --wait' ;;
    remove-task) echo '--help --task --upgrade --wait --with-children' ;;
    *) echo '--help --version' ;;
  esac
}

# _kestdb_studies WORD: data files and folders.
_kestdb_studies() {
  local file
  while IFS= read -r file; do
    if [[ -d $file ]]; then
      COMPREPLY+=("$file/")
    elif [[ $file == *.ksb ]]; then
      COMPREPLY+=("$file")
    fi
  done < <(compgen -f -- "$1")
}

_kestdb() {
  local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} words=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    words="$_kestdb_commands --help --version"
  elif [[ $previous == --format ]]; then
    words='csv json sqlite'
  elif [[ $previous == --what ]]; then
    words='points iterations inputs responses'
  elif [[ $previous == --output ]]; then
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
    return
  elif [[ $previous =~ ^--(wait|task|iter|sub|point|resp|title)$ ]]; then
    return
  elif [[ $word == -* ]]; then
    words=$(_kestdb_options "$command")
  elif ((COMP_CWORD == 2)) && [[ $command == list ]]; then
    words='tasks inputs responses points'
  elif ((COMP_CWORD == 2)) && [[ $command == report ]]; then
    words=$_kestdb_reports
  else
    _kestdb_studies "$word"
    return
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -o filenames -F _kestdb kestdb
