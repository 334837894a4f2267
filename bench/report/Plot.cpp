#include "Plot.h"

#include <QtCore/QMap>
#include <QtCore/QPair>
#include <QtCore/QPointF>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr double width = 760;
constexpr double height = 400;
constexpr double left = 76;
constexpr double right = 500;
constexpr double top = 52;
constexpr double bottom = 340;

// Whole powers of ten around all values.
struct Axis
{
    int begin;
    int end;
    double from; // where the axis lies in the picture
    double to;

    double place(double value) const
    {
        return from + (std::log10(value) - begin) / (end - begin) * (to - from);
    }
};

struct Series
{
    QString contender;
    QVector<QPointF> points; // size, nanoseconds
};

Axis axis(const QVector<double>& values, double from, double to)
{
    const auto extremes = std::minmax_element(values.cbegin(), values.cend());
    const int begin = int(std::floor(std::log10(*extremes.first)));
    const int end = int(std::ceil(std::log10(*extremes.second)));
    return {begin, std::max(end, begin + 1), from, to};
}

QString text(double x, double y, const char* anchor, const QString& content, const char* more = "")
{
    return QStringLiteral("<text x=\"%1\" y=\"%2\" text-anchor=\"%3\"%4>%5</text>\n")
        .arg(x, 0, 'f', 1)
        .arg(y, 0, 'f', 1)
        .arg(QLatin1String(anchor), QLatin1String(more), content.toHtmlEscaped());
}

QString segment(double x1, double y1, double x2, double y2)
{
    return QStringLiteral("<path class=\"grid\" d=\"M%1 %2L%3 %4\"/>\n")
        .arg(x1, 0, 'f', 1)
        .arg(y1, 0, 'f', 1)
        .arg(x2, 0, 'f', 1)
        .arg(y2, 0, 'f', 1);
}

QString power(int exponent)
{
    static const char* const units[] = {"", " k", " M", " G"};
    const double number = std::pow(10, exponent % 3);
    return QString::number(number) + QLatin1String(units[std::clamp(exponent / 3, 0, 3)]);
}

QString timePower(int exponent)
{
    if (exponent < 0) {
        return QString::number(std::pow(10, exponent)) + QStringLiteral(" ns");
    }
    static const QString units[] = {QStringLiteral("ns"), QStringLiteral("µs"),
                                    QStringLiteral("ms"), QStringLiteral("s")};
    const int unit = std::min(exponent / 3, 3);
    return QStringLiteral("%1 %2").arg(std::pow(10, exponent - 3 * unit)).arg(units[unit]);
}

// The colours keep apart for most eyes, and from both grounds.
QString style()
{
    return QStringLiteral(R"(<style>
text { font: 13px sans-serif; fill: #24292f; }
.title { font-size: 15px; font-weight: bold; }
.ground { fill: #ffffff; }
.grid { stroke: #d0d7de; }
path.line { fill: none; stroke-width: 2; }
.c0 { stroke: #d1242f; fill: #d1242f; } .c1 { stroke: #0969da; fill: #0969da; }
.c2 { stroke: #1a7f37; fill: #1a7f37; } .c3 { stroke: #9a6700; fill: #9a6700; }
.c4 { stroke: #8250df; fill: #8250df; } .c5 { stroke: #57606a; fill: #57606a; }
@media (prefers-color-scheme: dark) {
text { fill: #e6edf3; }
.ground { fill: #0d1117; }
.grid { stroke: #30363d; }
.c0 { stroke: #ff7b72; fill: #ff7b72; } .c1 { stroke: #58a6ff; fill: #58a6ff; }
.c2 { stroke: #3fb950; fill: #3fb950; } .c3 { stroke: #d29922; fill: #d29922; }
.c4 { stroke: #bc8cff; fill: #bc8cff; } .c5 { stroke: #8b949e; fill: #8b949e; }
}
</style>
)");
}

QString grid(const Axis& xAxis, const Axis& yAxis)
{
    QString svg;
    for (int exponent = xAxis.begin; exponent <= xAxis.end; ++exponent) {
        const double x = xAxis.place(std::pow(10, exponent));
        svg += segment(x, top, x, bottom);
        svg += text(x, bottom + 20, "middle", power(exponent));
    }
    for (int exponent = yAxis.begin; exponent <= yAxis.end; ++exponent) {
        const double y = yAxis.place(std::pow(10, exponent));
        svg += segment(left, y, right, y);
        svg += text(left - 8, y + 4, "end", timePower(exponent));
    }
    return svg;
}

QString curve(const Series& series, int number, const Axis& xAxis, const Axis& yAxis)
{
    QStringList places;
    QString dots;
    for (const QPointF& point : series.points) {
        const QString x = QString::number(xAxis.place(point.x()), 'f', 1);
        const QString y = QString::number(yAxis.place(point.y()), 'f', 1);
        places.append(x + QLatin1Char(' ') + y);
        dots += QStringLiteral("<circle class=\"c%1\" cx=\"%2\" cy=\"%3\" r=\"3\"/>\n")
                    .arg(number)
                    .arg(x, y);
    }
    return QStringLiteral("<path class=\"line c%1\" d=\"M%2\"/>\n")
               .arg(number)
               .arg(places.join(QLatin1Char('L'))) +
           dots;
}

// In the order in which the curves end, from top to bottom.
QString legend(QVector<QPair<Series, int>> all)
{
    std::sort(all.begin(), all.end(), [](const auto& first, const auto& second) {
        return first.first.points.constLast().y() > second.first.points.constLast().y();
    });
    QString svg;
    double y = top + 12;
    for (const auto& [series, number] : qAsConst(all)) {
        svg += QStringLiteral("<rect class=\"c%1\" x=\"%2\" y=\"%3\" width=\"16\" height=\"3\"/>\n")
                   .arg(number)
                   .arg(right + 16)
                   .arg(y - 6);
        svg += text(right + 40, y, "start", series.contender);
        y += 22;
    }
    return svg;
}

QString picture(const QString& title, const QString& unit, const QVector<Series>& all)
{
    QVector<double> sizes;
    QVector<double> times;
    QVector<QPair<Series, int>> numbered;
    for (const Series& series : all) {
        numbered.append({series, numbered.size()});
        for (const QPointF& point : series.points) {
            sizes.append(point.x());
            times.append(point.y());
        }
    }
    const Axis xAxis = axis(sizes, left, right);
    const Axis yAxis = axis(times, bottom, top);

    QString svg = QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1\" "
                                 "height=\"%2\" viewBox=\"0 0 %1 %2\">\n")
                      .arg(width)
                      .arg(height);
    svg += style();
    svg += QStringLiteral("<rect class=\"ground\" width=\"%1\" height=\"%2\"/>\n")
               .arg(width)
               .arg(height);
    svg += text(left, 28, "start", title, " class=\"title\"");
    svg += grid(xAxis, yAxis);
    for (const auto& [series, number] : qAsConst(numbered)) {
        svg += curve(series, number, xAxis, yAxis);
    }
    svg += legend(numbered);
    svg += text((left + right) / 2, bottom + 44, "middle", unit);
    return svg + QStringLiteral("</svg>\n");
}

void addPoint(QVector<Series>& all, const TimeRow& row)
{
    auto series = std::find_if(all.begin(), all.end(), [&row](const Series& each) {
        return each.contender == row.contender;
    });
    if (series == all.end()) {
        all.append({row.contender, {}});
        series = all.end() - 1;
    }
    series->points.append(QPointF(row.size, row.nanoseconds));
}

QString fileName(const QString& plot)
{
    QString name = plot.toLower();
    name.replace(QRegularExpression(QStringLiteral("[^a-z0-9]+")), QStringLiteral("-"));
    return QStringLiteral("performance-%1.svg").arg(name);
}

} // namespace

void Plot::write(const QVector<TimeRow>& rows, const QString& folder)
{
    QMap<QString, QVector<Series>> plots;
    QMap<QString, QString> units;
    for (const TimeRow& row : rows) {
        if (!row.plot.isEmpty()) {
            addPoint(plots[row.plot], row);
            units.insert(row.plot, row.unit);
        }
    }
    for (auto plot = plots.cbegin(); plot != plots.cend(); ++plot) {
        writeFile(folder + QLatin1Char('/') + fileName(plot.key()),
                  picture(plot.key() + QStringLiteral(": time of a call"), units.value(plot.key()),
                          *plot));
    }
}
