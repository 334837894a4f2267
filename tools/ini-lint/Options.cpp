#include "Options.h"

#include "IniRules.h"

#include <QtCore/QTextCodec>

namespace {

const QString codecName = QStringLiteral("codec");
const QString levelName = QStringLiteral("level");
const QString allName = QStringLiteral("all");
const QString ignoreName = QStringLiteral("ignore");
const QString ignoreListName = QStringLiteral("ignore-list");
const QString patternName = QStringLiteral("pattern");
const QString cleanName = QStringLiteral("clean");
const QString dryRunName = QStringLiteral("dry-run");
const QString formatName = QStringLiteral("format");

QStringList formatNames()
{
    return {QStringLiteral("text"), QStringLiteral("json"), QStringLiteral("sarif")};
}

// Joins words for a message: "text, json or sarif".
QString alternatives(const QStringList& words)
{
    return QStringList(words.mid(0, words.size() - 1)).join(QStringLiteral(", ")) +
           QStringLiteral(" or ") + words.constLast();
}

QString unknownRule(const QStringList& rules)
{
    for (const QString& rule : rules) {
        if (!IniRules::contains(rule)) {
            return QStringLiteral("there is no rule '%1'").arg(rule);
        }
    }
    return QString();
}

} // namespace

QList<QCommandLineOption> Options::all()
{
    return {
        {codecName,
         QStringLiteral("The codec that the program gives to IniFileManager, such as UTF-8; "
                        "without one values are read as Latin-1."),
         QStringLiteral("NAME")},
        {levelName,
         QStringLiteral("The least severity that is shown: error, warning (the default) or note."),
         QStringLiteral("SEVERITY")},
        {allName,
         QStringLiteral("Show every finding, not only the first of its rule and severity in a "
                        "file.")},
        {ignoreName, QStringLiteral("Omit the findings of RULE; may be given several times."),
         QStringLiteral("RULE")},
        {ignoreListName,
         QStringLiteral("Omit findings as LIST says: a line RULE PATTERN for each rule and the "
                        "files that it says nothing of, '*' for every rule."),
         QStringLiteral("LIST")},
        {{QStringLiteral("p"), patternName},
         QStringLiteral("Which files of a directory are read, *.ini by default; may be given "
                        "several times."),
         QStringLiteral("PATTERN")},
        {cleanName,
         QStringLiteral("Instead of looking for findings clean each FILE up, as "
                        "IniFileManager::cleanUp() does: commas become spaces, %23 becomes #. "
                        "The changes are printed as a unified diff.")},
        {dryRunName,
         QStringLiteral("With --clean: touch no FILE, only print the diff, which patch accepts.")},
        {formatName,
         QStringLiteral("How the results are printed: text (the default), json or sarif."),
         QStringLiteral("FORMAT"), QStringLiteral("text")},
    };
}

QString Options::read(const QCommandLineParser& parser)
{
    mustClean = parser.isSet(cleanName);
    isDryRun = parser.isSet(dryRunName);
    patterns = parser.isSet(patternName) ? parser.values(patternName)
                                         : QStringList(QStringLiteral("*.ini"));
    paths = parser.positionalArguments();

    if (paths.isEmpty()) {
        return QStringLiteral("at least one FILE is needed");
    }
    if (isDryRun && !mustClean) {
        return QStringLiteral("--dry-run needs --clean");
    }
    for (const QString& name : {codecName, levelName, allName, ignoreName, ignoreListName}) {
        if (mustClean && parser.isSet(name)) {
            return QStringLiteral("--%1 means nothing with --clean").arg(name);
        }
    }
    const QString trouble = readFormat(parser);
    return trouble.isEmpty() ? readFilter(parser) : trouble;
}

QString Options::readFormat(const QCommandLineParser& parser)
{
    const QString name = parser.value(formatName);
    const int index = formatNames().indexOf(name);
    if (index < 0) {
        return QStringLiteral("--format must be %1, not '%2'")
            .arg(alternatives(formatNames()), name);
    }
    format = static_cast<ReportFormat>(index);
    if (mustClean && format == ReportFormat::Sarif) {
        return QStringLiteral("--format=sarif means nothing with --clean");
    }
    return QString();
}

QString Options::readFilter(const QCommandLineParser& parser)
{
    codec = QTextCodec::codecForName(parser.value(codecName).toLatin1());
    if (parser.isSet(codecName) && codec == nullptr) {
        return QStringLiteral("there is no codec '%1'").arg(parser.value(codecName));
    }
    if (parser.isSet(levelName)) {
        const std::optional<Severity> severity = Severities::fromName(parser.value(levelName));
        if (!severity) {
            return QStringLiteral("--level must be %1, not '%2'")
                .arg(alternatives(Severities::names()), parser.value(levelName));
        }
        filter.level = *severity;
    }
    const QStringList lists = parser.values(ignoreListName);
    for (const QString& list : lists) {
        QString trouble = filter.ignoreList.read(list);
        if (!trouble.isEmpty()) {
            return trouble;
        }
    }
    filter.areRepeatsShown = parser.isSet(allName);
    filter.ignoredRules = parser.values(ignoreName);
    return unknownRule(filter.ignoredRules);
}
