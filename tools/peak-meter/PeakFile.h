#ifndef TOOLS_PEAKMETER_PEAKFILE_H
#define TOOLS_PEAKMETER_PEAKFILE_H

#include "ExitCode.h"

#include <QtCore/QLockFile>
#include <QtCore/QString>

class DragIndicator;

/*
 * The file that keeps a DragIndicator between runs. It is complete at any time: it has either the
 * old or the new content. Only one run at a time may use it.
 */
class PeakFile
{
public:
    explicit PeakFile(const QString& path);

    // Locks the file for this run and reads the records, if it exists. Prints an error if it cannot
    // be read or written.
    ExitCode restore(DragIndicator& indicator);

    // Returns an error message, or an empty string on success. The records then survive a crash of
    // the program and a power cut.
    QString save(const DragIndicator& indicator) const;

private:
    ExitCode read(DragIndicator& indicator) const;
    ExitCode refuse(const QString& reason) const;
    QString writeError(const QString& reason) const;

    const QString m_path;
    const QString m_name; // printable
    QLockFile m_lock;
};

#endif
