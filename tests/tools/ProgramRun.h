#ifndef TESTS_PROGRAMRUN_H
#define TESTS_PROGRAMRUN_H

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

// What a run of a program leaves behind.
struct ProgramResult
{
    int exitCode = -1; // also of one that did not end by itself
    QString output;
    QString errors;
};

// Fails the test unless the run ended like that; the errors first, as they say most.
void verifyResult(const ProgramResult& result, int exitCode, const QString& output,
                  const QString& errors = QString());

// Variables, as env takes them, that preload a library. Paths in LD_PRELOAD end at a space, so it
// holds the name of the file alone.
QStringList preloadOf(const QString& libraryPath);

// A run of a program in a directory, which also takes its temporary files unless told otherwise.
class ProgramRun
{
public:
    ProgramRun(const QString& program, const QStringList& arguments, const QString& directory)
        : ProgramRun(program, arguments, directory, directory)
    {
    }
    ProgramRun(const QString& program, const QStringList& arguments, const QString& directory,
               const QString& temporaryDirectory);

    // Gives the program input on its standard input.
    void write(const QByteArray& input);
    void send(int signalNumber);
    // Waits until the program has written text on its standard output, so many times.
    bool waitForOutput(const QString& text, int times = 1);
    bool isRunning() const;
    // Ends the input and waits for the end.
    ProgramResult finish();

private:
    // Takes signals as in the foreground: nohup and shells make what they start ignore some.
    class ForegroundProcess : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    ForegroundProcess m_process;
    QByteArray m_output;
};

#endif
