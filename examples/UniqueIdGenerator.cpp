// Generates numbers that are unique within the process, in several threads and without a lock.

#include <UniqueIdGenerator.h>

#include <array>
#include <cstdio>
#include <set>
#include <thread>

int main()
{
    //! [number]
    UniqueIdGenerator& generator = UniqueIdGenerator::getInstance();
    const int first = generator.getId();
    const int second = generator.getId();
    std::printf("numbers %d and %d\n", first, second);
    //! [number]

    std::array<int, 4> numbers{};
    std::array<std::thread, 4> threads;
    for (std::size_t i = 0; i < threads.size(); ++i) {
        threads[i] =
            std::thread([&numbers, i] { numbers[i] = UniqueIdGenerator::getInstance().getId(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    // Which thread gets which number is not determined; no two get the same one.
    const std::set<int> different(numbers.begin(), numbers.end());
    std::printf("4 threads: %d different numbers\n", static_cast<int>(different.size()));
    return 0;
}
