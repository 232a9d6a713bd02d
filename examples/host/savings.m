% What an amount grows to, year by year. The variables of a script stay after its end.
runs = runs + 1
amount = input('Amount?');
rate = input('Rate in percent?');
years = input('Years?');
table = feval('growth', amount, rate, years);
fprintf('%d: %.2f\n', table');
pause

function table = growth(amount, rate, years)
if rate < 0
  error('growth: the rate is negative');
end
if rate > 20
  warning('growth: the rate is more than 20 percent');
end
table = zeros(years, 2);
for year = 1:years
  amount = amount + amount * rate * 0.01;
  table(year, :) = [year, amount];
end
