#ifndef TESTS_SYSTEMCALLS_H
#define TESTS_SYSTEMCALLS_H

/*
 * The calls of the system that deal with files, descriptors and new processes: what can fail when a
 * disk is full or broken, a file may not be touched, or descriptors have run out.
 */
namespace SystemCalls {

// The name of a watched call; a null pointer for every other.
const char* nameOf(int number);

/*
 * Has this process, and those that it starts, ask before each watched call; gives the descriptor at
 * which to answer, or -1 where the system does not offer that. It cannot be undone.
 */
int watch();

} // namespace SystemCalls

#endif
