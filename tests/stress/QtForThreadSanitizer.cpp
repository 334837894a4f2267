// Makes Qt visible to the thread sanitizer, which sees only instrumented code. The distribution's
// Qt is not instrumented, so the sanitizer would report false races under a QMutex or across a
// QSemaphore, and miss races on fields that QSettings does not guard. Tests that link this file
// call the wrappers below, which annotate the lock or the access and then call Qt's function.
#include <QtCore/QMutex>
#include <QtCore/QSemaphore>
#include <QtCore/QSettings>
#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <sanitizer/tsan_interface.h>

#include <cerrno>
#include <cstdarg>

#include <dlfcn.h>
#include <sys/syscall.h>

extern "C" {
// The compiler inserts calls of these functions for accesses to one byte.
void __tsan_read1(void* address);
void __tsan_write1(void* address);
}

namespace {

// Qt's original function. A member function takes its object as the first argument.
template <typename Function>
Function* original(const char* symbol)
{
    auto* const function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
    if (function == nullptr) {
        qFatal("Qt has no %s", symbol);
    }
    return function;
}

/*
 * The fields of a settings object that its users must guard. The sanitizer remembers only the last
 * few accesses to each word, so each field is represented by its own word: words at the start of
 * the object and its private part, which only uninstrumented Qt code reads.
 */
char* enteredGroup(const QSettings* settings)
{
    return const_cast<char*>(reinterpret_cast<const char*>(settings));
}

char* privatePart(const QSettings* settings)
{
    return reinterpret_cast<char* const*>(settings)[1];
}

char* pendingNote(const QSettings* settings)
{
    return privatePart(settings);
}

char* statusOf(const QSettings* settings)
{
    return privatePart(settings) + sizeof(void*);
}

// Every access to the content may parse a section, which sets the status.
void annotateRead(const QSettings* settings)
{
    __tsan_read1(enteredGroup(settings));
    __tsan_write1(statusOf(settings));
}

void annotateWrite(const QSettings* settings)
{
    annotateRead(settings);
    __tsan_write1(pendingNote(settings));
}

} // namespace

// If the kernel supports process descriptors, Qt starts processes with the clone system call, which
// the sanitizer does not intercept: the child deadlocks if another thread holds one of the
// sanitizer's locks at that moment. Qt probes for the feature with waitid; if that fails, Qt calls
// fork(), which the sanitizer handles.
extern "C" Q_DECL_EXPORT long syscall(long number, ...) noexcept
{
    static auto* const callSystem =
        original<long(long, long, long, long, long, long, long)>("syscall");
    if (number == SYS_waitid) {
        errno = ENOSYS;
        return -1;
    }
    va_list list;
    va_start(list, number);
    long arguments[6];
    for (long& argument : arguments) {
        argument = va_arg(list, long);
    }
    va_end(list);
    return callSystem(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
                      arguments[5]);
}

void QMutex::lock() noexcept
{
    static auto* const lockMutex = original<void(QMutex*)>("_ZN6QMutex4lockEv");
    __tsan_mutex_pre_lock(this, __tsan_mutex_write_reentrant);
    lockMutex(this);
    __tsan_mutex_post_lock(this, __tsan_mutex_write_reentrant, 1);
}

void QMutex::unlock() noexcept
{
    static auto* const unlockMutex = original<void(QMutex*)>("_ZN6QMutex6unlockEv");
    __tsan_mutex_pre_unlock(this, 0);
    unlockMutex(this);
    __tsan_mutex_post_unlock(this, 0);
}

void QSemaphore::release(int count)
{
    static auto* const releaseSemaphore =
        original<void(QSemaphore*, int)>("_ZN10QSemaphore7releaseEi");
    __tsan_release(this);
    releaseSemaphore(this, count);
}

void QSemaphore::acquire(int count)
{
    static auto* const acquireSemaphore =
        original<void(QSemaphore*, int)>("_ZN10QSemaphore7acquireEi");
    acquireSemaphore(this, count);
    __tsan_acquire(this);
}

bool QSemaphore::tryAcquire(int count, int timeout)
{
    static auto* const tryAcquireSemaphore =
        original<bool(QSemaphore*, int, int)>("_ZN10QSemaphore10tryAcquireEii");
    const bool isAcquired = tryAcquireSemaphore(this, count, timeout);
    if (isAcquired) {
        __tsan_acquire(this);
    }
    return isAcquired;
}

void QSettings::beginGroup(const QString& prefix)
{
    static auto* const begin =
        original<void(QSettings*, const QString&)>("_ZN9QSettings10beginGroupERK7QString");
    __tsan_write1(enteredGroup(this));
    begin(this, prefix);
}

void QSettings::endGroup()
{
    static auto* const end = original<void(QSettings*)>("_ZN9QSettings8endGroupEv");
    __tsan_write1(enteredGroup(this));
    end(this);
}

void QSettings::sync()
{
    static auto* const syncSettings = original<void(QSettings*)>("_ZN9QSettings4syncEv");
    __tsan_write1(pendingNote(this));
    __tsan_write1(statusOf(this));
    syncSettings(this);
}

void QSettings::setValue(const QString& key, const QVariant& value)
{
    static auto* const set = original<void(QSettings*, const QString&, const QVariant&)>(
        "_ZN9QSettings8setValueERK7QStringRK8QVariant");
    annotateWrite(this);
    set(this, key, value);
}

void QSettings::remove(const QString& key)
{
    static auto* const removeKey =
        original<void(QSettings*, const QString&)>("_ZN9QSettings6removeERK7QString");
    annotateWrite(this);
    removeKey(this, key);
}

bool QSettings::contains(const QString& key) const
{
    static auto* const containsKey =
        original<bool(const QSettings*, const QString&)>("_ZNK9QSettings8containsERK7QString");
    annotateRead(this);
    return containsKey(this, key);
}

QVariant QSettings::value(const QString& key, const QVariant& defaultValue) const
{
    static auto* const readValue =
        original<QVariant(const QSettings*, const QString&, const QVariant&)>(
            "_ZNK9QSettings5valueERK7QStringRK8QVariant");
    annotateRead(this);
    return readValue(this, key, defaultValue);
}

QStringList QSettings::childKeys() const
{
    static auto* const listKeys =
        original<QStringList(const QSettings*)>("_ZNK9QSettings9childKeysEv");
    annotateRead(this);
    return listKeys(this);
}

QStringList QSettings::childGroups() const
{
    static auto* const listGroups =
        original<QStringList(const QSettings*)>("_ZNK9QSettings11childGroupsEv");
    annotateRead(this);
    return listGroups(this);
}
