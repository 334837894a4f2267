#include "WatchReport.h"

#include "common/CommandLine.h"

#include <QtCore/QJsonDocument>

WatchReport::WatchReport(const QString& name, bool isJson) : m_name(name), m_isJson(isJson) {}

QString WatchReport::count(int number, const char* what)
{
    return QStringLiteral("%1 %2%3").arg(number).arg(QLatin1String(what),
                                                     number == 1 ? QString() : QStringLiteral("s"));
}

QString WatchReport::seconds(qint64 milliseconds)
{
    return QStringLiteral("%1 s").arg(double(milliseconds) / 1000, 0, 'f', 1);
}

void WatchReport::showStatus(const QString& text)
{
    if (isLive()) {
        m_display.showStatus(text);
    }
}

void WatchReport::showMedium(const QStringList& patterns, const QStringList& files)
{
    show(QStringLiteral("%1: %2 (%3)")
             .arg(CommandLine::printable(m_name), count(files.size(), "file"),
                  CommandLine::printable(patterns.join(QLatin1Char(' ')))),
         QStringLiteral("medium"),
         {{QStringLiteral("name"), m_name}, {QStringLiteral("files"), files.size()}});
    showFiles("  ", QStringLiteral("file"), files);
}

void WatchReport::showWatching(int directories, int bursts, int idleInMs)
{
    const QString watched = directories == 1 ? QStringLiteral("1 directory")
                                             : QStringLiteral("%1 directories").arg(directories);
    QStringList conditions;
    if (bursts > 0) {
        conditions.append(count(bursts, "burst"));
    }
    if (idleInMs > 0) {
        conditions.append(seconds(idleInMs) + QStringLiteral(" without a change"));
    }
    show(QStringLiteral("Watching %1; ends after %2")
             .arg(watched, conditions.join(QStringLiteral(" or "))),
         QStringLiteral("watching"), {{QStringLiteral("directories"), directories}});
}

void WatchReport::showNew(const QStringList& files)
{
    showFiles("+ ", QStringLiteral("new"), files);
}

void WatchReport::showGone(const QStringList& files)
{
    showFiles("- ", QStringLiteral("gone"), files);
}

void WatchReport::showBurst(int number, int newFiles, int goneFiles, int files)
{
    show(QStringLiteral("Burst %1: %2 new, %3 gone, now %4")
             .arg(number)
             .arg(newFiles)
             .arg(goneFiles)
             .arg(count(files, "file")),
         QStringLiteral("burst"),
         {{QStringLiteral("number"), number},
          {QStringLiteral("new"), newFiles},
          {QStringLiteral("gone"), goneFiles},
          {QStringLiteral("files"), files}});
}

void WatchReport::showMediumRemoved()
{
    show(QStringLiteral("medium removed"), QStringLiteral("mediumRemoved"));
}

void WatchReport::showMediumMounted()
{
    show(QStringLiteral("medium mounted"), QStringLiteral("mediumMounted"));
}

void WatchReport::showSkippedNames(int count)
{
    if (m_isJson) {
        show(QString(), QStringLiteral("namesSkipped"), {{QStringLiteral("count"), count}});
        return;
    }
    printError(QStringLiteral("skipped: %1 that cannot be decoded as UTF-8")
                   .arg(WatchReport::count(count, "name")));
}

void WatchReport::showSummary(const Summary& summary)
{
    m_display.clearStatus();
    QString line = QStringLiteral("Summary: %1, %2 new since the start, %3 gone, %4")
                       .arg(count(summary.files, "file"))
                       .arg(summary.newFiles)
                       .arg(summary.goneFiles)
                       .arg(count(summary.bursts, "burst"));
    if (summary.skippedNames > 0) {
        line += QStringLiteral(", %1 skipped").arg(count(summary.skippedNames, "name"));
    }
    show(line + QStringLiteral(", ") + seconds(summary.milliseconds), QStringLiteral("summary"),
         {{QStringLiteral("files"), summary.files},
          {QStringLiteral("new"), summary.newFiles},
          {QStringLiteral("gone"), summary.goneFiles},
          {QStringLiteral("bursts"), summary.bursts},
          {QStringLiteral("namesSkipped"), summary.skippedNames},
          {QStringLiteral("milliseconds"), summary.milliseconds}});
}

void WatchReport::printError(const QString& error)
{
    m_display.clearStatus();
    CommandLine::printError(error);
}

void WatchReport::show(const QString& line, const QString& event, QJsonObject members)
{
    if (!m_isJson) {
        m_display.showEvent(line);
        return;
    }
    members.insert(QStringLiteral("event"), event);
    m_display.showEvent(QString::fromUtf8(QJsonDocument(members).toJson(QJsonDocument::Compact)));
}

void WatchReport::showFiles(const char* mark, const QString& event, const QStringList& files)
{
    // A terminal shows only the first files; a pipe gets all of them.
    constexpr int mostOnTerminal = 10;

    const int shown = isLive() ? qMin(files.size(), mostOnTerminal) : files.size();
    const QStringList shownFiles = files.mid(0, shown);
    for (const QString& file : shownFiles) {
        show(QLatin1String(mark) + CommandLine::printable(file), event,
             {{QStringLiteral("name"), file}});
    }
    if (shown < files.size()) {
        m_display.showEvent(
            QStringLiteral("%1... and %2 more").arg(QLatin1String(mark)).arg(files.size() - shown));
    }
}
