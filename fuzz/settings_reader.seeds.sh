#!/usr/bin/env bash
# Writes seed settings files for the settings_reader fuzz target into OUTDIR.
set -euo pipefail
out=${1:?usage: settings_reader.seeds.sh OUTDIR}
mkdir -p "$out"

# A file as the store writes it.
cat > "$out/store_written.conf" <<'INI'
; Mixora settings. Numbers are 32-bit; real values are stored as the bit
; pattern of a 32-bit float; texts are quoted.
[General]
EqFilterTypeDeckA="Hanning"
EqLatencyInNotifiesDeckB=10
deckAMode=1
deckBleftHiRes=655
deckBbottomHiRes=325
deckAhasMovedHiRes=1
mainDeckALevel=1060320051
mainMixerXFaderCurveParameter=3212836864
showHiRes=1
soundDeviceMain="USB Audio \"Phones\", analog \x1f\x61"
timeDisplayModeDeckA="Elapsed In Track:"
turntableModeDeckA="@@Drag"
INI

# A file as QSettings writes it: unquoted texts, CRLF, other sections.
printf '[General]\r\nturntableModeDeckB=Drag\r\nmainMixerNumGraphs=4\r\nthreeDGraphMode=3D Plot\r\nbeatLEDBandIndex=-1\r\nx=@Invalid()\r\nlist="a", "b"\r\n\r\n[Other]\r\nEqOnStateDeckA=1\r\n' \
    > "$out/qsettings_written.conf"

# Wrong types and odd escapes.
cat > "$out/wrong_types.conf" <<'INI'
mainMixerNumGraphs="3"
turntableModeDeckA=12
deckGraphNumChannelsDeckB=99999999999
deckBeatFindModeDeckA="Man\t\101\x263a"
# a comment
INI

# Cut off inside a quoted text.
printf '[General]\nmainDeckALevel=1048576000\nturntableModeDeckA="Dr' > "$out/truncated.conf"

# A broken section header and a line without "=".
printf '\xef\xbb\xbf[Gen\nnumBandsInPlotDeckA=6\n[General]\ngarbage line\ntitleBarsOnState=0\n' \
    > "$out/broken_lines.conf"
