#ifndef BENCH_MESSAGES_H
#define BENCH_MESSAGES_H

#include <QtCore/QString>

// Takes the log messages, so that no time goes into a terminal, and counts them.
namespace Messages {

void take();

void forget();
int count();
QString last();

} // namespace Messages

#endif
