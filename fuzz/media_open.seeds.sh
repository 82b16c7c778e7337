#!/usr/bin/env bash
# Writes a small seed corpus for fuzz/media_open.cpp into OUTDIR: short tones
# as WAV (16-bit, 8-bit mono, float), MP3, OGG Vorbis, WMA and FLAC.
set -euo pipefail
out=${1:?usage: media_open.seeds.sh OUTDIR}
mkdir -p "$out"
tone() {  # name seconds channels rate codec-args...
    local name=$1 secs=$2 ch=$3 rate=$4
    shift 4
    ffmpeg -nostdin -loglevel error -y -f lavfi \
        -i "sine=frequency=1000:sample_rate=$rate:duration=$secs" -ac "$ch" "$@" "$out/$name"
}
tone s16.wav 0.1 2 44100 -c:a pcm_s16le
tone u8_mono.wav 0.1 1 22050 -c:a pcm_u8
tone f32.wav 0.05 2 48000 -c:a pcm_f32le
tone tone.mp3 0.3 2 44100 -c:a libmp3lame -b:a 32k
tone tone.ogg 0.3 2 44100 -c:a libvorbis -q:a 0
tone tone.wma 0.3 2 44100 -c:a wmav2 -b:a 32k
tone tone.flac 0.1 1 44100 -c:a flac
