#ifndef TESTS_PROGRAMRUN_H
#define TESTS_PROGRAMRUN_H

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

// The result of running a program.
struct ProgramResult
{
    int exitCode = -1; // of a program that did not exit by itself, too
    QString output;
    QString errors;
};

// Fails the test unless the result is this one. Compares the errors first: they explain most.
void verifyResult(const ProgramResult& result, int exitCode, const QString& output,
                  const QString& errors = QString());

// Arguments for env that preload a library. A path in LD_PRELOAD ends at a space, so LD_PRELOAD is
// only the name of the file.
QStringList preloadOf(const QString& libraryPath);

// A run of a program in a directory, which is also the default for its temporary files.
class ProgramRun
{
public:
    ProgramRun(const QString& program, const QStringList& arguments, const QString& directory)
        : ProgramRun(program, arguments, directory, directory)
    {
    }
    ProgramRun(const QString& program, const QStringList& arguments, const QString& directory,
               const QString& temporaryDirectory);

    // Writes to the standard input of the program.
    void write(const QByteArray& input);
    void send(int signalNumber);
    // Waits until the program has written text to its standard output that many times.
    bool waitForOutput(const QString& text, int times = 1);
    bool isRunning() const;
    // Closes the input and waits until the program exits.
    ProgramResult finish();

private:
    // Resets ignored signals: nohup and shells start background processes with some of them
    // ignored.
    class ForegroundProcess : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    ForegroundProcess m_process;
    QByteArray m_output;
};

#endif
