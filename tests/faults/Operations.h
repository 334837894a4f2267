#ifndef TESTS_OPERATIONS_H
#define TESTS_OPERATIONS_H

#include "FaultyProcess.h"

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

class MessageRecorder;

// The result of an operation.
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

    // What is wrong with the outcome and the files; empty if nothing is.
    QString (*problem)(const QString& directory, const Outcome& outcome);

    // Whether the written file is the old one or the new one, byte for byte; a null pointer if the
    // operation writes none.
    bool (*isOldOrNew)(const QString& directory) = nullptr;
};

namespace Operations {

QVector<Operation> cleaningUp();
Operation programTwice();

// These and others that write a file.
QVector<Operation> writing();

// These and others that read or write.
QVector<Operation> transferring();

// These and all others.
QVector<Operation> all();

// Runs the operation with the fault in a copy of this process.
Outcome run(const Operation& operation, const QString& directory, const Fault& fault,
            MessageRecorder& messages);

} // namespace Operations

#endif
