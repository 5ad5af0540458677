// How --trace prints a provider's log record: "[4 diagcore] text" for a
// logMessage (severity, message id), "[trace 2 component] text" for a trace
// call (level, component).
#ifndef CMPIHOST_CLI_TRACELINE_H_
#define CMPIHOST_CLI_TRACELINE_H_

#include <string>

#include "cmpihost/LogRecord.h"

namespace cmpihost::cli {

// The record as one line, without the newline.
std::string TraceLine(const LogRecord& record);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_TRACELINE_H_
