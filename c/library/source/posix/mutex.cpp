#include "platform/mutex.h"

#include <pthread.h>

#include <new>

static_assert(sizeof(pthread_mutex_t) <= sizeof(OsMutex));

static pthread_mutex_t* mutexOf(OsMutex* mutex) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(mutex->storage));
}

bool osMutexInit(OsMutex* mutex) {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) return false;
    auto* section = new (mutex->storage) pthread_mutex_t;
    const bool made = pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      pthread_mutex_init(section, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return made;
}

void osMutexLock(OsMutex* mutex) {
    pthread_mutex_lock(mutexOf(mutex));
}

void osMutexUnlock(OsMutex* mutex) {
    pthread_mutex_unlock(mutexOf(mutex));
}

void osMutexTerm(OsMutex* mutex) {
    pthread_mutex_destroy(mutexOf(mutex));
}
