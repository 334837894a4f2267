#ifndef TOOLS_PEAKMETER_RANGELINE_H
#define TOOLS_PEAKMETER_RANGELINE_H

#include <QtCore/QString>

#include <optional>

// A number with all its digits: read again it is the same.
QString exactText(double number);

// A range, and the value in it that came last, if any came.
struct Range
{
    double minimum;
    double maximum;
    std::optional<double> value;
};

/*
 * A range as one line for a terminal of so many columns:
 *
 *     -3.5 [--------------------|-----] 20  now 15.25
 *
 * ASCII alone, for every serial console. A terminal that is too narrow for a bar gets less, but
 * never a part of a number, unless even the value does not fit.
 */
QString rangeLine(const Range& range, int columns);

#endif
