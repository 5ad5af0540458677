// What one host request produced: the status the provider returned and, in
// order, every call it made on its CMPIResult.
#ifndef CMPIHOST_REPLY_H_
#define CMPIHOST_REPLY_H_

#include <cmpidt.h>

#include <string>
#include <vector>

#include "cmpihost/Export.h"
#include "cmpihost/InstanceSnapshot.h"
#include "cmpihost/Value.h"

namespace cmpihost {

struct CMPIHOST_EXPORT Status {
  CMPIrc rc = CMPI_RC_OK;
  bool hasMessage = false;  // false when the provider's msg was null
  std::string message;
};

struct CMPIHOST_EXPORT ResultEvent {
  enum class Kind { kInstance, kObjectPath, kData, kDone, kError };
  Kind kind = Kind::kDone;
  InstanceSnapshot instance;  // kInstance
  std::string path;           // kObjectPath: toString text of the path
  Value data;                 // kData
  std::string error;          // kError: the CMPIError's message
};

struct CMPIHOST_EXPORT Reply {
  // The first failing provider call's status, or OK. A request that no
  // provider serves has CMPI_RC_ERR_NOT_SUPPORTED (or NOT_FOUND for a get).
  Status status;
  // Every result call of every provider call, in order.
  std::vector<ResultEvent> events;
  // How many provider MI calls served the request.
  unsigned providerCalls = 0;

  std::vector<InstanceSnapshot> instances() const;
  std::vector<std::string> paths() const;
  std::vector<Value> data() const;
  unsigned doneCount() const;
};

}  // namespace cmpihost

#endif  // CMPIHOST_REPLY_H_
