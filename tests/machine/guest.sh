#!/bin/bash
# The guest's end of the second serial port. A line "NUMBER SECONDS COMMAND" (base64) is answered by "NUMBER STATUS
# OUTPUT" (base64), within these seconds and some: by its number the other end knows an answer that came too late.
exec < /dev/ttyS1 > /dev/ttyS1
stty raw -echo
echo ready
while read -r number seconds command; do
  base64 -d <<< "$command" > /run/command
  # A file, not a pipe: what the command leaves running must not hold the answer up.
  timeout --kill-after=5 "$seconds" bash /run/command < /dev/null > /run/output 2>&1
  echo "$number $? $(base64 -w0 /run/output)"
done
