#ifndef TESTS_PROCESSUSAGE_H
#define TESTS_PROCESSUSAGE_H

// The system resources that this process uses.
struct ProcessUsage
{
    long descriptors = 0;
    long threads = 0;
    long children = 0; // including zombies
    long inotifyWatches = 0;
    long heapInKiB = 0; // allocated; exact before rounding
    long residentInKiB = 0;

    static ProcessUsage now();
};

#endif
