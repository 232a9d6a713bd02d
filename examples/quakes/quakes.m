function quakes
% Earthquakes, one per row: latitude, longitude, depth in km, magnitude, stations that felt it.
% Shows the strong ones, a label for each, how many fell into each degree square, and what is left
% without the deep ones.
loadascii('quakes.txt', events);
n = size(events, 1);
strong(1, n) = 0;
for k = 1:n
  strong(k) = events(k, 4) > 5.5;
end
strong = logical(strong);
strongest = events(strong, :)

for k = 1:size(strongest, 1)
  tenths = floor(strongest(k, 4) * 10 + 0.5);
  whole = floor(tenths / 10);
  if strongest(k, 3) < 70
    layer = 'shallow';
  elseif strongest(k, 3) < 300
    layer = 'intermediate';
  else
    layer = 'deep';
  end
  bar = '';
  for s = 20:20:strongest(k, 5)
    bar = [bar '*'];
  end
  labels{k, 1} = ['M' whole + '0' '.' tenths - 10 * whole + '0' ' ' layer ' ' bar];
end
labels

% Degree squares: row 1 is latitude -39, column 1 is longitude 165.
row(n, 1) = 0;
col(n, 1) = 0;
for k = 1:n
  row(k) = floor(events(k, 1)) + 40;
  col(k) = floor(events(k, 2)) - 164;
end
squares = sparse(row, col, 1, 29, 24);
whos squares
occupied = nnz(squares)
[row, col, count] = find(squares);
most = 0;
for k = 1:occupied
  if count(k) > most
    most = count(k);
  end
end
busiest = [];
for k = 1:occupied
  if count(k) == most
    busiest = [busiest; row(k) - 40, col(k) + 164, count(k)];
  end
end
busiest
corner = squares(1:8, 12:18)
around = full(squares(18:23, 13:20))

deep(1, n) = 0;
for k = 1:n
  deep(k) = events(k, 3) > 500;
end
events(logical(deep), :) = [];
whos events
first = events(1:5, :)
last = events(size(events, 1) - 4:size(events, 1), :)
