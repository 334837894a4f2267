#ifndef BENCH_ROWS_H
#define BENCH_ROWS_H

#include <QtCore/QString>
#include <QtCore/QVector>

// The results of the benchmark programs, as their files hold them.

struct TimeRow
{
    QString program;
    QString operation;
    bool isInTable;
    QString plot;
    QString unit;
    double size;
    QString contender;
    double nanoseconds;
    double ratio;
    double target; // 0 where there is none
    QString verdict;
};

struct CountRow
{
    QString program;
    QString operation;
    QString measure;
    double count;
    QString limit; // empty where there is none

    QString key() const;
    bool isWithinLimit() const;
};

struct Rows
{
    QVector<TimeRow> times;
    QVector<CountRow> counts;
};

// Ends the program when the file cannot be read.
Rows readRows(const QString& filePath);
QString readFile(const QString& filePath);
void writeFile(const QString& filePath, const QString& content);

// With three digits or so, and a unit: "1.25 ms".
QString readableTime(double nanoseconds);

// What the results hold for, without saying whose machine it is.
struct Environment
{
    QString name;
    QString value;
};
QVector<Environment> environment();

#endif
