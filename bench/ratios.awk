# Reads the CSV of bench_qx25 (aggregates only) and prints every median,
# then each comparison as the ratio of two medians of the same run.
function to_ns(value, unit) {
    if (unit == "us") return value * 1e3
    if (unit == "ms") return value * 1e6
    if (unit == "s") return value * 1e9
    return value
}
function ratio(label, numerator, denominator, target) {
    if (!(numerator in median) || !(denominator in median)) return
    printf "%-58s %8.3f   %s\n", label, median[numerator] / median[denominator], target
}
$1 ~ /_median"?$/ {
    name = $1
    gsub(/"/, "", name)
    sub(/_median$/, "", name)
    median[name] = to_ns($4, $5)
    order[++count] = name
}
END {
    print "== medians (CPU time)"
    for (i = 1; i <= count; ++i) {
        ns = median[order[i]]
        if (ns >= 1e6) printf "%-40s %12.3f ms\n", order[i], ns / 1e6
        else if (ns >= 1e3) printf "%-40s %12.3f us\n", order[i], ns / 1e3
        else printf "%-40s %12.1f ns\n", order[i], ns
    }
    print "== ratios (same run)"
    ratio("stox25 / inet_pton, per address", "BM_stox25", "BM_inet_pton", "target <= 0.5")
    ratio("stox25 with class check / inet_pton", "BM_stox25_checked", "BM_inet_pton", "")
    ratio("x25tos / inet_ntop, per address", "BM_x25tos", "BM_inet_ntop", "target <= 0.25")
    ratio("x25tos with class check / inet_ntop", "BM_x25tos_checked", "BM_inet_ntop", "")
    n = split("100 1000 10000 100000", sizes, " ")
    for (i = 1; i <= n; ++i)
        ratio("getxhostbyname / fgets loop, " sizes[i] " lines", "BM_getxhostbyname/" sizes[i],
              "BM_fgets_loop/" sizes[i], "target <= 1")
    for (i = 1; i <= n; ++i)
        ratio("getxhostbyaddr / fgets loop, " sizes[i] " lines", "BM_getxhostbyaddr/" sizes[i],
              "BM_fgets_loop/" sizes[i], "")
    for (i = 2; i <= n; ++i) {
        ratio("growth of getxhostbyname, " sizes[i] " / " sizes[i - 1] " lines",
              "BM_getxhostbyname/" sizes[i], "BM_getxhostbyname/" sizes[i - 1], "linear: about 10")
        ratio("growth of getxhostbyaddr, " sizes[i] " / " sizes[i - 1] " lines",
              "BM_getxhostbyaddr/" sizes[i], "BM_getxhostbyaddr/" sizes[i - 1], "linear: about 10")
    }
    split("1 16 255", links, " ")
    for (i = 1; i <= 3; ++i)
        ratio("link discovery / read of the same bytes, " links[i] " links",
              "BM_find_link_parameters/" links[i], "BM_read_link_bytes/" links[i],
              i == 3 ? "target <= 2" : "")
    ratio("growth of link discovery, 255 / 16 links", "BM_find_link_parameters/255",
          "BM_find_link_parameters/16", "linear: about 16")
    if ("BM_getpadbystr" in median)
        printf "%-58s %8.3f   %s\n", "getpadbystr, 255 links, 10,000 hosts and entries (ms)",
               median["BM_getpadbystr"] / 1e6, "target < 2"
}
