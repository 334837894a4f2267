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

constexpr int longWhileInMs = 30000;

class TerminalProcess : public QProcess
{
public:
    explicit TerminalProcess(int line) : m_line(line) {}

protected:
    void setupChildProcess() override { dup2(m_line, STDOUT_FILENO); }

private:
    int m_line;
};

// As the program wrote it: the terminal makes no "\r\n" of a "\n".
void setRaw(int terminal)
{
    termios settings = {};
    tcgetattr(terminal, &settings);
    cfmakeraw(&settings);
    tcsetattr(terminal, TCSANOW, &settings);
}

} // namespace

Terminal::Terminal(int columns)
    : m_screen(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)), m_line(-1)
{
    if (m_screen < 0 || grantpt(m_screen) != 0 || unlockpt(m_screen) != 0) {
        qFatal("there is no terminal to be had");
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
    close(m_line);
    close(m_screen);
}

QByteArray Terminal::run(const QString& program, const QStringList& arguments)
{
    TerminalProcess process(m_line);
    process.start(program, arguments);
    QByteArray written;
    QElapsedTimer clock;
    clock.start();
    // Read all the time: a terminal that nobody reads stops its program.
    while (!process.waitForFinished(20) && process.state() != QProcess::NotRunning &&
           clock.elapsed() < longWhileInMs) {
        written += readAll();
    }
    return written + readAll();
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
