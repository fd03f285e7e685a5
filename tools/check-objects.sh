#!/usr/bin/env bash
# Checks the compiled library against the column rules:
#   - no function outside omn::t7 uses an SSE3 instruction (a template's
#     demangled name starts with its return type, which is skipped);
#   - no function uses anything newer (SSSE3, SSE4, AVX and up);
#   - the dispatch table is constant data: the frame has no run-time
#     initialiser that the load-time constructor could run ahead of.
# Usage: check-objects.sh libomns.a
set -euo pipefail
lib=$1
case "$(uname -m)" in x86_64|i?86) ;; *) echo "not x86: nothing to check"; exit 0 ;; esac

objdump -d --no-show-raw-insn -C "$lib" | awk '
  BEGIN {
    split("addsubpd addsubps haddpd haddps hsubpd hsubps lddqu movddup movshdup movsldup fisttp fisttpl fisttpll fisttps monitor mwait", a, " ")
    for (i in a) sse3[a[i]] = 1
    split("pshufb palignr pabsb pabsw pabsd phaddw phaddd phaddsw phsubw phsubd phsubsw pmaddubsw pmulhrsw psignb psignw psignd " \
          "blendpd blendps blendvpd blendvps pblendw pblendvb dppd dpps extractps insertps mpsadbw packusdw pcmpeqq pcmpgtq " \
          "pextrb pextrd pextrq pinsrb pinsrd pinsrq pmaxsb pmaxsd pmaxud pmaxuw pminsb pminsd pminud pminuw pmovsxbw pmovsxbd " \
          "pmovsxbq pmovsxwd pmovsxwq pmovsxdq pmovzxbw pmovzxbd pmovzxbq pmovzxwd pmovzxwq pmovzxdq pmuldq pmulld ptest " \
          "roundpd roundps roundsd roundss movntdqa pcmpestri pcmpestrm pcmpistri pcmpistrm crc32 popcnt lzcnt tzcnt", b, " ")
    for (i in b) newer[b[i]] = 1
    bad = 0
  }
  /^[0-9a-f]+ <.*>:$/ { fn = $0; sub(/^[0-9a-f]+ </, "", fn); sub(/>:$/, "", fn); next }
  /^ +[0-9a-f]+:\t/ {
    split($0, parts, "\t"); ins = parts[2]; sub(/ .*/, "", ins)
    if (ins in newer || (ins ~ /^v[a-z]/ && ins !~ /^ver[rw]$/)) { printf "too new: %s in %s\n", ins, fn; bad = 1 }
    else if (ins in sse3 && fn !~ /^([^ (<]+ )*omn::t7::/) { printf "SSE3 outside t7: %s in %s\n", ins, fn; bad = 1 }
  }
  END { exit bad }
'
if nm "$lib" 2>/dev/null | grep -q '_GLOBAL__sub_I_dispatch'; then
  echo "the dispatch table is initialised at run time"
  exit 1
fi
echo "object checks passed"
