// What the translator makes of savings.m.
#include "savings.h"

#include <string>

static M<double> growth(M<double> const& given_amount, M<double> const& given_rate, M<double> const& given_years)
{
    nx_frame frame("growth");
    variables_scope.begin();
    M<double> amount("amount", 0, 0);
    M<double> rate("rate", 0, 0);
    M<double> years("years", 0, 0);
    M<double> table("table", 0, 0);
    M<double> year("year", 0, 0);
    amount = given_amount;
    rate = given_rate;
    years = given_years;
    frame.line(11);
    if (scalar(rate) < 0) {
        frame.line(12);
        error(TM("growth: the rate is negative"));
    }
    frame.line(14);
    if (scalar(rate) > 20) {
        frame.line(15);
        warning(TM("growth: the rate is more than 20 percent"));
    }
    frame.line(17);
    table = zeros(years, 2.0);
    for (double k = 1; k <= scalar(years); ++k) {
        year = k;
        frame.line(19);
        amount = amount + amount * rate * 0.01;
        frame.line(20);
        table(year, c_p) = (BR(year), amount);
    }
    variables_scope.end();
    return table;
}

static M<double> call_function(M<double> const& name, M<M<double>> const& inputs, i_o_t, Mr<double>, Mr<double>, Mr<double>, Mr<double>, Mr<double>, Mr<double>)
{
    char text[64];
    Mstr(name, text, sizeof text - 1);
    if (std::string(text) == "growth" && inputs.size() == 3)
        return growth(*inputs.addr(1), *inputs.addr(2), *inputs.addr(3));
    error("feval: there is no function %s with these inputs", text);
    return x_M;
}

void start_savings()
{
    feval_func = call_function;
}

M<double> savings()
{
    nx_frame frame("savings");
    M<double> runs("runs", 0, 0);
    M<double> amount("amount", 0, 0);
    M<double> rate("rate", 0, 0);
    M<double> years("years", 0, 0);
    M<double> table("table", 0, 0);
    frame.line(2);
    if (runs.size() == 0)
        runs = 0.0;
    runs = runs + 1.0;
    disp_all(runs);
    frame.line(3);
    amount = input(TM("Amount?"));
    frame.line(4);
    rate = input(TM("Rate in percent?"));
    frame.line(5);
    years = input(TM("Years?"));
    frame.line(6);
    table = feval(TM("growth"), amount, rate, years);
    frame.line(7);
    fprintf(TM("%d: %.2f\\n"), transpose(table));
    frame.line(8);
    pauseM();
    return x_M;
}
