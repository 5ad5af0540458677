// The front door is cmpihost/Host.h; this header is internal.
// What libdiagcore's instance builder drops without a word, said in the
// host's log. The builder makes an instance with newInstance, asks it for
// the type of each bag property, traces "Setting property NAME to 'TEXT'"
// before it converts a scalar, sets it, and traces "Exiting
// InstanceBuilder::build"; a probe for a name the class lacks means the
// property is dropped, and a traced text that does not read as the declared
// type means it was set to 0, false or null. Arrays are not traced, so only
// scalars are checked for their text.
//
// Each line is said once per host, until its log is cleared.
//
// Only the instance the builder is working on counts: the newest one made on
// the thread that no "Exiting" trace has closed yet. Probes of instances
// that were built already (a registry sorting by EnumOrder, an association
// provider asking for a role the client named) are the provider's business.
#ifndef CMPIHOST_BROKER_BUILDWATCH_H_
#define CMPIHOST_BROKER_BUILDWATCH_H_

#include <cmpidt.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace cmpihost {

class LogBook;
struct InstanceObject;

// newInstance on this thread for a host logging into `log` made an instance
// (or failed, `made` false: the builder still traces "Exiting"); the serial
// to keep in the instance.
std::uint64_t WatchNewInstance(LogBook& log, bool made);
// A logMessage that reached the log: the builder's traces move the watch.
void WatchLogMessage(int severity, const std::string& id, const std::string& text);
// getProperty found `name` undeclared by the instance's class.
void WatchUndeclaredProbe(const InstanceObject& instance, std::string_view name);
// setProperty of a declared property, with the type the caller gave.
void WatchSet(const InstanceObject& instance, std::string_view name, CMPIType type);

}  // namespace cmpihost

#endif  // CMPIHOST_BROKER_BUILDWATCH_H_
