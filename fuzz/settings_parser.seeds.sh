#!/usr/bin/env bash
# The settings_parser fuzz target starts from the settings_reader seeds.
exec "$(dirname "$0")/settings_reader.seeds.sh" "$@"
