#ifndef TESTS_PROCESSUSAGE_H
#define TESTS_PROCESSUSAGE_H

// What this process has of the system, as the system counts it.
struct ProcessUsage
{
    long descriptors = 0;
    long threads = 0;
    long children = 0; // dead ones that nobody waited for included
    long inotifyWatches = 0;
    long heapInKiB = 0; // allocated, to the byte before it is rounded
    long residentInKiB = 0;

    static ProcessUsage now();
};

#endif
