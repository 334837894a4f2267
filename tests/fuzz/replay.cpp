// Replaces main() of libFuzzer, with any compiler: runs a target on each file in the arguments and
// on the files of each directory in the arguments.
#include "Fuzz.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <cstdlib>

namespace {

QStringList filesOf(const QString& path)
{
    if (!QFileInfo(path).isDir()) {
        return {path};
    }
    QStringList files;
    const QDir directory(path);
    for (const QString& name : directory.entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
        files += directory.filePath(name);
    }
    return files;
}

} // namespace

// For targets without their own function.
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int*, char***)
{
    return 0;
}

int main(int argc, char** argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        for (const QString& filePath : filesOf(QFile::decodeName(argv[i]))) {
            // Printed before the target runs: if the process aborts, the last name is that of the
            // input.
            std::printf("%s\n", qPrintable(filePath));
            std::fflush(stdout);
            QFile file(filePath);
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read it: %s\n", qPrintable(file.errorString()));
                return EXIT_FAILURE;
            }
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                   std::size_t(bytes.size()));
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
