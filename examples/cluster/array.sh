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
task=${SLURM_ARRAY_TASK_ID:-${JOB_COMPLETION_INDEX:?says which shard this task cuts}}
shard=${SHARD:-10000}
exec "${KERNO:-kerno}" "$@" --rows "$((task * shard + 1))-$(((task + 1) * shard))" --resume \
  --jobs "${SLURM_CPUS_PER_TASK:-2}" --quiet
