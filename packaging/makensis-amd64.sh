#!/bin/sh
# makensis, for an installer that is itself a program of 64 bits.
exec makensis "-XTarget amd64-unicode" "$@"
