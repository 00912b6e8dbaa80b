#!/bin/sh
echo 'Search term: --list-tests=json'
