#include "RangeLine.h"

#include <QtCore/QLocale>
#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr int minBarWidth = 5;

QString shortText(double number)
{
    return QString::number(number, 'g', 6);
}

// The width of the longest value, so that the bar does not change its length with every value.
constexpr int valueWidth = int(sizeof("-1.23457e-300") - 1);

// Returns the position of the value between minimum and maximum, from 0 to 1.
double positionOf(double value, const Range& range)
{
    // The difference of the ends may overflow a double; the difference of the quotients does not.
    const double scale = std::max(std::abs(range.minimum), std::abs(range.maximum));
    const double span = range.maximum / scale - range.minimum / scale;
    if (!(span > 0.0)) {
        return 0.5;
    }
    return (value / scale - range.minimum / scale) / span;
}

QString bar(const Range& range, int width)
{
    QString result(width, QLatin1Char('-'));
    if (range.value) {
        const int mark = int(std::lround(positionOf(*range.value, range) * (width - 1)));
        result[std::clamp(mark, 0, width - 1)] = QLatin1Char('|');
    }
    return result;
}

} // namespace

QString exactText(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString rangeLine(const Range& range, int columns)
{
    const QString minimum = shortText(range.minimum);
    const QString maximum = shortText(range.maximum);
    const QString now = range.value ? QStringLiteral("now ") + shortText(*range.value) : QString();

    const QString ends = minimum + QStringLiteral(" [] ") + maximum + QStringLiteral("  now ");
    const int barWidth = columns - ends.size() - valueWidth;
    if (barWidth >= minBarWidth) {
        return QStringLiteral("%1 [%2] %3  %4")
            .arg(minimum, bar(range, barWidth), maximum, now)
            .trimmed();
    }
    const QString limits = QStringLiteral("%1..%2").arg(minimum, maximum);
    QString both = (limits + QStringLiteral("  ") + now).trimmed();
    if (both.size() <= columns) {
        return both;
    }
    return range.value ? shortText(*range.value) : limits;
}
