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
            return QStringLiteral("unknown rule '%1'").arg(rule);
        }
    }
    return QString();
}

} // namespace

QList<QCommandLineOption> Options::all()
{
    return {
        {codecName,
         QStringLiteral("The codec that the program passes to IniFileManager, such as UTF-8; "
                        "without one, values are Latin-1."),
         QStringLiteral("NAME")},
        {levelName,
         QStringLiteral("The lowest severity that is shown: error, warning (the default) or note."),
         QStringLiteral("SEVERITY")},
        {allName,
         QStringLiteral("Show every finding, not only the first of its rule and severity in a "
                        "file.")},
        {ignoreName, QStringLiteral("Omit the findings of RULE; may be given several times."),
         QStringLiteral("RULE")},
        {ignoreListName,
         QStringLiteral("Omit the findings that the file LIST names: a line RULE PATTERN for "
                        "each rule and the files to ignore it in, '*' for every rule."),
         QStringLiteral("LIST")},
        {{QStringLiteral("p"), patternName},
         QStringLiteral("The files of a directory that are read, *.ini by default; may be given "
                        "several times."),
         QStringLiteral("PATTERN")},
        {cleanName,
         QStringLiteral("Clean each FILE up, as IniFileManager::cleanUp() does, instead of "
                        "checking it: commas become spaces, %23 becomes #. The changes are "
                        "printed as a unified diff.")},
        {dryRunName,
         QStringLiteral("With --clean: change no FILE, only print the diff, which patch accepts.")},
        {formatName,
         QStringLiteral("The format of the results: text (the default), json or sarif."),
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
        return QStringLiteral("at least one FILE is required");
    }
    if (isDryRun && !mustClean) {
        return QStringLiteral("--dry-run requires --clean");
    }
    for (const QString& name : {codecName, levelName, allName, ignoreName, ignoreListName}) {
        if (mustClean && parser.isSet(name)) {
            return QStringLiteral("--%1 cannot be used with --clean").arg(name);
        }
    }
    const QString error = readFormat(parser);
    return error.isEmpty() ? readFilter(parser) : error;
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
        return QStringLiteral("--format=sarif cannot be used with --clean");
    }
    return QString();
}

QString Options::readFilter(const QCommandLineParser& parser)
{
    codec = QTextCodec::codecForName(parser.value(codecName).toLatin1());
    if (parser.isSet(codecName) && codec == nullptr) {
        return QStringLiteral("unknown codec '%1'").arg(parser.value(codecName));
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
        QString error = filter.ignoreList.read(list);
        if (!error.isEmpty()) {
            return error;
        }
    }
    filter.areRepeatsShown = parser.isSet(allName);
    filter.ignoredRules = parser.values(ignoreName);
    return unknownRule(filter.ignoredRules);
}
