#ifndef TESTS_FUZZ_H
#define TESTS_FUZZ_H

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>

// The functions of a target, for libFuzzer and for the replay of its corpus. The initialization
// function is optional.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// Shared functions of the fuzz targets. A target that finds an error aborts the process.
namespace Fuzz {

// The exit code of a target that this machine cannot run.
constexpr int exitSkipped = 77;

// Exits unless the process runs in a device root (see script/device-root). Call this once, before
// the first input.
void needDeviceRoot();

// The input as bytes, at most limit of them.
QByteArray toBytes(const std::uint8_t* data, std::size_t size, int limit = 1 << 20);

// Removes the first line from bytes and returns it without its line feed.
QByteArray takeLine(QByteArray& bytes);

// Decodes the bytes as UTF-8 or, after a byte order mark, as UTF-16 (little endian) without
// validation, so that texts may contain halves of surrogate pairs.
QString toText(const QByteArray& bytes);

// The temporary directory of the process, and a path in it.
QString directory();
QString path(const QString& name);

QString writeFile(const QString& name, const QByteArray& content);
QByteArray readFile(const QString& filePath);
void removeFile(const QString& filePath);

// Level and text of all messages since the last call, from any source.
QStringList takeMessages();

// Replaces paths in messages, because paths differ between runs.
extern const QString fileName;

// The same messages, with filePath replaced by fileName.
QStringList takeMessages(const QString& filePath);

// Abort the process if the texts differ or the condition is false; what describes them.
void verifySame(const char* what, const QStringList& actual, const QStringList& expected);
void verifySame(const char* what, const QString& actual, const QString& expected);
void verifySame(const char* what, const QByteArray& actual, const QByteArray& expected);
void verify(bool isTrue, const char* what);

} // namespace Fuzz

#endif
