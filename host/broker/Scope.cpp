#include "broker/Scope.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace cmpihost {
namespace {

thread_local std::vector<Scope*> tScopes;

}  // namespace

Scope::Scope() {
  tScopes.push_back(this);
}

Scope::~Scope() {
  // Usually the top of the stack; a scope closed out of order (a provider
  // that released a mark late) is taken out wherever it sits.
  auto found = std::find(tScopes.rbegin(), tScopes.rend(), this);
  if (found != tScopes.rend()) {
    tScopes.erase(std::next(found).base());
  }
  std::lock_guard<std::mutex> lock(mutex_);
  while (head_ != nullptr) {
    HostObject* object = head_;
    head_ = object->next_;
    object->scope_ = nullptr;
    delete object;
  }
  for (const auto& block : blocks_) {
    std::free(block.first);
  }
}

Scope* Scope::Current() {
  return tScopes.empty() ? nullptr : tScopes.back();
}

void Scope::adopt(HostObject* object) {
  std::lock_guard<std::mutex> lock(mutex_);
  object->scope_ = this;
  object->prev_ = nullptr;
  object->next_ = head_;
  if (head_ != nullptr) {
    head_->prev_ = object;
  }
  head_ = object;
  ++live_;
}

void Scope::forget(HostObject* object) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (object->prev_ != nullptr) {
    object->prev_->next_ = object->next_;
  } else {
    head_ = object->next_;
  }
  if (object->next_ != nullptr) {
    object->next_->prev_ = object->prev_;
  }
  object->scope_ = nullptr;
  --live_;
}

std::size_t Scope::liveObjects() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return live_;
}

std::size_t Scope::liveBlocks() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return blocks_.size();
}

void* Scope::allocate(std::size_t size, bool zeroed) {
  // malloc(0) may answer null; a provider asking for 0 bytes still gets a block.
  void* block = zeroed ? std::calloc(1, std::max<std::size_t>(size, 1))
                       : std::malloc(std::max<std::size_t>(size, 1));
  if (block == nullptr) {
    return nullptr;
  }
  std::lock_guard<std::mutex> lock(mutex_);
  blocks_.emplace(block, size);
  return block;
}

void* Scope::reallocate(void* block, std::size_t size) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto found = blocks_.find(block);
  if (found == blocks_.end()) {
    return nullptr;
  }
  void* grown = std::realloc(block, std::max<std::size_t>(size, 1));
  if (grown == nullptr) {
    return nullptr;
  }
  blocks_.erase(found);
  blocks_.emplace(grown, size);
  return grown;
}

bool Scope::free(void* block) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto found = blocks_.find(block);
  if (found == blocks_.end()) {
    return false;
  }
  blocks_.erase(found);
  std::free(block);
  return true;
}

Scope* Scope::OwnerOfBlock(void* block) {
  for (auto scope = tScopes.rbegin(); scope != tScopes.rend(); ++scope) {
    std::lock_guard<std::mutex> lock((*scope)->mutex_);
    if ((*scope)->blocks_.count(block) != 0) {
      return *scope;
    }
  }
  return nullptr;
}

void ReleaseObject(HostObject* object) {
  if (object == nullptr) {
    return;
  }
  if (Scope* scope = object->scope()) {
    scope->forget(object);
  }
  delete object;
}

}  // namespace cmpihost
