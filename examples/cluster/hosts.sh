#!/bin/sh
# A long list on several hosts at once, by GNU Parallel. Each job cuts a shard of the rows; a job that
# fails, or whose host goes away, is run again, and --resume of kerno leaves what is whole as it is.
#
#   hosts.sh HOSTS ROWS SHARD cut --data list.csv ... -o "tags/{row:07}.dxf"
#
# HOSTS is a file with a line for each host, as "2/cutter1" for two jobs at a time there (":" is this
# machine). The list, the fonts and the folder of the files are seen by all hosts under the same names.
# JOBLOG (joblog.txt) keeps what ended how: the same command goes on where it stopped.
set -eu
hosts=$1 rows=$2 shard=$3
shift 3
log=${JOBLOG:-joblog.txt}
again=
[ ! -s "$log" ] || again=--resume-failed
first=1
while [ "$first" -le "$rows" ]; do
  last=$((first + shard - 1))
  [ "$last" -le "$rows" ] || last=$rows
  echo "$first-$last"
  first=$((last + 1))
done | parallel --quote --sshloginfile "$hosts" --workdir "$PWD" --joblog "$log" $again --retries 3 \
  ${SSH:+--ssh "$SSH"} "${KERNO:-kerno}" "$@" --rows {} --resume --jobs 1 --quiet
