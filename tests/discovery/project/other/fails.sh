#!/bin/sh
echo 'Error: "the; [database] ${is} missing"' >&2
exit 3
