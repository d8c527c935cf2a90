#!/bin/sh
# A long list on several hosts at once, by GNU Parallel. Each job cuts a shard of the rows; a job that
# fails, or whose host goes away, is run again, and --resume of kerno leaves what is whole as it is.
#
#   hosts.sh HOSTS ROWS SHARD cut --data list.csv ... -o "tags/{row:07}.dxf"
#
# HOSTS is a file with a line for each host, as "2/cutter1" for two jobs at a time there (":" is this
# machine). The list, the fonts and the folder of the files are seen by all hosts under the same names.
# JOBLOG (joblog.txt) keeps what ended how, JOBLOG.command of which command: that one goes on where it
# stopped. SSH names another program than ssh.
set -eu

fail() {
  echo "hosts.sh: $*" >&2
  exit 2
}

check_number() {
  case $2 in
    '' | *[!0-9]* | 0* | ??????????*) fail "$1: \"$2\" is no whole number from 1 to 999999999" ;;
  esac
}

# What shards cannot share.
check_options() {
  before=
  for word; do
    case $word in
      --sheet | --sheet=*) fail "--sheet: sheets are numbered within a run; put the whole list on sheets in one run" ;;
      --failed | --failed=*) fail "--failed: every shard would write the same file; rows that fail are named in messages" ;;
      --rows | --rows=* | --jobs | --jobs=* | --replace) fail "$word: is given by the shards" ;;
      --data=- | --lines=- | --text-file=-) fail "$word: standard input is not seen by all hosts" ;;
    esac
    case "$before $word" in
      "--data -" | "--lines -" | "--text-file -") fail "$before -: standard input is not seen by all hosts" ;;
    esac
    before=$word
  done
}

# Words as a shell reads them again, whatever they hold.
quote() {
  for word; do
    quoted=$(printf '%sx' "$word" | sed "s/'/'\\\\''/g")
    printf "'%s' " "${quoted%x}"
  done
}

[ $# -ge 4 ] || fail "usage: hosts.sh HOSTS ROWS SHARD cut ..."
hosts=$1 rows=$2 shard=$3
shift 3
check_number ROWS "$rows"
check_number SHARD "$shard"
check_options "$@"
log=${JOBLOG:-joblog.txt}
command="cd $(quote "$PWD")&& $(quote "${KERNO:-kerno}" "$@")"
again=
if [ -s "$log" ]; then
  [ -f "$log.command" ] && [ "$(cat "$log.command")" = "$rows $shard $command" ] ||
    fail "$log: is of another command, ROWS or SHARD; remove it, or name another by JOBLOG"
  again=--resume-failed
else
  printf '%s\n' "$rows $shard $command" > "$log.command"
fi
# The lines are quoted for this shell, whatever the login shell of a host is. A host that knows none (SHELL
# is not set) would run nothing and call it a success.
SHELL=/bin/sh
export SHELL
# Finished command lines, ended by NUL: fields such as {1} would be places in a template of parallel.
first=1
while [ "$first" -le "$rows" ]; do
  last=$((first + shard - 1))
  [ "$last" -le "$rows" ] || last=$rows
  printf '%s--rows %s-%s --resume --jobs 1 --quiet\0' "$command" "$first" "$last"
  first=$((last + 1))
done | parallel --null --sshloginfile "$hosts" --joblog "$log" $again --env SHELL --retries 3 ${SSH:+--ssh "$SSH"}
