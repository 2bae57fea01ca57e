# Copyright (c) 2026 The s7ppi authors
# SPDX-License-Identifier: MIT
#
# The lock files of serial ports, for tests of both programs.

# lock_of PORT: the name of the lock file of a port that is open, in the first directory that has one.
lock_of() {
    local directory name
    name=LCK..$(tr / _ <<<"${1#/dev/}")
    for directory in /var/lock /etc/locks /var/spool/locks /var/spool/uucp /tmp /var/tmp; do
        if [ -e "$directory/$name" ]; then
            echo "$directory/$name"
            return
        fi
    done
    return 1
}
