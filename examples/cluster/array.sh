#!/bin/sh
#SBATCH --job-name=kerno
#SBATCH --array=0-99
#SBATCH --cpus-per-task=2
#SBATCH --requeue
# One shard of a long list for each task of an array: sbatch array.sh cut --data list.csv ...
# A Kubernetes job with completionMode: Indexed runs it as well, and so does
#   SLURM_ARRAY_TASK_ID=7 sh array.sh cut --data list.csv ...
# SHARD (10000) rows a task. A task that is run again leaves what is whole as it is.
set -eu

fail() {
  echo "array.sh: $*" >&2
  exit 2
}

# What shards cannot share.
before=
for word; do
  case $word in
    --sheet | --sheet=*) fail "--sheet: sheets are numbered within a run; put the whole list on sheets in one run" ;;
    --failed | --failed=*) fail "--failed: every shard would write the same file; rows that fail are named in messages" ;;
    --rows | --rows=* | --jobs | --jobs=* | --replace) fail "$word: is given by the shards" ;;
    --data=- | --lines=- | --text-file=-) fail "$word: every task needs a file" ;;
  esac
  case "$before $word" in
    "--data -" | "--lines -" | "--text-file -") fail "$before -: every task needs a file" ;;
  esac
  before=$word
done
task=${SLURM_ARRAY_TASK_ID:-${JOB_COMPLETION_INDEX:?says which shard this task cuts}}
shard=${SHARD:-10000}
case $task in
  0) ;;
  '' | *[!0-9]* | 0* | ???????*) fail "\"$task\" is no number of a task" ;;
esac
case $shard in
  '' | *[!0-9]* | 0* | ??????????*) fail "SHARD: \"$shard\" is no whole number from 1 to 999999999" ;;
esac
exec "${KERNO:-kerno}" "$@" --rows "$((task * shard + 1))-$(((task + 1) * shard))" --resume \
  --jobs "${SLURM_CPUS_PER_TASK:-2}" --quiet
