#!/usr/bin/env bats
# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# s7ppi publish, while its broker is killed at moments that are drawn by lot, for S7PPI_SOAK_SECONDS. S7PPI_SEED
# draws other moments.

# bats runs every test in a shell of its own and sets the variables of run.
# shellcheck disable=SC2030,SC2031,SC2154

load common
load broker

# A broker forgets what it took and has not passed on yet when it is killed; nobody who publishes can mend that. So it
# passes everything on at once, knows the subscriber from its file, and is killed only while the subscriber is there.
settings_of_broker() {
    printf '%s\n' "allow_anonymous true" "persistence true" "persistence_location $BATS_TEST_TMPDIR/" \
        "autosave_interval 0" "queue_qos0_messages true" "max_queued_messages 0" "max_inflight_messages 0"
}
restart_broker() {
    local settings
    mapfile -t settings < <(settings_of_broker)
    broker "${settings[@]}"
}
subscriptions_are_kept() {
    [ -s "$BATS_TEST_TMPDIR/mosquitto.db" ]
}
# How often the subscriber and the publisher came.
visits() {
    grep -c " as $1 " "$BATS_TEST_TMPDIR/broker.log"
}
both_are_there() {
    [ "$(visits listener)" -ge "$1" ] && [ "$(visits publisher)" -ge "$1" ]
}

# random_pause FROM TO: hundredths of a second.
random_pause() {
    local pause=$(($1 + RANDOM % ($2 - $1 + 1)))
    sleep "$((pause / 100)).$(printf '%02d' $((pause % 100)))"
}

# The numbers that the controller said of its double word, as the trace has them, each once; those that the
# subscriber got, when each came first; and their times.
polled() {
    sed -n 's/.* < 68 19 .* ff 04 00 20 \(..\) \(..\) \(..\) \(..\) .. 16$/\1\2\3\4/p' "$BATS_TEST_TMPDIR/trace" |
        uniq | while read -r number; do
        echo $((16#$number))
    done
}
first_received() {
    sed -n 's|^t/VD0 . {"value":\([0-9]*\),"time":"\([^"]*\)","quality":"good"}$|\1 \2|p' "$BATS_TEST_TMPDIR/got" |
        awk '!seen[$1]++'
}
dropped() {
    retained t/health | jq .dropped
}
# Everything but what was counted as dropped, and by then the trace is not longer than it was.
all_came() {
    [ "$(comm -23 <(polled | sort) <(first_received | cut -d ' ' -f 1 | sort) | wc -l)" -le "$(dropped)" ]
}

descriptors() {
    find "/proc/$publisher/fd" -mindepth 1 | wc -l
}
resident() {
    awk '$1 == "VmRSS:" { print $2 }' "/proc/$publisher/status"
}

@test "every value comes, in the order of time, or is counted as dropped, whenever the broker is killed" {
    local seed=${S7PPI_SEED:-1} seconds=${S7PPI_SOAK_SECONDS:-10} kills=0 warm_memory='' warm_descriptors=''
    restart_broker
    RANDOM=$seed
    mosquitto_sub -p "$broker_port" -q 0 -c -i listener -t t/VD0 -F '%t %r %p' >"$BATS_TEST_TMPDIR/got" \
        2>"$BATS_TEST_TMPDIR/subscriber.log" 3>&- &
    eventually visits listener
    mosquitto_pub -p "$broker_port" -t probe -m '' # which the broker answers after what came before it
    kill -USR1 "$broker"
    eventually subscriptions_are_kept
    start s7ppi-sim --live VD0=counter:50/s
    publish --port "$port" --client-id publisher --trace "$BATS_TEST_TMPDIR/trace" VD0
    eventually both_are_there 1

    SECONDS=0
    while [ "$SECONDS" -lt "$seconds" ]; do
        random_pause 5 150
        kill -KILL "$broker"
        wait "$broker" || true
        kills=$((kills + 1))
        random_pause 0 100
        restart_broker
        eventually both_are_there $((kills + 1))
        if [ "$kills" -eq 2 ]; then
            warm_memory=$(resident)
            warm_descriptors=$(descriptors)
        fi
    done
    sleep 0.5 # for what is in the queue
    local memory descriptors
    memory=$(resident)
    descriptors=$(descriptors)
    kill -TERM "$publisher"
    finish
    [ "$status" -eq 143 ]
    eventually all_came

    printf 'seed %d, %d s: %d kills, %d values polled, %d received, %d of them once more, %d dropped\n' "$seed" \
        "$SECONDS" "$kills" "$(polled | wc -l)" "$(first_received | wc -l)" \
        $(($(grep -c '^t/VD0 . .*"good"}$' "$BATS_TEST_TMPDIR/got") - $(first_received | wc -l))) "$(dropped)" >&3
    printf 'publisher: %d KiB and %d descriptors after two kills, %d KiB and %d descriptors at the end\n' \
        "$warm_memory" "$warm_descriptors" "$memory" "$descriptors" >&3
    [ "$(polled | wc -l)" -gt $((seconds * 5)) ]
    first_received | cut -d ' ' -f 1 | sort -n -c
    first_received | cut -d ' ' -f 2 | sort -c
    [ "$descriptors" -le "$warm_descriptors" ]
    [ "$memory" -le $((warm_memory + 1024)) ]
}
