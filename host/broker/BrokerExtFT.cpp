// The broker's operating-system services, on POSIX threads. Handles are heap
// objects owned by the provider that asked for them.
#include <pthread.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

#include "broker/Broker.h"
#include "broker/FtBinding.h"

namespace cmpihost {
namespace {

// "lib<name>.so", malloc'ed: the caller frees it, as with CIMOMs.
char* ResolveFileName(const char* name) {
  if (name == nullptr) {
    return nullptr;
  }
  const std::size_t size = std::strlen(name) + 7;
  char* file = static_cast<char*>(std::malloc(size));
  if (file != nullptr) {
    std::snprintf(file, size, "lib%s.so", name);
  }
  return file;
}

struct ThreadStart {
  void* (*start)(void*);
  void* argument;
};

void* RunThread(void* raw) {
  const ThreadStart start = *static_cast<ThreadStart*>(raw);
  delete static_cast<ThreadStart*>(raw);
  return start.start(start.argument);
}

void* NewThread(void* (*start)(void*), void* argument, int detached) {
  if (start == nullptr) {
    return nullptr;
  }
  auto* thread = new (std::nothrow) pthread_t;
  auto* startData = new (std::nothrow) ThreadStart{start, argument};
  if (thread == nullptr || startData == nullptr) {
    delete thread;
    delete startData;
    return nullptr;
  }
  if (pthread_create(thread, nullptr, RunThread, startData) != 0) {
    delete thread;
    delete startData;
    return nullptr;
  }
  if (detached != 0) {
    pthread_detach(*thread);
  }
  // The handle stays valid (for joinThread) until joined; a detached
  // thread's handle is the caller's to ignore.
  return thread;
}

int JoinThread(void* thread, void** result) {
  if (thread == nullptr) {
    return EINVAL;
  }
  auto* handle = static_cast<pthread_t*>(thread);
  const int rc = pthread_join(*handle, result);
  delete handle;
  return rc;
}

// Not behind a thunk: pthread_exit unwinds the thread, which no catch-all
// or noexcept frame may stop.
int ExitThread(void* result) {
  pthread_exit(result);
}

int CancelThread(void* thread) {
  return thread == nullptr ? EINVAL : pthread_cancel(*static_cast<pthread_t*>(thread));
}

int ThreadSleep(CMPIUint32 milliseconds) {
  timespec delay{};
  delay.tv_sec = static_cast<time_t>(milliseconds / 1000);
  delay.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000L;
  while (nanosleep(&delay, &delay) != 0 && errno == EINTR) {
  }
  return 0;
}

// `once` starts at 0; 1 while the function runs, 2 once it has run.
int ThreadOnce(int* once, void (*function)()) {  // NOLINT(readability-non-const-parameter)
  if (once == nullptr || function == nullptr) {
    return EINVAL;
  }
  int expected = 0;
  if (__atomic_compare_exchange_n(once, &expected, 1, false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE)) {
    function();
    __atomic_store_n(once, 2, __ATOMIC_RELEASE);
    return 0;
  }
  while (__atomic_load_n(once, __ATOMIC_ACQUIRE) != 2) {
    sched_yield();
  }
  return 0;
}

// Header sets disagree on the key's width (unsigned long or pthread_key_t);
// the slot's own type decides, and a pthread key fits either.
template <typename Slot>
struct CreateKey;
template <typename Key, typename Destructor>
struct CreateKey<int (*)(Key*, Destructor)> {
  static int Call(Key* key, Destructor destructor) noexcept {
    if (key == nullptr) {
      return EINVAL;
    }
    pthread_key_t created;
    const int rc = pthread_key_create(&created, destructor);
    if (rc == 0) {
      *key = static_cast<Key>(created);
    }
    return rc;
  }
};

template <typename Slot>
struct DestroyKey;
template <typename Key>
struct DestroyKey<int (*)(Key)> {
  static int Call(Key key) noexcept { return pthread_key_delete(static_cast<pthread_key_t>(key)); }
};

template <typename Slot>
struct GetSpecific;
template <typename Key>
struct GetSpecific<void* (*)(Key)> {
  static void* Call(Key key) noexcept {
    return pthread_getspecific(static_cast<pthread_key_t>(key));
  }
};

template <typename Slot>
struct SetSpecific;
template <typename Key>
struct SetSpecific<int (*)(Key, void*)> {
  static int Call(Key key, void* value) noexcept {
    return pthread_setspecific(static_cast<pthread_key_t>(key), value);
  }
};

void* NewMutex(int) {
  auto* mutex = new (std::nothrow) pthread_mutex_t;
  if (mutex == nullptr) {
    return nullptr;
  }
  // Recursive: providers written for CIMOMs that lock re-entrantly keep working.
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
  return mutex;
}

void DestroyMutex(void* mutex) {
  if (mutex != nullptr) {
    pthread_mutex_destroy(static_cast<pthread_mutex_t*>(mutex));
    delete static_cast<pthread_mutex_t*>(mutex);
  }
}

void LockMutex(void* mutex) {
  if (mutex != nullptr) {
    pthread_mutex_lock(static_cast<pthread_mutex_t*>(mutex));
  }
}

void UnlockMutex(void* mutex) {
  if (mutex != nullptr) {
    pthread_mutex_unlock(static_cast<pthread_mutex_t*>(mutex));
  }
}

void* NewCondition(int) {
  auto* condition = new (std::nothrow) pthread_cond_t;
  if (condition != nullptr) {
    pthread_cond_init(condition, nullptr);
  }
  return condition;
}

void DestroyCondition(void* condition) {
  if (condition != nullptr) {
    pthread_cond_destroy(static_cast<pthread_cond_t*>(condition));
    delete static_cast<pthread_cond_t*>(condition);
  }
}

int ConditionWait(void* condition, void* mutex) {
  if (condition == nullptr || mutex == nullptr) {
    return EINVAL;
  }
  return pthread_cond_wait(static_cast<pthread_cond_t*>(condition),
                           static_cast<pthread_mutex_t*>(mutex));
}

int TimedConditionWait(void* condition, void* mutex, struct timespec* until) {
  if (condition == nullptr || mutex == nullptr || until == nullptr) {
    return EINVAL;
  }
  return pthread_cond_timedwait(static_cast<pthread_cond_t*>(condition),
                                static_cast<pthread_mutex_t*>(mutex), until);
}

int SignalCondition(void* condition) {
  return condition == nullptr ? EINVAL
                              : pthread_cond_signal(static_cast<pthread_cond_t*>(condition));
}

}  // namespace

const CMPIBrokerExtFT kBrokerExtFT = {
    CMPIVersion200,
    CMPIHOST_SLOT(CMPIBrokerExtFT, resolveFileName, ResolveFileName),
    CMPIHOST_SLOT(CMPIBrokerExtFT, newThread, NewThread),
    CMPIHOST_SLOT(CMPIBrokerExtFT, joinThread, JoinThread),
    &ExitThread,
    CMPIHOST_SLOT(CMPIBrokerExtFT, cancelThread, CancelThread),
    CMPIHOST_SLOT(CMPIBrokerExtFT, threadSleep, ThreadSleep),
    CMPIHOST_SLOT(CMPIBrokerExtFT, threadOnce, ThreadOnce),
    &CreateKey<decltype(CMPIBrokerExtFT::createThreadKey)>::Call,
    &DestroyKey<decltype(CMPIBrokerExtFT::destroyThreadKey)>::Call,
    &GetSpecific<decltype(CMPIBrokerExtFT::getThreadSpecific)>::Call,
    &SetSpecific<decltype(CMPIBrokerExtFT::setThreadSpecific)>::Call,
    CMPIHOST_SLOT(CMPIBrokerExtFT, newMutex, NewMutex),
    CMPIHOST_SLOT(CMPIBrokerExtFT, destroyMutex, DestroyMutex),
    CMPIHOST_SLOT(CMPIBrokerExtFT, lockMutex, LockMutex),
    CMPIHOST_SLOT(CMPIBrokerExtFT, unlockMutex, UnlockMutex),
    CMPIHOST_SLOT(CMPIBrokerExtFT, newCondition, NewCondition),
    CMPIHOST_SLOT(CMPIBrokerExtFT, destroyCondition, DestroyCondition),
    CMPIHOST_SLOT(CMPIBrokerExtFT, condWait, ConditionWait),
    CMPIHOST_SLOT(CMPIBrokerExtFT, timedCondWait, TimedConditionWait),
    CMPIHOST_SLOT(CMPIBrokerExtFT, signalCondition, SignalCondition),
};

}  // namespace cmpihost
