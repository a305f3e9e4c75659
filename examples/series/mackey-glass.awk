# awk -f mackey-glass.awk: writes series.csv, 1024 values of one column.
#
# The Mackey-Glass series is what the equation
#   dx/dt = 0.2 x(t - 17) / (1 + x(t - 17)^10) - 0.1 x(t)
# gives from x(0) = 1.2, with x = 0 before, by Runge-Kutta steps of fourth order of 0.1 each: x(t)
# for t = 100 to 1123, scaled to 0.1 to 0.9.

function slope(x, delayed) { return 0.2 * delayed / (1 + delayed ^ 10) - 0.1 * x }

function delayed(k) { return k < delay ? 0 : x[k - delay] }

function scaled(t) { return 0.1 + 0.8 * (x[10 * t] - low) / (high - low) }

BEGIN {
  step = 0.1
  delay = 170  # steps
  x[0] = 1.2
  for (k = 0; k < 11230; k++) {
    now = delayed(k); next_ = delayed(k + 1); between = (now + next_) / 2
    k1 = slope(x[k], now)
    k2 = slope(x[k] + step / 2 * k1, between)
    k3 = slope(x[k] + step / 2 * k2, between)
    k4 = slope(x[k] + step * k3, next_)
    x[k + 1] = x[k] + step / 6 * (k1 + 2 * k2 + 2 * k3 + k4)
  }
  low = high = x[1000]
  for (t = 100; t <= 1123; t++) {
    if (x[10 * t] < low) low = x[10 * t]
    if (x[10 * t] > high) high = x[10 * t]
  }
  print "x" > "series.csv"
  for (t = 100; t <= 1123; t++) printf "%.15g\n", scaled(t) > "series.csv"
}
