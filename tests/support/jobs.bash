# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# What all tests in bash share that start programs in the background.

# end_test: tells what came of the last command under run, when the test has failed; bats shows it only then. Then it
# ends what the test has started and what still runs, and waits for the last of it, as what goes on writing while
# bats removes the test's directory makes that fail.
end_test() {
    local started i
    if [ -z "${BATS_TEST_COMPLETED:-}" ] && [ -n "${status:-}" ]; then
        printf 'exit code %s\nstdout: %s\nstderr: %s\n' "$status" "${output:-}" "${stderr:-}" | head -c 4000
    fi
    mapfile -t started < <(jobs -p)
    [ "${#started[@]}" -gt 0 ] || return 0
    kill "${started[@]}" 2>/dev/null || true
    kill -CONT "${started[@]}" 2>/dev/null || true
    for ((i = 0; i < 200; i++)); do
        [ -n "$(jobs -pr)" ] || break
        sleep 0.05
    done
    kill -KILL "${started[@]}" 2>/dev/null || true
    wait
}
