// SPDX-License-Identifier: ISC
#include "tests/support/call_guard.h"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>

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
void free(void* block) {
    note_call();
    __libc_free(block);
}

#define GUARDED(name, Argument)                                \
    int name(Argument* argument) {                             \
        static auto* const real = next<int(Argument*)>(#name); \
        note_call();                                           \
        return real(argument);                                 \
    }
GUARDED(pthread_mutex_lock, pthread_mutex_t)
GUARDED(pthread_mutex_trylock, pthread_mutex_t)
GUARDED(pthread_rwlock_rdlock, pthread_rwlock_t)
GUARDED(pthread_rwlock_wrlock, pthread_rwlock_t)
GUARDED(sem_wait, sem_t)
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
