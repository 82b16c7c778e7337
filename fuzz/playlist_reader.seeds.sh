#!/usr/bin/env bash
# Writes a seed corpus for the playlist_reader fuzz target into OUTDIR:
# small M3U and PLS files with the formats' usual and odd shapes.
set -euo pipefail
out=${1:?usage: playlist_reader.seeds.sh OUTDIR}
mkdir -p "$out"
printf '#EXTM3U\n#EXTINF:187,Artist - Title\n/music/a.mp3\n#EXTINF:-1,\nrel/b.ogg\n' >"$out/basic.m3u"
printf '#EXTM3U\r\n#EXTINF:12\r\n../c.wav\r\n#EXTVLCOPT:x\r\n\r\n#EXTINF:3,t\r\nhttp://h/s\r\n' >"$out/crlf.m3u"
printf '#EXTM3U\n/bare/path.mp3\nanother.mp3\n' >"$out/bare.m3u"
printf '\xef\xbb\xbf#EXTM3U\n#EXTINF:5,caf\xe9\nfile:///m/with%%20space.mp3\n' >"$out/latin1.m3u"
printf '[playlist]\nFile1=/m/a.mp3\nTitle1=A\nLength1=100\nNumberOfEntries=1\nVersion=2\n' >"$out/basic.pls"
printf '[playlist]\nFile1=a.mp3\nLength1=100\nFile2=b.mp3\nTitle2=B\nLength2=50\n' >"$out/quirk.pls"
printf '[playlist]\r\nFile1=x=y.mp3\r\nTitle1=t=u\r\nLength1=  -7\r\nFile2=\r\n' >"$out/odd.pls"
printf '#EXTINF:1,no header\n/x.mp3\n' >"$out/noheader.m3u"
