# Computes what co2 shows and writes from the same data by other means:
#   awk -v report=golden_co2_report.txt -f golden.awk co2_monthly.txt > golden.txt
# The nearest single-precision number to one between 256 and 512: 23 bits behind the leading one.
function single(x) {
    return int(x * 32768 + 0.5) / 32768
}
# Its bytes, most significant first: the exponent of 256 is 135, which with the sign makes 43 8.
function bytes(x,   below) {
    below = int((x - 256) * 32768 + 0.5)
    return sprintf("%02x %02x %02x %02x", 67, 128 + int(below / 65536), int(below / 256) % 256, below % 256)
}
NR == 1 {
    print "Carbon dioxide in ppm" > report
    print " year     mean   lowest  highest     rise" > report
}
{
    total = 0
    lowest = highest = $1
    for (m = 1; m <= 12; ++m) {
        total += $m
        if ($m < lowest)
            lowest = $m
        if ($m > highest)
            highest = $m
        off = single($m) - $m
        if (off < 0)
            off = -off
        if (off > worst)
            worst = off
    }
    mean = total / 12
    if (NR == 1)
        first = mean
    last = sprintf("%5d %8.2f %8.2f %8.2f ", 1958 + NR, mean, lowest, highest) (NR == 1 ? "     NaN" : sprintf("%8.2f", mean - before))
    print last > report
    before = mean
}
function show(name, value) {
    printf "%s (1x1)=1 elements, dense real  = \n  %.4g\n", name, value
}
END {
    printf "%d years, from %.2f to %.2f ppm\n", NR, first, mean
    printf "%d lines, the last one \"%s\"\n", NR + 2, last
    show("written", 12 * NR)
    show("bytes", 48 * NR)
    print "the last ones: " bytes($12)
    printf "at most %.3e ppm off\n", worst
}
