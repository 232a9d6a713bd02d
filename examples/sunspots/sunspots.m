function sunspots
% Yearly means of the monthly sunspot numbers, and the years of the maxima:
% the years whose mean no year within five years of them exceeds.
loadascii('sunspots_monthly.txt', s);
n = size(s, 1);
first = s(1, 1);
years = s(n, 1) - first + 1;
means(years, 2) = 0;
for k = 1:n
  row = s(k, 1) - first + 1;
  means(row, 1) = s(k, 1);
  means(row, 2) = means(row, 2) + s(k, 3) / 12;
end
maxima(1, years) = 0;
for row = 1:years
  highest = row;
  for near = max(row - 5, 1):min(row + 5, years)
    if means(near, 2) > means(highest, 2)
      highest = near;
    end
  end
  maxima(row) = highest == row;
end
peaks = means(logical(maxima), :)
last_ten = means(years - 9:years, :)
saveascii('sunspots_yearly.txt', means);
