# Computes what quakes shows from the same data by other means:
#   awk -f golden.awk quakes.txt > golden.txt
function floor(x,   whole) {
    whole = int(x)
    return whole > x ? whole - 1 : whole
}
# Of "shown[row, col]" in `rows` rows and `cols` columns.
function widest(rows, cols,   r, c, w) {
    w = 0
    for (r = 1; r <= rows; ++r)
        for (c = 1; c <= cols; ++c)
            if (length(sprintf("%.4g", shown[r, c])) > w)
                w = length(sprintf("%.4g", shown[r, c]))
    return w + 2
}
function heading(name, rows, cols, kind) {
    printf "%s (%dx%d)=%d elements, %s = \n", name, rows, cols, rows * cols, kind
}
function show(name, rows, cols,   r, c, w) {
    heading(name, rows, cols, "dense real ")
    w = widest(rows, cols)
    for (r = 1; r <= rows; ++r) {
        for (c = 1; c <= cols; ++c)
            printf "%*.4g", w, shown[r, c]
        print ""
    }
}
function show_events(name, numbers, count,   r, c) {
    for (r = 1; r <= count; ++r)
        for (c = 1; c <= 5; ++c)
            shown[r, c] = event[numbers[r], c]
    show(name, count, 5)
}
function listing(name, rows, cols, kind) {
    printf "%-20s (%dx%d)=%d elements, %s\n", name, rows, cols, rows * cols, kind
}
{
    for (c = 1; c <= 5; ++c)
        event[NR, c] = $c
    if ($4 > 5.5)
        strongest[++strong] = NR
    if (!($3 > 500))
        kept[++left] = NR
    if (!(floor($1) SUBSEP floor($2) in square))
        ++occupied
    if (++square[floor($1), floor($2)] > most)
        most = square[floor($1), floor($2)]
}
END {
    show_events("strongest", strongest, strong)
    heading("labels", strong, 1, "dense real cell")
    for (k = 1; k <= strong; ++k) {
        depth = event[strongest[k], 3]
        bar = sprintf("%*s", int(event[strongest[k], 5] / 20), "")
        gsub(/ /, "*", bar)
        printf "labels(%d,1)\nM%.1f %s %s\n", k, event[strongest[k], 4], depth < 70 ? "shallow" : depth < 300 ? "intermediate" : "deep", bar
    }
    listing("squares", 29, 24, "sparse real ")
    shown[1, 1] = occupied
    show("occupied", 1, 1)
    busiest = 0
    for (lon = 165; lon < 189; ++lon)
        for (lat = -39; lat < -10; ++lat)
            if (square[lat, lon] == most) {
                shown[++busiest, 1] = lat
                shown[busiest, 2] = lon
                shown[busiest, 3] = most
            }
    show("busiest", busiest, 3)
    heading("corner", 8, 7, "sparse real ")
    for (lon = 176; lon < 183; ++lon)
        for (lat = -39; lat < -31; ++lat)
            if (square[lat, lon])
                line[++lines] = sprintf("(%d,%d) ", lat + 40, lon - 175) sprintf("%3d", square[lat, lon])
    for (k = 1; k <= lines; ++k)
        print line[k]
    for (r = 1; r <= 6; ++r)
        for (c = 1; c <= 8; ++c)
            shown[r, c] = square[r - 23, c + 176] + 0
    show("around", 6, 8)
    listing("events", left, 5, "dense real ")
    show_events("first", kept, 5)
    for (k = 1; k <= 5; ++k)
        tail[k] = kept[left - 5 + k]
    show_events("last", tail, 5)
}
