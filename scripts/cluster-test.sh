#!/bin/bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Starts a Slurm of its own on this machine, with Debian's packages, and unmixes sequences through workflow/Snakefile:
#
#     scripts/cluster-test.sh SPUM [FOLDER]
#
# 1. 40 sequences; slurmd is killed in the middle and started again: every sequence has its result, none was unmixed
#    twice, and the results are those of "spum batch", to the bit but for times and places (same_results.py).
# 2. A job that runs out of memory and one that runs out of time among others: both are told by name, the others done.
#
# As root, as slurmd has to be. Ends what it started, and nothing else. With FOLDER all that was written stays there.
set -euo pipefail

spum=$(realpath "$1")
root=$(realpath "$(dirname "$0")/..")
if [[ -n ${2:-} ]]; then
  mkdir -p "$2"
  work=$(realpath "$2")
else
  work=$(mktemp -d)
fi
count=${COUNT:-40}

missing=
for package in slurmctld slurmd slurm-client munge snakemake; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [[ $status == installed ]] || missing="$missing $package"
done
if [[ -n $missing ]]; then
  echo "Installing:$missing"
  apt-get update -qq
  # shellcheck disable=SC2086
  DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing </dev/null
fi

munged= ctld= slurmd= run=
finish() {
  status=$?
  trap - EXIT
  [[ -n $run ]] && kill "$run" 2>/dev/null && wait "$run" 2>/dev/null
  [[ -n $ctld ]] && scancel --user=root 2>/dev/null
  for process in $slurmd $ctld $munged; do
    kill "$process" 2>/dev/null && wait "$process" 2>/dev/null
  done
  [[ -n ${2:-} || $status -ne 0 ]] || rm -rf "$work"
  [[ $status -eq 0 ]] || echo "cluster-test: failed; what it wrote is in $work" >&2
  exit "$status"
}
trap 'finish' EXIT
trap 'exit 143' TERM INT HUP

fail() {
  echo "cluster-test: $*" >&2
  exit 1
}

# A Slurm of one node that leaves the machine's own alone: its folders, ports and key are its own.
mkdir -p "$work"/{munge,state,spool,log}
chmod 711 "$work"
chmod 700 "$work/munge"
head -c 1024 /dev/urandom >"$work/munge/key"
chmod 600 "$work/munge/key"
chmod 755 "$work/munge"
node=$(hostname -s)
port=$((20000 + RANDOM % 10000))
export SLURM_CONF=$work/slurm.conf
cat >"$SLURM_CONF" <<CONF
ClusterName=test
SlurmctldHost=$node(127.0.0.1)
SlurmUser=root
SlurmctldPort=$port
SlurmdPort=$((port + 1))
AuthType=auth/munge
AuthInfo=socket=$work/munge/socket
CryptoType=crypto/munge
CredType=cred/munge
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
SlurmctldLogFile=$work/log/slurmctld.log
SlurmdLogFile=$work/log/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU_Memory
SchedulerParameters=defer,sched_interval=5
JobAcctGatherType=jobacct_gather/linux
JobAcctGatherFrequency=task=1
JobAcctGatherParams=OverMemoryKill
KillWait=5
MinJobAge=3600
ReturnToService=2
SlurmdTimeout=60
MessageTimeout=30
NodeName=$node NodeAddr=127.0.0.1 CPUs=$(nproc) RealMemory=$(free -m | awk '/^Mem:/ {print int($2 * 0.8)}')
PartitionName=all Nodes=$node Default=YES MaxTime=INFINITE State=UP
CONF
sed -i '/^CryptoType/d' "$SLURM_CONF"

start_slurmd() {
  slurmd -D >"$work/log/slurmd.out" 2>&1 &
  slurmd=$!
}
wait_for() {
  local what=$1 seconds=$2
  shift 2
  for ((i = 0; i < seconds * 5; i++)); do
    if "$@" >/dev/null 2>&1; then
      return 0
    fi
    sleep 0.2
  done
  fail "$what: not within $seconds s"
}
node_idle() { sinfo -h -o %T | grep -qE '^(idle|mixed|allocated)$'; }

munged --foreground --force --key-file="$work/munge/key" --socket="$work/munge/socket" --pid-file="$work/munge/pid" \
  --log-file="$work/munge/log" --seed-file="$work/munge/seed" >"$work/log/munged.out" 2>&1 &
munged=$!
wait_for "munged" 30 munge -n -S "$work/munge/socket"
slurmctld -D >"$work/log/slurmctld.out" 2>&1 &
ctld=$!
start_slurmd
wait_for "the node of Slurm" 60 node_idle
echo "Slurm is up: $(sinfo -h -o '%N %T %c processors %m MB')"

# 1: 40 sequences, slurmd killed in the middle.
cd "$work"
for i in $(seq "$count"); do
  [[ -d sequences/s$i ]] || { mkdir -p sequences && "$spum" simulate "sequences/s$i" --size 64 --bands 6 --seed "$i" --quiet; }
done
cat >config.yaml <<CONFIG
spum: $spum
sequences: [sequences/*]
options: --library $work/sequences/s1/truth/radiance/spectra.csv --unit radiance
out: results
CONFIG
unmixed() { find results/.batch/done -type f 2>/dev/null | wc -l; }
half_done() { [[ $(unmixed) -ge $((count / 2)) ]]; }
started=$SECONDS
/usr/bin/snakemake --snakefile "$root/workflow/Snakefile" --profile "$root/workflow/slurm" --configfile config.yaml \
  >snakemake.log 2>&1 &
run=$!
wait_for "half of the sequences" 900 half_done
kill -9 "$slurmd"
wait "$slurmd" 2>/dev/null || true
echo "slurmd was killed after $(unmixed) of $count"
sleep 5
start_slurmd
wait "$run" || { tail -30 snakemake.log; fail "Snakemake ended with a failure"; }
run=
echo "$count sequences through Slurm in $((SECONDS - started)) s"
for i in $(seq "$count"); do
  [[ -f results/s$i/summary.json ]] || fail "s$i has no result"
done
# Each job's log has the line of its sequence.
lines=$(cat results/.batch/logs/*.log | grep -cE '^1/1 s[0-9]+: .* residual' || true)
[[ $lines -eq $count ]] || fail "$lines unmixings of $count sequences"
each=$(cat results/.batch/logs/*.log | grep -oE '^1/1 s[0-9]+: .* residual' | cut -d: -f1 | sort -u | wc -l)
[[ $each -eq $count ]] || fail "$each of $count sequences were unmixed"
"$spum" batch sequences/* --library "$work/sequences/s1/truth/radiance/spectra.csv" --unit radiance --out here --quiet
"$root/scripts/same_results.py" here results || fail "the results are not those of spum batch"
again=$("$spum" batch sequences/* --library "$work/sequences/s1/truth/radiance/spectra.csv" --unit radiance --out results)
[[ $(grep -c 'unchanged since its result' <<<"$again") -eq $count ]] || fail "the results of the jobs are not taken over"
echo "every sequence has its result, none was unmixed twice, all are those of spum batch"

# 2: one that takes more memory than it asked for, one that takes longer, among others.
mkdir -p few
for i in 1 2 3; do
  [[ -d few/good$i ]] || cp -r "sequences/s$i" "few/good$i"
done
cp -r sequences/s4 few/hungry 2>/dev/null || true
cp -r sequences/s5 few/slow 2>/dev/null || true
cat >few/spum <<SCRIPT
#!/bin/bash
# The program, with a job that takes more memory, and one that takes more time, than it asked for.
case " \$* " in
*" --only hungry "*) /usr/bin/python3 -c 'import time; held = b"x" * (1 << 30); time.sleep(60)' ;;
*" --only slow "*) sleep 600 ;;
esac
exec "$spum" "\$@"
SCRIPT
chmod +x few/spum
cat >few.yaml <<CONFIG
spum: $work/few/spum
sequences: [few/good*, few/hungry, few/slow]
options: --unit radiance
out: few-results
minutes: 1
CONFIG
if /usr/bin/snakemake --snakefile "$root/workflow/Snakefile" --profile "$root/workflow/slurm" --configfile few.yaml \
  >few.log 2>&1; then
  fail "Snakemake did not tell that jobs failed"
fi
for i in 1 2 3; do
  [[ -f few-results/good$i/summary.json ]] || fail "good$i has no result"
done
# How Slurm tells of memory depends on whether it has control groups to watch it.
for told in "hungry: the job .*r[ua]ns\? out of memory" "slow: the job ran out of time"; do
  grep -q "$told" few.log || { tail -40 few.log; fail "not told: $told"; }
  grep -q "^${told%%:*},.*,missing,.*${told#*: }" few-results/batch.csv || fail "not in batch.csv: $told"
done
echo "jobs that ran out of memory and of time are told by name, the others are done"
