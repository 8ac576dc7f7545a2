// SPDX-License-Identifier: ISC
#include "tests/support/call_guard.h"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>

#include <cerrno>
#include <cstddef>

namespace {

bool guarded = false;
int forbidden_calls = 0;

}  // namespace

#ifndef BRINDLE_SANITIZED
namespace {

void note_call() {
    if (guarded) ++forbidden_calls;
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

void* malloc(size_t size) {
    note_call();
    return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
    note_call();
    return __libc_calloc(count, size);
}
void* realloc(void* block, size_t size) {
    note_call();
    return __libc_realloc(block, size);
}
void* aligned_alloc(size_t alignment, size_t size) {
    note_call();
    return __libc_memalign(alignment, size);
}
void* memalign(size_t alignment, size_t size) {
    note_call();
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** block, size_t alignment, size_t size) {
    note_call();
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}
void free(void* block) {
    note_call();
    __libc_free(block);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static auto* const real = next<int(pthread_mutex_t*)>("pthread_mutex_lock");
    note_call();
    return real(mutex);
}
int pthread_mutex_trylock(pthread_mutex_t* mutex) {
    static auto* const real = next<int(pthread_mutex_t*)>("pthread_mutex_trylock");
    note_call();
    return real(mutex);
}
int pthread_rwlock_rdlock(pthread_rwlock_t* lock) {
    static auto* const real = next<int(pthread_rwlock_t*)>("pthread_rwlock_rdlock");
    note_call();
    return real(lock);
}
int pthread_rwlock_wrlock(pthread_rwlock_t* lock) {
    static auto* const real = next<int(pthread_rwlock_t*)>("pthread_rwlock_wrlock");
    note_call();
    return real(lock);
}
int sem_wait(sem_t* semaphore) {
    static auto* const real = next<int(sem_t*)>("sem_wait");
    note_call();
    return real(semaphore);
}
}
#endif

namespace brindle::test {

CallGuard::CallGuard() {
    forbidden_calls = 0;
    guarded = true;
}

CallGuard::~CallGuard() {
    guarded = false;
}

int CallGuard::calls() const {
    return forbidden_calls;
}

}  // namespace brindle::test
