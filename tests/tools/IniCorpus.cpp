// Compares the findings of ini-lint in all files of directories with what QSettings reads, and
// prints the number of findings by rule and severity.
#include "LintTruth.h"

#include "ini-lint/FindingFilter.h"
#include "ini-lint/IniRules.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

struct Count
{
    int findings = 0;
    int files = 0;
};

struct Corpus
{
    QMap<QString, Count> rules;        // by rule and severity
    QMap<QString, QVector<int>> shown; // numbers of findings of the files, by suffix
    int contradictions = 0;
};

void ignoreMessages(QtMsgType /*type*/, const QMessageLogContext& /*context*/,
                    const QString& /*text*/)
{
}

void print(const QString& line)
{
    std::puts(line.toUtf8().constData());
}

void countFindings(const Findings& findings, Corpus& corpus)
{
    FindingFilter everyLevel;
    everyLevel.level = Severity::Note;
    for (const Finding& finding : everyLevel.apply(QString(), findings)) {
        Count& count =
            corpus.rules[finding.rule + QLatin1Char(' ') + Severities::name(finding.severity)];
        count.findings += finding.repeats + 1;
        ++count.files;
    }
}

bool checkFile(const QString& filePath, const QString& copies, Corpus& corpus)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        print(filePath + QStringLiteral(": ") + file.errorString());
        return false;
    }
    const QByteArray text = file.readAll();
    const Findings findings = IniRules::check(text, nullptr);
    countFindings(findings, corpus);
    corpus.shown[filePath.section(QLatin1Char('.'), -1)].append(
        FindingFilter().apply(filePath, findings).size());
    const QStringList contradictions = LintTruth(text, findings, copies).contradictions();
    for (const QString& contradiction : contradictions) {
        print(filePath + QStringLiteral(": ") + contradiction);
    }
    corpus.contradictions += contradictions.size();
    return true;
}

void printTables(Corpus& corpus)
{
    print(QStringLiteral("rule and severity         findings  files"));
    for (auto rule = corpus.rules.cbegin(); rule != corpus.rules.cend(); ++rule) {
        print(QStringLiteral("%1%2%3")
                  .arg(rule.key(), -24)
                  .arg(rule->findings, 10)
                  .arg(rule->files, 7));
    }
    print(QStringLiteral("\nfiles         number  without findings  median of findings"));
    for (auto kind = corpus.shown.begin(); kind != corpus.shown.end(); ++kind) {
        std::sort(kind->begin(), kind->end());
        print(QStringLiteral(".%1%2%3%4")
                  .arg(kind.key(), -11)
                  .arg(kind->size(), 8)
                  .arg(kind->count(0), 18)
                  .arg(kind->at(kind->size() / 2), 20));
    }
    print(QStringLiteral("\nfindings that QSettings contradicts: %1").arg(corpus.contradictions));
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList names = {"*.ini", "*.conf", "*.desktop", "*.service"};
    const QTemporaryDir copies;
    if (argc < 2 || !copies.isValid()) {
        std::fputs("usage: ini-corpus DIRECTORY...; copies are created in TMPDIR\n", stderr);
        return 2;
    }
    qInstallMessageHandler(&ignoreMessages);

    Corpus corpus;
    bool isAllRead = true;
    for (const QString& directory : application.arguments().mid(1)) {
        QDirIterator files(directory, names, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            isAllRead = checkFile(files.next(), copies.path(), corpus) && isAllRead;
        }
    }
    printTables(corpus);
    if (!isAllRead || corpus.shown.isEmpty()) {
        return 2;
    }
    return corpus.contradictions > 0 ? 1 : 0;
}
