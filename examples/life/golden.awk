# Plays what life shows by other means, one cell after the other:
#   awk -f golden.awk > golden.txt
function count(   i, j, all) {
    for (i = 0; i < n; ++i)
        for (j = 0; j < n; ++j)
            all += alive[i * n + j]
    return all
}
function show(generation) {
    printf "generation %3d: %5d alive\n", generation, count()
}
BEGIN {
    n = 200
    for (i = 0; i < n; ++i)
        for (j = 0; j < n; ++j)
            alive[i * n + j] = ((i + 1) ^ 2 * (j + 1) + 7 * (j + 1) ^ 3) % 1009 < 350
    show(0)
    for (generation = 1; generation <= 500; ++generation) {
        split("", near)
        for (i = 0; i < n; ++i)
            for (j = 0; j < n; ++j)
                if (alive[i * n + j])
                    for (di = -1; di <= 1; ++di)
                        for (dj = -1; dj <= 1; ++dj)
                            if (di || dj)
                                ++near[(i + di + n) % n * n + (j + dj + n) % n]
        for (k = 0; k < n * n; ++k)
            alive[k] = near[k] == 3 || (alive[k] && near[k] == 2)
        if (generation % 50 == 0)
            show(generation)
    }
    for (j = 0; j < 20; ++j)
        for (i = 0; i < 20; ++i)
            if (alive[i * n + j])
                lines[++found] = sprintf("%4d%4d", i + 1, j + 1)
    printf "corner (%dx2)=%d elements, dense real  = \n", found, 2 * found
    for (k = 1; k <= found; ++k)
        print lines[k]
}
