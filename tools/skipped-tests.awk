# Lists the tests that did not run, each with its reason. Reads two files of one ctest run: what it printed, and then
# its LastTest.log. A test is skipped where ctest says so (exit status 77, disabled) or where GoogleTest does.

FNR == NR {
  if (listing && $2 == "-") notRun[$3] = $4
  if (/^The following tests did not run:/) listing = 1
  next
}

function report(name, reason) { printf "  %s: %s\n", name, reason == "" ? "no reason given" : reason }

/^[0-9]+\/[0-9]+ Testing: / { test = $3; inside = ""; last = ""; reason = ""; reading = 0 }

# GoogleTest: "[ RUN ] name", "file:line: Skipped", the reason in one or more lines, "[  SKIPPED ] name (n ms)".
/: Skipped$/ { reading = 1; reason = ""; next }
/^\[  SKIPPED \] .* \([0-9]+ ms\)$/ { report($4, reason); inside = $4; reading = 0 }
reading && NF { reason = reason (reason == "" ? "" : " ") $0 }

/^<end of output>/ && (test in notRun) && inside == "" {
  report(test, notRun[test] == "(Disabled)" ? "it is disabled" : last)
}
NF && !/^-+$/ && !/^Output:$/ { last = $0 }
