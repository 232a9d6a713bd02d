# Computes what module shows by other means: awk -f golden.awk > golden.txt
function swing(t) {
    return exp(-t / 8) * cos(2 * 3.14159265358979324 * t / 5)
}
BEGIN {
    level = 0.25
    for (t = 0.25; t <= 20; t += 0.25) {
        before = swing(t - 0.25)
        now = swing(t)
        if ((before < level) != (now < level))
            printf "%7.3f s %s\n", t - 0.25 * (now - level) / (now - before), now < level ? "down" : "up"
    }
}
