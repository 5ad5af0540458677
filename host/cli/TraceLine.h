// How --trace prints a provider's log record: "[4 diagcore] text" for a
// logMessage (severity, message id), "[trace 2 component] text" for a trace
// call (level, component).
#ifndef CMPIHOST_CLI_TRACELINE_H_
#define CMPIHOST_CLI_TRACELINE_H_

#include <string>

#include "cli/Options.h"
#include "cmpihost/LogRecord.h"

namespace cmpihost::cli {

// The record as one line, without the newline.
std::string TraceLine(const LogRecord& record);

// The record's severity on --trace's one scale: logMessage severities 1
// error, 2 info, 3 warning, 4 debug; trace levels 1 info, 2 warning,
// 3 verbose (debug). A value outside them counts as debug, so that it is
// filtered out rather than shown as more than it says.
TraceLevel LevelOf(const LogRecord& record);

}  // namespace cmpihost::cli

#endif  // CMPIHOST_CLI_TRACELINE_H_
