# Computes what sunspots shows and writes from the same data by other means:
#   awk -v table=golden_sunspots_yearly.txt -f golden.awk sunspots_monthly.txt > golden.txt
{
    if (NR == 1)
        first = $1
    sum[$1] += $3 / 12
    last = $1
}
function show(name, list, n,   k) {
    printf "%s (%dx2)=%d elements, dense real  = \n", name, n, 2 * n
    for (k = 1; k <= n; ++k)
        printf "%*s%*s\n", width_year + 2, sprintf("%.4g", list[k]), widest(list, n) + 2, sprintf("%.4g", sum[list[k]])
}
function widest(list, n,   k, w) {
    # Both columns are as wide as the widest number of either.
    w = 4
    for (k = 1; k <= n; ++k)
        if (length(sprintf("%.4g", sum[list[k]])) > w)
            w = length(sprintf("%.4g", sum[list[k]]))
    width_year = w
    return w
}
END {
    for (y = first; y <= last; ++y) {
        printf "%23.13g%23.13g\n", y, sum[y] > table
        best = 1
        for (near = y - 5; near <= y + 5; ++near)
            if (near in sum && (sum[near] > sum[y] || (sum[near] == sum[y] && near < y)))
                best = 0
        if (best)
            peaks[++count] = y
    }
    for (k = 1; k <= 10; ++k)
        ten[k] = last - 10 + k
    widest(peaks, count)
    show("peaks", peaks, count)
    widest(ten, 10)
    show("last_ten", ten, 10)
}
