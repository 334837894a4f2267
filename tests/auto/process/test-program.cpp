// The program that the tests of QProcessHandler run. Its first argument is a command. It does not
// use Qt.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using Arguments = std::vector<std::string>;

void sleepMs(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

bool writeAll(int descriptor, const std::string& bytes)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t count = write(descriptor, bytes.data() + written, bytes.size() - written);
        if (count < 0) {
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

std::string fromHex(const std::string& hex)
{
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// Writes the file atomically.
void writeProcessId(const std::string& filePath)
{
    const std::string unfinished = filePath + ".part";
    std::ofstream(unfinished) << getpid();
    std::rename(unfinished.c_str(), filePath.c_str());
}

// signal N: terminates itself with that signal.
int terminateBySignal(int number)
{
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    signal(number, SIG_DFL); // a sanitizer would turn some signals into an exit
    close(STDERR_FILENO);    // an emulator would report the signal there
    raise(number);
    return EXIT_FAILURE;
}

// write OUT ERR: writes these hexadecimal bytes to standard output and standard error.
int writeBytes(const std::string& output, const std::string& error)
{
    return writeAll(STDOUT_FILENO, fromHex(output)) && writeAll(STDERR_FILENO, fromHex(error))
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}

// flood OUT ERR: writes these numbers of bytes to standard output and standard error, alternately.
int flood(std::size_t output, std::size_t error)
{
    constexpr std::size_t blockSize = 4096;
    while (output > 0 || error > 0) {
        const std::size_t outputBlock = output < blockSize ? output : blockSize;
        const std::size_t errorBlock = error < blockSize ? error : blockSize;
        if (!writeAll(STDOUT_FILENO, std::string(outputBlock, 'o')) ||
            !writeAll(STDERR_FILENO, std::string(errorBlock, 'e'))) {
            return EXIT_FAILURE;
        }
        output -= outputBlock;
        error -= errorBlock;
    }
    return EXIT_SUCCESS;
}

// echo: copies standard input to standard output until the end.
int echo()
{
    char buffer[4096];
    ssize_t count = 0;
    while ((count = read(STDIN_FILENO, buffer, sizeof buffer)) > 0) {
        if (!writeAll(STDOUT_FILENO, std::string(buffer, static_cast<std::size_t>(count)))) {
            return EXIT_FAILURE;
        }
    }
    return count == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

// cwd: writes the working directory.
int printWorkingDirectory()
{
    char buffer[4096];
    return getcwd(buffer, sizeof buffer) != nullptr && writeAll(STDOUT_FILENO, buffer)
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}

// arguments ...: writes each argument in hexadecimal on its own line.
int printArguments(const Arguments& arguments)
{
    for (std::size_t i = 2; i < arguments.size(); ++i) {
        for (const char c : arguments[i]) {
            std::printf("%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        }
        std::printf("\n");
    }
    return EXIT_SUCCESS;
}

// stay FILE: writes its process ID to the file and runs until it is killed.
int stay(const std::string& processIdFile)
{
    writeProcessId(processIdFile);
    while (true) {
        pause();
    }
}

// wait-for GO DONE: writes to both channels, waits for the file GO, writes to both channels again,
// and writes its process ID to the file DONE; the exit code is 7.
int waitForFile(const std::string& go, const std::string& done)
{
    writeAll(STDOUT_FILENO, "early output");
    writeAll(STDERR_FILENO, "early error");
    while (access(go.c_str(), F_OK) != 0) {
        sleepMs(2);
    }
    writeAll(STDOUT_FILENO, "late output");
    writeAll(STDERR_FILENO, "late error");
    writeProcessId(done);
    return 7;
}

} // namespace

int main(int argc, char* argv[])
{
    // Terminates the program if the test was killed.
    alarm(60);
    const Arguments arguments(argv, argv + argc);
    const std::string command = argc > 1 ? arguments[1] : std::string();
    if (command == "exit" && argc == 3) {
        return std::stoi(arguments[2]);
    }
    if (command == "signal" && argc == 3) {
        return terminateBySignal(std::stoi(arguments[2]));
    }
    if (command == "delay" && argc == 3) {
        sleepMs(std::stoi(arguments[2]));
        return EXIT_SUCCESS;
    }
    if (command == "write" && argc == 4) {
        return writeBytes(arguments[2], arguments[3]);
    }
    if (command == "flood" && argc == 4) {
        return flood(std::stoul(arguments[2]), std::stoul(arguments[3]));
    }
    if (command == "echo") {
        return echo();
    }
    if (command == "cwd") {
        return printWorkingDirectory();
    }
    if (command == "arguments") {
        return printArguments(arguments);
    }
    if (command == "stay" && argc == 3) {
        return stay(arguments[2]);
    }
    if (command == "wait-for" && argc == 4) {
        return waitForFile(arguments[2], arguments[3]);
    }
    // Without a command the program exits successfully.
    return argc == 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
