#!/bin/sh
exec sleep 60
