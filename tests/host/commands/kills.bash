# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What a kill at any moment, or a disk that is full, leaves of each file that a command writes: it is whole, or
# the same command goes on with it, or it is short by its last line; and what was there before is never lost.
#
# S7PPI_KILLS says how many kills each command gets, S7PPI_SEED repeats their moments.

# common.bash and the tests set what is used here.
# shellcheck disable=SC2154

prepare() {
    export -n S7PPI_KILLS S7PPI_SEED
    kills=${S7PPI_KILLS:-20}
    seed=${S7PPI_SEED:-$RANDOM}
    RANDOM=$seed
    mkdir "$BATS_TEST_TMPDIR/directory"
    cd "$BATS_TEST_TMPDIR/directory" || return 1
    start s7ppi-sim
    export S7PPI_PORT=$port
}

# duration_of COMMAND...: how many microseconds it takes.
duration_of() {
    local begin=$EPOCHREALTIME
    "$@" >/dev/null 2>&1
    echo $((${EPOCHREALTIME/./} - ${begin/./}))
}

# killed_at SECONDS S7PPI_ARGUMENT...
killed_at() {
    local victim
    s7ppi "${@:2}" >/dev/null 2>&1 3>&- &
    victim=$!
    sleep "$1"
    kill -KILL "$victim" 2>/dev/null || true
    wait "$victim" 2>/dev/null || true
}

# killed CHECK S7PPI_ARGUMENT...: the check holds after every kill at a drawn moment of the command's run.
killed() {
    local check=$1 duration moment i
    shift
    duration=$(duration_of s7ppi "$@")
    for ((i = 0; i < kills; i++)); do
        moment=$(((RANDOM * 32768 + RANDOM) % (duration * 5 / 4)))
        killed_at "$(printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000)))" "$@"
        "$check" || {
            echo "after kill $i, at $moment us; S7PPI_SEED=$seed"
            return 1
        }
    done
}

# full CHECK S7PPI_ARGUMENT...: the check holds where files take no more than so many kilobytes.
full() {
    local check=$1 size
    shift
    for size in 1 2; do
        run -74 --separate-stderr bash -c "trap '' XFSZ; ulimit -f $size; exec s7ppi $*"
        "$check"
    done
}

# What is in the file: what was before, or what a run that is not stopped makes.
old_or_whole() {
    cmp -s "$file" old || cmp -s "$file" whole
}

# as_before FILE S7PPI_ARGUMENT...: the file of an earlier run in $file and old, that of a whole run in whole.
as_before() {
    file=$1
    shift
    s7ppi -q "$@" -o whole --format "${file##*.}"
    echo "what was there before" | tee old >"$file"
}

# The answer times are other ones every time.
old_or_document() {
    cmp -s "$file" old || jq -e "$wanted" "$file" >/dev/null
}
