#!/bin/sh
# Runs a command on a display of its own, with a home and helper programs of its own. A pasteboard server that is shared
# goes down with the display of whoever began it, in the middle of another's test.
set -u
folder=$(mktemp -d)
HOME=$folder TEMP=$folder xvfb-run -a "$@"
result=$?

# Prints the processes that were started with this folder.
ours() {
    for process in /proc/[0-9]*; do
        grep -zqx "TEMP=$folder" "$process/environ" 2>/dev/null && echo "${process#/proc/}"
    done
}
# The helper programs make themselves independent; one may be about to.
tries=0
while left=$(ours); [ -n "$left" ] && [ $tries -lt 50 ]; do
    # shellcheck disable=SC2086 # one number or several
    kill $left 2>/dev/null
    tries=$((tries + 1))
    sleep 0.1
done
rm -rf "$folder"
exit $result
