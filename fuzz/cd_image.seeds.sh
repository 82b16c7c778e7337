#!/usr/bin/env bash
# Writes seed images for the cd_image fuzz target into OUTDIR: a CUE sheet,
# a zero byte, then the BIN (a few sectors of a pattern).
set -euo pipefail
out=${1:?usage: cd_image.seeds.sh OUTDIR}
mkdir -p "$out"
bin() { head -c $(($1 * 2352)) /dev/zero | tr '\0' '\125'; }
{ printf 'FILE "image.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n  TRACK 02 AUDIO\n    INDEX 01 00:00:04\n\0'; bin 8; } >"$out/two_tracks"
{ printf 'REM GENRE Test\nPERFORMER "P"\nTITLE "T"\nFILE "image.bin" BINARY\n  TRACK 01 AUDIO\n    TITLE "One"\n    PREGAP 00:00:02\n    INDEX 01 00:00:00\n  TRACK 02 MODE1/2352\n    INDEX 00 00:00:03\n    INDEX 01 00:00:05\n\0'; bin 10; } >"$out/cdtext_data"
{ printf 'FILE image.bin BINARY\r\n TRACK 1 AUDIO\r\n  FLAGS DCP PRE\r\n  INDEX 1 0:0:0\r\n\0'; bin 3; } >"$out/bare_crlf"
{ printf 'FILE "image.cue" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n\0'; bin 1; } >"$out/self_reference"
