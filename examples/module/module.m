function module
% A swing that dies away: when it passes a quarter of its first height, found by the extension module
% crossings.
t = (0:80) / 4;
y = exp(-t / 8) .* cos(2 * pi * t / 5);
[at, rising] = crossings(t, y, 0.25);
for k = 1:size(at, 1)
  if rising(k)
    printf('%7.3f s up\n', at(k));
  else
    printf('%7.3f s down\n', at(k));
  end
end
