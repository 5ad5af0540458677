// CMPIUtil: conversions between CMPI objects and the library's texts.
//
// The object path text is the one form in which the library stores, compares
// and looks up object paths: the class name, then "." and the keys as
// name="value" joined by ",", as the broker prints a path, with host and
// namespace removed and backslash escapes resolved. It is compared byte by
// byte. Every broker object obtained here is left to the broker's clean-up
// at the end of the current call.
#ifndef DIAGCORE_CMPIUTIL_H_
#define DIAGCORE_CMPIUTIL_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT CMPIUtil {
 public:
  // The class name of `op`.
  static std::string GetClassName(const CMPIObjectPath* op);

  // The object path text of `op` (see above).
  static std::string GetObjectPathString(const CMPIObjectPath* op);

  // `text` without a leading "//host/namespace:" part. A text whose first
  // of ".", "/" and ":" is "." starts with its class and is kept whole.
  static std::string StripObjectPath(std::string text);

  // Sets `bag`'s class name from the object path text `text` and writes each
  // quoted key value into the bag under its key name. Stops where a value
  // lacks its quotes, keeping what was read before. Throws std::out_of_range
  // when a key starts past the end of the text (e.g. after a trailing ",").
  static void ParseObjectPath(std::string& text, InstanceImpl& bag);

  // The "Name" of the first TORSK_ComputerSystem instance the broker
  // enumerates in root/cimv2, or "" when there is none.
  static std::string GetSystemName(const CMPIBroker* broker, const CMPIContext* context);

  // The broker's current time as CIM date-time text.
  static std::string GetDateTimeString(const CMPIBroker* broker);
};

}  // namespace NQENDRA20

#endif  // DIAGCORE_CMPIUTIL_H_
