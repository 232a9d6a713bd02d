function life
% Conway's game of life on a 200x200 grid whose edges meet: 500 generations from a
% patterned start, with the number of living cells every 50 generations.
n = 200;
[col, row] = meshgrid(1:n);
alive = mod(row.^2 .* col + 7*col.^3, 1009) < 350;
before = [n 1:n-1];
after = [2:n 1];
printf('generation %3d: %5d alive\n', 0, sum(sum(alive)));
for generation = 1:500
  thirds = alive(before,:) + alive + alive(after,:);
  near = thirds(:,before) + thirds + thirds(:,after);
  alive = near == 3 | (alive & near == 4);
  if mod(generation, 50) == 0
    printf('generation %3d: %5d alive\n', generation, sum(sum(alive)));
  end
end
[i, j] = find(alive(1:20,1:20));
corner = [i j]
