// One logMessage (or trace) call a provider made while capture was on.
#ifndef CMPIHOST_LOGRECORD_H_
#define CMPIHOST_LOGRECORD_H_

#include <string>

#include "cmpihost/Export.h"

namespace cmpihost {

struct CMPIHOST_EXPORT LogRecord {
  enum class Kind { kLog, kTrace };
  Kind kind = Kind::kLog;
  int severity = 0;  // logMessage severity, or trace level
  std::string id;    // message id (logMessage) or component (trace)
  std::string text;  // the text, or the CMPIString's text when the text argument was null
};

}  // namespace cmpihost

#endif  // CMPIHOST_LOGRECORD_H_
