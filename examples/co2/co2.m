function co2
% Carbon dioxide in the air, in ppm: a row for each year from 1959 on, a number for each month.
% Writes a table of the years and a binary copy, reads both back and checks them.
fid = fopen('co2_monthly.txt');
ppm = fscanf(fid, '%g', [12 Inf]);
fclose(fid);
years = size(ppm, 2);
table(5, years) = 0;
for k = 1:years
  total = 0;
  lowest = ppm(1, k);
  highest = ppm(1, k);
  for m = 1:12
    total = total + ppm(m, k);
    lowest = min(lowest, ppm(m, k));
    highest = max(highest, ppm(m, k));
  end
  table(1, k) = 1958 + k;
  table(2, k) = total / 12;
  table(3, k) = lowest;
  table(4, k) = highest;
  table(5, k) = NaN;
  if k > 1
    table(5, k) = table(2, k) - table(2, k - 1);
  end
end
fid = fopen('co2_report.txt', 'w');
fprintf(fid, 'Carbon dioxide in ppm\n');
fprintf(fid, '%5s %8s %8s %8s %8s', 'year', 'mean', 'lowest', 'highest', 'rise');
fprintf(fid, '\n');
fprintf(fid, '%5d %8.2f %8.2f %8.2f %8.2f\n', table);
fclose(fid);
fprintf('%d years, from %.2f to %.2f ppm\n', years, table(2, 1), table(2, years));

fid = fopen('co2_report.txt');
lines = 0;
line = fgetl(fid);
while isstr(line)
  lines = lines + 1;
  last = line;
  line = fgetl(fid);
end
fclose(fid);
fprintf('%d lines, the last one "%s', lines, last);
fprintf('"\n');

fid = fopen('co2.f32', 'w', 'ieee-be');
written = fwrite(fid, ppm, 'float32')
fclose(fid);
fid = fopen('co2.f32', 'r', 'ieee-be');
fseek(fid, 0, 'eof');
bytes = ftell(fid)
fseek(fid, -4, 'cof');
fprintf('the last ones: %02x %02x %02x %02x\n', fread(fid));
frewind(fid);
copy = fread(fid, [12 Inf], 'float32');
fclose(fid);
worst = 0;
for k = 1:written
  worst = max(worst, abs(copy(k) - ppm(k)));
end
fprintf('at most %.3e ppm off\n', worst);
