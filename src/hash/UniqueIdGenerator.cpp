#include "UniqueIdGenerator.h"

UniqueIdGenerator::UniqueIdGenerator() : m_counter(0) {}

UniqueIdGenerator::~UniqueIdGenerator() = default;

UniqueIdGenerator& UniqueIdGenerator::getInstance()
{
    static UniqueIdGenerator instance;
    return instance;
}

QAtomicInt UniqueIdGenerator::getId()
{
    return m_counter.fetchAndAddOrdered(1);
}
