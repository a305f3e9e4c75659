#pragma once

#include <string>

namespace kiln {

// `value` in fixed point with `decimals` digits behind the point, as printf's "%.*f".
std::string FormatFixed(double value, int decimals);

// `value` with `precision` significant digits, as printf's "%.*g".
std::string FormatGeneral(double value, int precision);

// Appends the shortest text that reads back as exactly `value`; "nan", "inf" and "-inf" for the
// values that are no numbers.
void AppendShortest(std::string& text, double value);

}  // namespace kiln
