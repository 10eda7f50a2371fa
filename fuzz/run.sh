#!/bin/sh
# Builds the fuzz targets, replays their corpora and lets each of them search for a while.
#   fuzz/run.sh SECONDS [target ...]     script, includes, readers, formats, run, field, records,
#                                        keys, lsp (all); 0 seconds only replay
# New inputs of a search stay in build/asan/found/, where the next search begins. A finding ends the
# run with an error, and the input that causes it stays in build/asan/findings/.
set -eu
cd "$(dirname "$0")/.."
seconds=${1:?how many seconds?}
shift
[ $# -gt 0 ] || set -- script includes readers formats run field records keys lsp
build=build/asan
scripts/setup.sh fuzz
mkdir -p $build/findings
programs=""
for target in "$@"; do programs="$programs fuzz_$target"; done
log=$build/log
if ! { cmake --preset asan && cmake --build --preset asan --target $programs; } >$log 2>&1; then
    cat $log
    exit 1
fi
python3 fuzz/make_corpus.py $build/corpus

# run TARGET WORK OPTION...: runs a target with options of libFuzzer and prints its final figures.
# WORK is the verb of the messages, in the past tense.
run() {
    target=$1
    work=$2
    shift 2
    log=$build/log-$target
    # Full stack traces of allocations cost a tenth of the time and are seldom needed.
    if ! ASAN_OPTIONS=malloc_context_size=6 UBSAN_OPTIONS=print_stacktrace=1 \
        $build/fuzz/fuzz_$target -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
        -artifact_prefix=$build/findings/$target- "$@" \
        $build/found/$target fuzz/corpus/$target $build/corpus/$target >$log 2>&1; then
        grep -aE -A 25 -m 1 'Violated: |runtime error:|ERROR: ' $log | cut -c -200
        echo "fuzz_$target: a finding while it $work; the full output is in $log"
        sed -n "s|.*Test unit written to \(.*\)|repeat with: $build/fuzz/fuzz_$target \1|p" $log
        return 1
    fi
    sed -n "s|^#\([0-9]*\)\tDONE *\(.*\) lim:.*|fuzz_$target $work: \1 runs, \2|p" $log
}

fuzz() {
    for target in "$@"; do
        mkdir -p $build/found/$target
        run $target replayed -runs=0
        # The accounts that libFuzzer keeps to choose inputs take a third of the time of whole runs.
        [ $target = run ] && choice=-entropic=0 || choice=-entropic=1
        [ "$seconds" = 0 ] ||
            run $target searched $choice -max_total_time="$seconds" -dict=fuzz/tessaron.dict
    done
}

# A target uses one core, so two of them run at a time.
even=""
odd=""
for target in "$@"; do
    next="$odd $target"
    odd=$even
    even=$next
done
fuzz $even &
fuzz $odd
wait $!
