#!/usr/bin/env bash
# fillpage on saved pages: the filled page and the request text byte for byte
# against the expected files, and the exit status of what it can't fill.
# Usage: fillpage_test.sh PAGES WORK FILLPAGE MAKEKEYDB [EMULATOR]
# (EMULATOR runs Windows programs: the Windows build compares the same bytes.)
set -u
pages=$1 work=$2 fillpage=$3 makekeydb=$4
run=()
[ $# -ge 5 ] && run=("$5")
failed=0

check() {  # what expected actual
  if [ "$2" != "$3" ]; then
    echo "FAIL: $1: expected $2, got $3"
    failed=1
  fi
}

rm -rf "$work" && mkdir -p "$work" || exit 1
"${run[@]}" "$makekeydb" "$pages/order_form.keys.txt" "$work/order.dat" >/dev/null || exit 1

# The default scan (every option Never): text fields from the current key on,
# check boxes as the page has them, names and values as the page writes them.
"${run[@]}" "$fillpage" "$pages/order_form.htm" www.example.com/shop/order.htm "$work/order.dat" \
  "$work/filled.htm" --current-key 0 >"$work/stdout" 2>"$work/stderr"
check "default scan status" 0 $?
cmp "$pages/order_form.filled.htm" "$work/filled.htm" || failed=1
check "default scan prints nothing" "" "$(cat "$work/stdout" "$work/stderr")"

# Direct post: the request text on stdout, names as the page writes them, and
# the check box ticked by its match.
"${run[@]}" "$fillpage" --direct-post "$pages/order_form.htm" www.example.com/shop/order.htm "$work/order.dat" \
  "$work/posted.htm" --current-key 0 >"$work/request.txt"
check "direct post status" 0 $?
cmp "$pages/order_form.request.txt" "$work/request.txt" || failed=1
grep -q '<input type="checkbox" checked name="news" value="yes" >' "$work/posted.htm" ||
  { echo "FAIL: direct post leaves the check box unchecked"; failed=1; }

# Without a current key the text fields keep the page's values.
"${run[@]}" "$fillpage" "$pages/order_form.htm" www.example.com/shop/order.htm "$work/order.dat" "$work/nokey.htm"
grep -q 'name="FullName" value="your name" >' "$work/nokey.htm" ||
  { echo "FAIL: without a current key the page's value is not kept"; failed=1; }

# What can't be filled: status 1 and a message; a wrong command line: status 2.
expect_failure() {  # status message-part args...
  local status=$1 part=$2
  shift 2
  "${run[@]}" "$fillpage" "$@" >/dev/null 2>"$work/stderr"
  check "status of fillpage $*" "$status" $?
  grep -q -- "$part" "$work/stderr" || { echo "FAIL: fillpage $*: no \"$part\" in: $(cat "$work/stderr")"; failed=1; }
}
expect_failure 1 "key database" "$pages/order_form.htm" h/p "$work/missing.dat" "$work/out.htm"
expect_failure 1 "can't read the page" "$work/missing.htm" h/p "$work/order.dat" "$work/out.htm"
expect_failure 1 "no form that can be filled" "$pages/get_only.htm" h/p "$work/order.dat" "$work/out.htm"
expect_failure 1 "Can't open file for reading" "$pages/order_form.htm" h/p "$work/order.dat" "$work/no/out.htm"
expect_failure 2 "usage" "$pages/order_form.htm" h/p "$work/order.dat" "$work/out.htm" --current-key x

[ $failed -eq 0 ] && echo "fillpage: all checks passed"
exit $failed
