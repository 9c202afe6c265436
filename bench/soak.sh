#!/usr/bin/env bash
# Runs the demo host for a long while and records its memory, to show whether
# it stays flat once the trap list is full.
#
#   bench/soak.sh [--units N] [--seconds S] [--interval S] [--warmup S]
#                 [--csv FILE] [--host PROGRAM] [-- HOST OPTIONS...]
#
#   --units N      units of the host (default 500)
#   --seconds S    length of the run, at most 3600 (default 3600)
#   --interval S   seconds between samples (default 30)
#   --warmup S     growth is reckoned from this time on, when the trap list
#                  should be full (default 300)
#   --csv FILE     where the samples go (default soak-<units>u-<date>.csv in
#                  the current folder)
#   --host PROGRAM the demo host (default build/examples/bin/demohost)
#   --summary CSV  only print the summary of an earlier run's samples
#   after --        passed to the host as they stand, e.g. -- --simulated
#
# By default the host starts the real demoagent beside it. Every sample holds
# VmRSS and VmHWM (kB) of the host and of the agent from /proc. The host runs
# with a configuration folder of its own, so the user's layout is untouched.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
units=500
seconds=3600
interval=30
warmup=300
csv=
summary=
host="$root/build/examples/bin/demohost"
extra=()

while [ $# -gt 0 ]; do
    case "$1" in
    --units) units=$2; shift 2 ;;
    --seconds) seconds=$2; shift 2 ;;
    --interval) interval=$2; shift 2 ;;
    --warmup) warmup=$2; shift 2 ;;
    --csv) csv=$2; shift 2 ;;
    --host) host=$2; shift 2 ;;
    --summary) summary=$2; shift 2 ;;
    --) shift; extra=("$@"); break ;;
    -h | --help) sed -n '2,21p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "soak.sh: unknown option $1 (see --help)" >&2; exit 2 ;;
    esac
done
for n in "$units" "$seconds" "$interval" "$warmup"; do
    [[ "$n" =~ ^[0-9]+$ ]] || { echo "soak.sh: $n is not a whole number" >&2; exit 2; }
done
[ "$interval" -ge 1 ] || { echo "soak.sh: --interval must be at least 1" >&2; exit 2; }
[ -n "$summary" ] || [ -x "$host" ] || { echo "soak.sh: no demo host at $host (build the target demohost)" >&2; exit 2; }
[ -n "$csv" ] || csv="soak-${units}u-$(date +%Y%m%d-%H%M%S).csv"

# First, last and highest figures of a CSV, and the growth after the warm-up as
# the least-squares slope of each figure over time (MB a minute).
summarise() {
    awk -F, -v warmup="$warmup" '
    NR == 1 { next }
    {
        t[++n] = $1
        for (c = 2; c <= 5; c++) v[n, c] = $c
    }
    END {
        if (n == 0) { print "No samples."; exit 1 }
        split("host RSS,host HWM,agent RSS,agent HWM", name, ",")
        for (c = 2; c <= 5; c++) {
            # The agent starts a moment after the host: its first samples may be empty.
            first = 0; last = 0; max = 0
            for (i = 1; i <= n; i++) {
                if (v[i, c] == "") continue
                if (!first) first = i
                last = i
                if (v[i, c] + 0 > max) max = v[i, c] + 0
            }
            if (!first) continue
            printf "%-9s first %8.1f MB  last %8.1f MB  max %8.1f MB", name[c - 1], v[first, c] / 1024, v[last, c] / 1024, max / 1024
            k = 0; st = 0; sv = 0; stt = 0; stv = 0
            for (i = 1; i <= n; i++) {
                if (t[i] < warmup || v[i, c] == "") continue
                m = t[i] / 60; x = v[i, c] / 1024
                k++; st += m; sv += x; stt += m * m; stv += m * x
            }
            if (k >= 2 && k * stt - st * st > 0)
                printf "  growth after %d s %+.3f MB/min (%d samples)", warmup, (k * stv - st * sv) / (k * stt - st * st), k
            else
                printf "  growth: too few samples after %d s", warmup
            printf "\n"
        }
    }' "$1"
}

if [ -n "$summary" ]; then
    summarise "$summary"
    exit $?
fi

work=$(mktemp -d)
host_pid=
agent_pid=
# Only the processes this script started, by their ids.
stop() {
    # The host stops its agent when it ends well; one left behind is stopped here.
    if [ -n "$agent_pid" ] && [ "$(cat "/proc/$agent_pid/comm" 2>/dev/null)" = demoagent ]; then
        kill "$agent_pid" 2>/dev/null || true
    fi
    [ -n "$host_pid" ] && kill "$host_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap stop EXIT
trap 'exit 130' INT TERM

# kB of one field of /proc/PID/status; empty when the process is gone.
field() {
    awk -v f="$2:" '$1 == f { print $2 }' "/proc/$1/status" 2>/dev/null || true
}

XDG_CONFIG_HOME="$work/config" QT_QPA_PLATFORM=offscreen \
    "$host" --offscreen "$work/shots" --seconds "$seconds" --units "$units" "${extra[@]}" \
    >"$work/host.out" 2>&1 &
host_pid=$!
start=$(date +%s)
echo "elapsed_s,host_rss_kb,host_hwm_kb,agent_rss_kb,agent_hwm_kb" >"$csv"
echo "Soak: $units units for $seconds s, a sample every $interval s into $csv"

next=0
while kill -0 "$host_pid" 2>/dev/null; do
    now=$(($(date +%s) - start))
    # At the end of its run the host opens a window for its screenshots, which is no growth.
    if [ "$now" -ge "$next" ] && [ "$now" -lt "$seconds" ]; then
        [ -n "$agent_pid" ] && [ -d "/proc/$agent_pid" ] || agent_pid=$(pgrep -P "$host_pid" -x demoagent | head -n 1 || true)
        rss=$(field "$host_pid" VmRSS)
        [ -n "$rss" ] || break
        line="$now,$rss,$(field "$host_pid" VmHWM)"
        if [ -n "$agent_pid" ]; then
            line="$line,$(field "$agent_pid" VmRSS),$(field "$agent_pid" VmHWM)"
        else
            line="$line,,"
        fi
        echo "$line" >>"$csv"
        next=$((next + interval))
    fi
    sleep 1
done
wait "$host_pid" && status=0 || status=$?
host_pid=
echo "Host finished with status $status:"
sed 's/^/  /' "$work/host.out"

summarise "$csv"
exit "$status"
