#ifndef TOOLS_PEAKMETER_RANGELINE_H
#define TOOLS_PEAKMETER_RANGELINE_H

#include <QtCore/QString>

#include <optional>

// Returns a number with all digits that are needed to read the same number back.
QString exactText(double number);

// A range and the last value, if any.
struct Range
{
    double minimum;
    double maximum;
    std::optional<double> value;
};

/*
 * Returns a range as one line for a terminal with this many columns:
 *
 *     -3.5 [--------------------|-----] 20  now 15.25
 *
 * It is ASCII, for any serial console. If the terminal is too narrow for a bar, the line shows
 * less. Numbers are never truncated, unless not even the value fits.
 */
QString rangeLine(const Range& range, int columns);

#endif
