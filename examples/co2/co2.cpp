// What the translator makes of co2.m. The data folder is the program's argument.
#include <arrlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

static char data_file[512];

static M<double> co2()
{
    nx_frame frame("co2");
    M<double> fid("fid", 0, 0);
    M<double> ppm("ppm", 0, 0);
    M<double> table("table", 0, 0);
    M<double> line("line", 0, 0);
    M<double> last("last", 0, 0);
    M<double> written("written", 0, 0);
    M<double> bytes("bytes", 0, 0);
    M<double> copy("copy", 0, 0);

    frame.line(4);
    fid = fopen(TM(data_file));
    frame.line(5);
    ppm = fscanf(fid, TM("%g"), (BR(M<double>(12)), Inf));
    frame.line(6);
    fclose(fid);
    frame.line(7);
    double const years = ppm.size(2);
    frame.line(8);
    table(5, years) = zero_M;
    for (double k = 1; k <= years; ++k) {
        frame.line(10);
        double total = 0;
        double lowest = ppm.r(1, k);
        double highest = ppm.r(1, k);
        for (double m = 1; m <= 12; ++m) {
            frame.line(14);
            total = total + ppm.r(m, k);
            lowest = std::min(lowest, ppm.r(m, k));
            highest = std::max(highest, ppm.r(m, k));
        }
        frame.line(18);
        table.r(1, k) = 1958 + k;
        table.r(2, k) = total / 12;
        table.r(3, k) = lowest;
        table.r(4, k) = highest;
        table.r(5, k) = scalar(NaN);
        frame.line(23);
        if (k > 1) {
            frame.line(24);
            table.r(5, k) = table.r(2, k) - table.r(2, k - 1);
        }
    }
    frame.line(27);
    fid = fopen(TM("co2_report.txt"), TM("w"));
    frame.line(28);
    fprintf(fid, TM("Carbon dioxide in ppm\\n"));
    frame.line(29);
    fprintf(fid, TM("%5s %8s %8s %8s %8s"), TM("year"), TM("mean"), TM("lowest"), TM("highest"), TM("rise"));
    frame.line(30);
    fprintf(fid, TM("\\n"));
    frame.line(31);
    fprintf(fid, TM("%5d %8.2f %8.2f %8.2f %8.2f\\n"), table);
    frame.line(32);
    fclose(fid);
    frame.line(33);
    fprintf(TM("%d years, from %.2f to %.2f ppm\\n"), years, table.r(2, 1), table.r(2, years));

    frame.line(35);
    fid = fopen(TM("co2_report.txt"));
    frame.line(36);
    double lines = 0;
    frame.line(37);
    line = fgetl(fid);
    while (line.isstr()) {
        frame.line(39);
        lines = lines + 1;
        frame.line(40);
        last = line;
        frame.line(41);
        line = fgetl(fid);
    }
    frame.line(43);
    fclose(fid);
    frame.line(44);
    fprintf(TM("%d lines, the last one \"%s"), lines, last);
    frame.line(45);
    fprintf(TM("\"\\n"));

    frame.line(47);
    fid = fopen(TM("co2.f32"), TM("w"), TM("ieee-be"));
    frame.line(48);
    written = fwrite(fid, ppm, TM("float32"));
    disp_all(written);
    frame.line(49);
    fclose(fid);
    frame.line(50);
    fid = fopen(TM("co2.f32"), TM("r"), TM("ieee-be"));
    frame.line(51);
    fseek(fid, zero_M, TM("eof"));
    frame.line(52);
    bytes = ftell(fid);
    disp_all(bytes);
    frame.line(53);
    fseek(fid, M<double>(-4), TM("cof"));
    frame.line(54);
    fprintf(TM("the last ones: %02x %02x %02x %02x\\n"), fread(fid));
    frame.line(55);
    frewind(fid);
    frame.line(56);
    copy = fread(fid, (BR(M<double>(12)), Inf), TM("float32"));
    frame.line(57);
    fclose(fid);
    frame.line(58);
    double worst = 0;
    for (double k = 1; k <= scalar(written); ++k) {
        frame.line(60);
        worst = std::max(worst, std::fabs(copy.r(k) - ppm.r(k)));
    }
    frame.line(62);
    fprintf(TM("at most %.3e ppm off\\n"), worst);
    return x_M;
}

int main(int argc, char** argv)
{
    std::snprintf(data_file, sizeof data_file, "%s/co2_monthly.txt", argc > 1 ? argv[1] : ".");
    initM(ARRLIB_HEADER_VERSION);
    co2();
    exitM();
    return 0;
}
