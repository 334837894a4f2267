#ifndef TESTS_THREADS_H
#define TESTS_THREADS_H

#include <QtCore/QAtomicInt>

#include <functional>
#include <thread>
#include <vector>

constexpr int threadCount = 8;

// Calls the function with the thread's number in threadCount threads.
inline void callInManyThreads(const std::function<void(int)>& function)
{
    std::vector<std::thread> threads;
    QAtomicInt waiting(threadCount);
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&function, &waiting, number] {
            // All threads start together, so that the calls overlap.
            waiting.fetchAndSubOrdered(1);
            while (waiting.loadAcquire() > 0) {
                std::this_thread::yield();
            }
            function(number);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// All threads call the function at the same time, each of them rounds times with its own number;
// returns the number of calls that returned true.
inline int correctCallsInManyThreads(int rounds, const std::function<bool(int)>& isRight)
{
    QAtomicInt right(0);
    callInManyThreads([rounds, &isRight, &right](int number) {
        for (int i = 0; i < rounds; ++i) {
            if (isRight(number)) {
                right.fetchAndAddRelaxed(1);
            }
        }
    });
    return right.loadAcquire();
}

#endif
