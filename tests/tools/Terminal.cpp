#include "Terminal.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace {

constexpr int timeoutInMs = 30000;
constexpr int pollIntervalInMs = 20;

class TerminalProcess : public QProcess
{
public:
    TerminalProcess(int line, int descriptor) : m_line(line), m_descriptor(descriptor) {}

protected:
    void setupChildProcess() override { dup2(m_line, m_descriptor); }

private:
    int m_line;
    int m_descriptor;
};

// The terminal passes bytes unchanged; otherwise it would convert "\n" to "\r\n".
void setRaw(int terminal)
{
    termios settings = {};
    tcgetattr(terminal, &settings);
    cfmakeraw(&settings);
    tcsetattr(terminal, TCSANOW, &settings);
}

} // namespace

Terminal::Terminal(int columns, Stream stream)
    : m_stream(stream)
    , m_screen(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
    , m_line(-1)
{
    if (m_screen < 0 || grantpt(m_screen) != 0 || unlockpt(m_screen) != 0) {
        qFatal("no pseudo-terminal is available");
    }
    m_line = open(ptsname(m_screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(columns);
    ioctl(m_screen, TIOCSWINSZ, &size);
    setRaw(m_line);
}

Terminal::~Terminal()
{
    // After a test that failed early.
    if (!m_process.isNull()) {
        finish();
    }
    close(m_line);
    close(m_screen);
}

QByteArray Terminal::run(const QString& program, const QStringList& arguments)
{
    start(program, arguments);
    return finish();
}

void Terminal::start(const QString& program, const QStringList& arguments)
{
    m_written.clear();
    m_process.reset(
        new TerminalProcess(m_line, m_stream == StandardError ? STDERR_FILENO : STDOUT_FILENO));
    m_process->start(program, arguments);
}

void Terminal::write(const QByteArray& input)
{
    m_process->write(input);
    m_process->waitForBytesWritten(timeoutInMs);
}

bool Terminal::waitForText(const QByteArray& text)
{
    QElapsedTimer clock;
    clock.start();
    while (!m_written.contains(text) && m_process->state() != QProcess::NotRunning &&
           clock.elapsed() < timeoutInMs) {
        m_process->waitForFinished(pollIntervalInMs);
        m_written += readAll();
    }
    return m_written.contains(text);
}

QByteArray Terminal::finish()
{
    m_process->closeWriteChannel();
    QElapsedTimer clock;
    clock.start();
    // Reads continuously: a program blocks when its terminal is not read.
    while (!m_process->waitForFinished(pollIntervalInMs) &&
           m_process->state() != QProcess::NotRunning && clock.elapsed() < timeoutInMs) {
        m_written += readAll();
    }
    m_process.reset();
    return m_written += readAll();
}

QList<QByteArray> Terminal::screenAfter(const QByteArray& written)
{
    QList<QByteArray> lines = {QByteArray()};
    int column = 0;
    for (const char character : written) {
        if (character == '\n') {
            lines.append(QByteArray());
            column = 0;
        } else if (character == '\r') {
            column = 0;
        } else {
            lines.last().replace(column++, 1, &character, 1);
        }
    }
    for (QByteArray& line : lines) {
        while (line.endsWith(' ')) {
            line.chop(1);
        }
    }
    return lines;
}

QByteArray Terminal::readAll() const
{
    QByteArray result;
    std::array<char, 4096> buffer;
    for (;;) {
        const ssize_t size = read(m_screen, buffer.data(), buffer.size());
        if (size <= 0) {
            return result;
        }
        result.append(buffer.data(), static_cast<int>(size));
    }
}
