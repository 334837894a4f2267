#ifndef TESTS_OPERATIONS_H
#define TESTS_OPERATIONS_H

#include "FaultyProcess.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class MessageRecorder;

// What came of an operation.
struct Outcome
{
    FaultyRun run;
    QStringList results;
    QStringList messages; // as "Class: text"; those of Qt as ": text"

    bool hasFault() const { return !run.failedCalls.isEmpty(); }
    bool hasFailed(const char* call) const { return run.failedCalls.contains(call); }
};

// A use of the library on files in a directory.
struct Operation
{
    const char* name;
    void (*prepare)(const QString& directory);
    QStringList (*use)(const QString& directory);

    // What the outcome, and the files that are there now, have that they must not; empty when all
    // is as it should be.
    QString (*problem)(const QString& directory, const Outcome& outcome);

    // Whether the file that it writes is the old one or the new one, byte for byte; a null pointer
    // where it writes none.
    bool (*isOldOrNew)(const QString& directory) = nullptr;
};

namespace Operations {

QVector<Operation> cleaningUp();
Operation programTwice();

// These and others that write a file, which is then the old one or the new one.
QVector<Operation> writing();

// These and others that read or write.
QVector<Operation> transferring();

// These and all others.
QVector<Operation> all();

// Lets a copy of this process, with the fault, do the operation.
Outcome run(const Operation& operation, const QString& directory, const Fault& fault,
            MessageRecorder& messages);

} // namespace Operations

#endif
