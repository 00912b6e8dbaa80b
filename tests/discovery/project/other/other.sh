#!/bin/sh
# A listing in another form than that of today.
echo '{"count":2,"tests":[{"id":"a"},'
echo '{"id":"b","duration":"short","tags":[]}]}'
