#!/bin/sh
# Stands for what runs programs of another processor.
test "$1" = 'two words' || exit 3
echo "$3 $4" >>emulated.txt
shift
exec "$@"
