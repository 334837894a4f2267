#ifndef TESTS_SYSTEMCALLS_H
#define TESTS_SYSTEMCALLS_H

/*
 * The system calls on files, descriptors and new processes, which can fail when a disk is full or
 * broken, access to a file is denied, or descriptors run out.
 */
namespace SystemCalls {

// The name of a watched call; a null pointer for every other call.
const char* nameOf(int number);

/*
 * Makes the kernel suspend this process and its children before each watched call, and notify a
 * supervisor; returns the descriptor for that, or -1 if the system does not support it. Permanent.
 */
int watch();

} // namespace SystemCalls

#endif
