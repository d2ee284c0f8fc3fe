# Shared by the shell checks (sourced): a scratch directory that goes at
# exit, and fail, which reports a problem and counts it in $failures.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}
