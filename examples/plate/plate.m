function plate
% Steady heat in a square plate with a round hole: the hole is held at 100
% degrees, the edges at 0. The temperatures are those of a grid of 200 x 200
% points; what the hole gives off must leave through the edges. Then the slowest
% modes in which the plate cools, and with them the largest eigenvalues of the
% matrix: as no point of the grid has a neighbour of its own colour on a
% chessboard, they are 8 less the smallest.
n = 200;
radius = 20;
centre = (n + 1) / 2;
hot = 100;
number(n, n) = 0;
m = 0;
for j = 1:n
  for i = 1:n
    if (i - centre)^2 + (j - centre)^2 > radius^2
      m = m + 1;
      number(i, j) = m;
    end
  end
end
entry(5 * m, 3) = 0;
warm(m, 1) = 0;
cold(m, 1) = 0;
colour(m, 1) = 0;
count = 0;
for j = 1:n
  for i = 1:n
    k = number(i, j);
    if k > 0
      colour(k) = 1 - 2 * mod(i + j, 2);
      count = count + 1;
      entry(count, 1) = k;
      entry(count, 2) = k;
      entry(count, 3) = 4;
      for side = 1:4
        p = i + (side == 1) - (side == 2);
        q = j + (side == 3) - (side == 4);
        if p < 1 | p > n | q < 1 | q > n
          cold(k) = cold(k) + 1;
        elseif number(p, q) == 0
          warm(k) = warm(k) + 1;
        else
          count = count + 1;
          entry(count, 1) = k;
          entry(count, 2) = number(p, q);
          entry(count, 3) = -1;
        end
      end
    end
  end
end
entry(count + 1:5 * m, :) = [];
A = spconvert(entry);
T = A \ (hot * warm);
points = m
given = sum(warm .* (hot - T))
lost = sum(cold .* T);
balanced = abs(given - lost) < 1e-10 * given
across(1, 4) = 0;
for k = 1:4
  across(k) = T(number(20 * k, n / 2));
end
across
X(m, 3) = 0;
for k = 1:m
  X(k, 1) = 1;
  X(k, 2) = mod(k, n);
  X(k, 3) = floor(k / n);
end
for step = 1:16
  [X, R] = qr(A \ X, 0);
end
modes(1, 3) = 0;
for k = 1:3
  modes(k) = 1 / abs(R(k, k));
end
modes
largest = 8 - modes(1);
x = colour .* X(:, 1);
is_largest = norm(A * x - largest * x) < 1e-6
