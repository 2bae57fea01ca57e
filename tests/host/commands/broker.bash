# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What the tests of s7ppi publish share: a broker of their own, a subscriber, the publisher.

# bats sets the variables of run.
# shellcheck disable=SC2034

setup_file() {
    PATH=$PATH:/usr/sbin
    export MOSQUITTO
    MOSQUITTO=$(command -v mosquitto)
}

# broker [LINE...]: starts one with these settings besides its port, which is in $broker_port; one that runs already
# is started anew on the same.
broker() {
    local try i
    for ((try = 0; try < 20; try++)); do
        broker_port=${broker_port:-$((RANDOM % 20000 + 30000))}
        printf '%s\n' "user $(id -un)" "listener $broker_port 127.0.0.1" "${@-allow_anonymous true}" \
            >"$BATS_TEST_TMPDIR/broker.conf"
        "$MOSQUITTO" -c "$BATS_TEST_TMPDIR/broker.conf" >>"$BATS_TEST_TMPDIR/broker.log" 2>&1 3>&- &
        broker=$!
        for ((i = 0; i < 200; i++)); do
            kill -0 "$broker" 2>/dev/null || break
            if (exec 9<>"/dev/tcp/127.0.0.1/$broker_port") 2>/dev/null; then
                url=mqtt://127.0.0.1:$broker_port
                return
            fi
            sleep 0.05
        done
        broker_port=
    done
    return 1
}

# A signal that comes before its loop has begun has no effect on it.
stop_broker() {
    while kill "$broker" 2>/dev/null; do
        sleep 0.05
    done
    wait "$broker" || true
}

# subscribe TOPIC [OPTION...]: all messages, in $BATS_TEST_TMPDIR/got: topic, whether it was retained, payload.
got() {
    cat "$BATS_TEST_TMPDIR/got"
}
subscribe() {
    mosquitto_sub -p "$broker_port" -q 1 -t "$1" -t probe -F '%t %r %p' "${@:2}" >>"$BATS_TEST_TMPDIR/got" 3>&- 2>/dev/null &
    eventually hears
}
hears() {
    mosquitto_pub -p "$broker_port" -t probe -m ''
    has_got '^probe '
}
has_got() {
    grep -qE "$1" "$BATS_TEST_TMPDIR/got"
}

# retained TOPIC: the payload that a late subscriber gets.
retained() {
    mosquitto_sub -p "$broker_port" -t "$1" -C 1 -W 5 "${@:2}"
}
is_retained() {
    retained "$1" 2>/dev/null | grep -qE "$2"
}

# publish ARGUMENT...: in the background, with a spool of the test's own; its messages are in $BATS_TEST_TMPDIR/told.
publish() {
    s7ppi publish --broker "$url" --topic t --spool "$BATS_TEST_TMPDIR/spool" --interval 20 "$@" \
        >"$BATS_TEST_TMPDIR/out" 2>>"$BATS_TEST_TMPDIR/told" 3>&- &
    publisher=$!
}
told() {
    grep -qF -- "$1" "$BATS_TEST_TMPDIR/told"
}
ended() {
    ! kill -0 "$publisher" 2>/dev/null
}
# The exit code of what was started last.
finish() {
    eventually ended
    status=0
    wait "$publisher" || status=$?
}
