#!/usr/bin/env bash
# Writes seed replies for the cddb_reply fuzz target into OUTDIR: the query
# reply, a zero byte, then the read reply.
set -euo pipefail
out=${1:?usage: cddb_reply.seeds.sh OUTDIR}
mkdir -p "$out"
record='210 rock 2a09d803 CD database entry follows (until terminating `.'"'"')\r\n# xmcd\r\n#\r\n# Track frame offsets:\r\n#\t150\r\n#\t4650\r\n#\t9150\r\n#\r\n# Disc length: 182 seconds\r\n#\r\nDISCID=2a09d803\r\nDTITLE=Some Artist / Some Album\r\nDYEAR=1999\r\nDGENRE=Rock\r\nTTITLE0=One\r\nTTITLE1=Guest / Two\r\nTTITLE2=Three\r\nEXTD=\r\nEXTT0=\r\nEXTT1=\r\nEXTT2=\r\nPLAYORDER=\r\n.\r\n'
{ printf '200 rock 2a09d803 Some Artist / Some Album\r\n\0'; printf "$record"; } >"$out/exact"
{ printf '211 Found inexact matches, list follows (until terminating `.'"'"')\r\nrock 2a09d803 Some Artist / Some Album\r\njazz 2a09d804 Other / Thing\r\n.\r\n\0'; printf "$record"; } >"$out/inexact"
printf '202 No match found\r\n' >"$out/none"
{ printf 'HTTP/1.1 200 OK\r\nContent-Length: 44\r\n\r\n200 rock 2a09d803 Some Artist / Some Album\r\n\0'; printf 'HTTP/1.0 404 Not Found\r\n\r\n'; } >"$out/http_error"
