# Counts the system calls strace saw between each pair of getppid() calls
# of bench_calls, and names each pair after the lines bench_calls printed
# (given first, as NAMES=file).
BEGIN {
    while ((getline name < NAMES) > 0) names[++count] = name
}
/getppid\(/ {
    if (inside) {
        printf "%-50s %5d system calls:", names[++done], calls
        for (call in seen) printf " %s %d", call, seen[call]
        printf "\n"
        delete seen
    }
    inside = !inside
    calls = 0
    next
}
inside && /^[0-9]* *[a-z_0-9]+\(/ {
    line = $0
    sub(/^[0-9]* */, "", line)
    sub(/\(.*/, "", line)
    ++calls
    ++seen[line]
}
