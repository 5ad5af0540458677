// The front door is cmpihost/Host.h; this header is internal.
// Call-scoped ownership of the broker's objects. Every object the broker
// creates while a scope is open on the thread belongs to the innermost scope
// and dies with it, so that a provider keeping a call's object past the call
// touches freed memory (which ASan reports) instead of silently working.
#ifndef CMPIHOST_BROKER_SCOPE_H_
#define CMPIHOST_BROKER_SCOPE_H_

#include <cstddef>
#include <mutex>
#include <unordered_map>

namespace cmpihost {

class Scope;

// Base of every CMPI object the host hands out. An object is owned either by
// a scope or, after clone(), by whoever asked for the clone.
class HostObject {
 public:
  HostObject() = default;
  virtual ~HostObject() = default;
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  Scope* scope() const { return scope_; }

 private:
  friend class Scope;
  Scope* scope_ = nullptr;
  HostObject* prev_ = nullptr;
  HostObject* next_ = nullptr;
};

// One level of the thread's scope stack. Opening pushes it, destruction pops
// it and frees everything it still owns (objects and cmpiMalloc blocks).
class Scope {
 public:
  Scope();
  ~Scope();
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

  // The innermost scope open on the calling thread, or null.
  static Scope* Current();

  // Takes ownership of a fresh object.
  void adopt(HostObject* object);
  // Objects and memory blocks owned and not yet freed.
  std::size_t liveObjects() const;
  std::size_t liveBlocks() const;

  // Memory for cmpiMalloc and friends; null on exhaustion.
  void* allocate(std::size_t size, bool zeroed);
  void* reallocate(void* block, std::size_t size);
  // Frees a block this scope owns; false when it does not own it.
  bool free(void* block);
  // The open scope (innermost first) that owns `block`, or null.
  static Scope* OwnerOfBlock(void* block);

 private:
  friend void ReleaseObject(HostObject* object);
  void forget(HostObject* object);

  mutable std::mutex mutex_;  // release may come from another thread
  HostObject* head_ = nullptr;
  std::size_t live_ = 0;
  std::unordered_map<void*, std::size_t> blocks_;
};

// Frees an object now: detaches it from its scope, if any, and deletes it.
void ReleaseObject(HostObject* object);

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_SCOPE_H_
