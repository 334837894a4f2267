#ifndef TESTS_FUZZ_H
#define TESTS_FUZZ_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>

// What a target is, for libFuzzer as for the replay of its corpus. The initializing function is
// optional.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// What the fuzz targets share. A target that finds something wrong ends the process.
namespace Fuzz {

// The exit code of a target that this machine cannot run.
constexpr int exitSkipped = 77;

// Ends the process unless it is in a device root (see script/device-root). To be called once,
// before the first input.
void needDeviceRoot();

// The input as bytes, at most limit of them.
QByteArray toBytes(const std::uint8_t* data, std::size_t size, int limit = 1 << 20);

// Takes the first line, without its end, from bytes.
QByteArray takeLine(QByteArray& bytes);

// The bytes as UTF-8; behind the byte order mark of UTF-16 (little endian) as they are, so that
// halves of surrogate pairs are among the texts.
QString toText(const QByteArray& bytes);

// The process's own directory, which is in TMPDIR, and a path in it.
QString folder();
QString path(const QString& name);

QString writeFile(const QString& name, const QByteArray& content);
QByteArray readFile(const QString& filePath);
void removeFile(const QString& filePath);

// Level and text of all messages since the last call, whoever made them.
QStringList takeMessages();

// What messages call a file whose path differs from one run to another.
extern const QString fileName;

// The same messages, with fileName in place of filePath.
QStringList takeMessages(const QString& filePath);

// Ends the process with both texts when they differ; what says which they are.
void verifySame(const char* what, const QStringList& actual, const QStringList& expected);
void verifySame(const char* what, const QString& actual, const QString& expected);
void verifySame(const char* what, const QByteArray& actual, const QByteArray& expected);
void verify(bool isTrue, const char* what);

} // namespace Fuzz

#endif
