#ifndef TOOLS_PEAKMETER_PEAKFILE_H
#define TOOLS_PEAKMETER_PEAKFILE_H

#include "ExitCode.h"

#include <QtCore/QLockFile>
#include <QtCore/QString>

class DragIndicator;

/*
 * The file that keeps a DragIndicator from one run to the next. At any moment it is whole: either
 * the old one or the new one. Only one run at a time may have it.
 */
class PeakFile
{
public:
    explicit PeakFile(const QString& path);

    // Takes the file for this run and reads the records, if it is there. Complains when it cannot
    // be read, or will not be writable.
    ExitCode restore(DragIndicator& indicator);

    // Gives what went wrong. When nothing did, the records outlast a crash of the program and a
    // loss of power.
    QString save(const DragIndicator& indicator) const;

private:
    ExitCode read(DragIndicator& indicator) const;
    ExitCode refuse(const QString& reason) const;
    QString writeError(const QString& reason) const;

    const QString m_path;
    const QString m_name; // as it is shown
    QLockFile m_lock;
};

#endif
