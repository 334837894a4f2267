#include "Documents.h"

#include <QtCore/QStringList>

namespace {

QString mark(const char* what, const QString& part)
{
    return QStringLiteral("<!-- %1 %2 -->\n").arg(QLatin1String(what), part);
}

void replacePart(QString& page, const QString& part, const QString& text)
{
    const QString beginMark = mark("begin", part);
    const int begin = page.indexOf(beginMark);
    const int end = page.indexOf(mark("end", part));
    if (begin < 0 || end < begin) {
        qFatal("the page has no place for %s", qPrintable(part));
    }
    const int textBegin = begin + beginMark.size();
    page.replace(textBegin, end - textBegin, text);
}

QString line(const QStringList& cells)
{
    return QStringLiteral("| %1 |\n").arg(cells.join(QStringLiteral(" | ")));
}

QString machine()
{
    QString text;
    const QVector<Environment> all = environment();
    for (const Environment& each : all) {
        text += QStringLiteral("- %1: %2\n").arg(each.name, each.value);
    }
    return text;
}

QString yesOrNo(const QString& verdict)
{
    return verdict == QStringLiteral("NO") ? QStringLiteral("**no**") : verdict;
}

QString times(const QVector<TimeRow>& rows)
{
    QString text =
        line({QStringLiteral("class"), QStringLiteral("operation"), QStringLiteral("MiscTools"),
              QStringLiteral("peer"), QStringLiteral("takes"), QStringLiteral("ratio"),
              QStringLiteral("target"), QStringLiteral("met")});
    text += QStringLiteral("|---|---|--:|---|--:|--:|--:|---|\n");
    const QString subject = QStringLiteral("MiscTools");
    for (int i = 0; i < rows.size(); ++i) {
        if (!rows.at(i).isInTable || rows.at(i).contender != subject) {
            continue;
        }
        const TimeRow& first = rows.at(i);
        const auto isPeer = [&rows, &subject](int place) {
            return place < rows.size() && rows.at(place).isInTable &&
                   rows.at(place).contender != subject;
        };
        if (!isPeer(i + 1)) {
            text += line({first.program, first.operation, readableTime(first.nanoseconds),
                          QString(), QString(), QString(), QString(), QString()});
        }
        for (int j = i + 1; isPeer(j); ++j) {
            const TimeRow& peer = rows.at(j);
            const bool hasTarget = peer.target > 0;
            text += line({first.program, first.operation, readableTime(first.nanoseconds),
                          peer.contender, readableTime(peer.nanoseconds),
                          QString::number(peer.ratio, 'f', 2),
                          hasTarget ? QStringLiteral("≤ %1").arg(peer.target) : QString(),
                          yesOrNo(peer.verdict)});
        }
    }
    return text;
}

QString counts(const QVector<CountRow>& rows)
{
    QString text =
        line({QStringLiteral("class"), QStringLiteral("operation"), QStringLiteral("measure"),
              QStringLiteral("per call"), QStringLiteral("target"), QStringLiteral("met")});
    text += QStringLiteral("|---|---|---|--:|--:|---|\n");
    for (const CountRow& row : rows) {
        const bool hasLimit = !row.limit.isEmpty();
        text += line({row.program, row.operation, row.measure, QString::number(row.count, 'f', 0),
                      hasLimit ? QStringLiteral("≤ ") + row.limit : QString(),
                      !hasLimit             ? QString()
                      : row.isWithinLimit() ? QStringLiteral("yes")
                                            : QStringLiteral("**no**")});
    }
    return text;
}

} // namespace

void Documents::update(const Rows& results, const QString& filePath)
{
    QString page = readFile(filePath);
    replacePart(page, QStringLiteral("machine"), machine());
    replacePart(page, QStringLiteral("times"), times(results.times));
    replacePart(page, QStringLiteral("counts"), counts(results.counts));
    writeFile(filePath, page);
}
