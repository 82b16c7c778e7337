#!/usr/bin/env bash
# Writes seed files for the tag_title fuzz target into OUTDIR: short tones
# with a title in each kind of tag, each prefixed with the byte that picks its
# extension in the target (0 .mp3, 1 .flac, 2 .ogg, 3 .wav, 5 .m4a, 6 .wma).
set -euo pipefail
out=${1:?usage: tag_title.seeds.sh OUTDIR}
mkdir -p "$out"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
seed() {  # name selector codec-args...
    local name=$1 sel=$2
    shift 2
    ffmpeg -nostdin -loglevel error -y -f lavfi -i "sine=frequency=1000:sample_rate=8000:duration=0.05" \
        -ac 1 -metadata title="Seed title" -metadata artist="Seed artist" "$@" "$tmp/$name"
    { printf "\\x$(printf %02x "$sel")"; cat "$tmp/$name"; } >"$out/$name"
}
seed v24.mp3 0 -c:a libmp3lame -b:a 8k -id3v2_version 4
seed v23.mp3 0 -c:a libmp3lame -b:a 8k -id3v2_version 3 -write_id3v1 1
seed tone.flac 1 -c:a flac
seed tone.ogg 2 -c:a libvorbis -q:a 0
seed info.wav 3 -c:a pcm_s16le
seed tone.m4a 5 -c:a aac -b:a 16k
seed tone.wma 6 -c:a wmav2 -b:a 32k
