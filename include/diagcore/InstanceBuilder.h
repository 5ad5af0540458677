// InstanceBuilder: turns texts into typed CMPI objects through the broker.
//
// The builder never infers a CIM type from a text: it creates an instance of
// the class and asks it for each property's declared type, and that type
// alone decides how the text is read (see convert). Every object path it
// creates carries the fixed host name cimHostName. Objects it creates are
// left to the broker's clean-up of the current call.
#ifndef DIAGCORE_INSTANCEBUILDER_H_
#define DIAGCORE_INSTANCEBUILDER_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>
#include <vector>

#include "diagcore/Export.h"
#include "diagcore/InstanceImpl.h"

namespace NQENDRA20 {

class DIAGCORE_EXPORT InstanceBuilder {
 public:
  // A builder whose bag and path builds create paths in `nameSpace`.
  explicit InstanceBuilder(std::string nameSpace);
  virtual ~InstanceBuilder();

  // Writes the namespace and a line end to standard output.
  void printNS() const;

  // A new instance of `className` in the builder's namespace with every
  // property of `bag` that the class declares, typed by the declaration;
  // array texts are split at ",". Null when the class cannot be made.
  CMPIInstance* build(const CMPIBroker* broker, const CMPIContext* context, std::string className,
                      InstanceImpl& bag) const;

  // A new instance built from an object path text: its class and its keys as
  // properties, in the builder's namespace (any namespace in the text is
  // ignored). Null when the class cannot be made.
  CMPIInstance* build(const CMPIBroker* broker, const CMPIContext* context,
                      std::string& pathText) const;

  // A new instance of `className` in `nameSpace` with the properties of a
  // definition text "name1=value1;name2=value2". Null when the class cannot
  // be made.
  CMPIInstance* build(const CMPIBroker* broker, const CMPIContext* context,
                      const std::string& className, std::string& nameSpace,
                      std::string& definitions) const;

  // The value of `text` read as the CMPI type `type`: numbers by formatted
  // stream extraction, booleans only from "1"/"0", 8-bit types as the code
  // of one character, strings whole, date-times by the broker (empty: now),
  // references as the path of an instance built from the text. A reference
  // met while 4 references are being built on this thread already (a text
  // that names itself again) is left null, with a warning trace. Other types
  // are reported on standard output and give a zeroed value.
  CMPIValue convert(const CMPIBroker* broker, const CMPIContext* context, unsigned short& type,
                    std::string& text) const;

 private:
  std::string nameSpace_;
  std::string reserved_;
};

// The scratch bag into which object path texts are parsed.
class DIAGCORE_EXPORT ParseInstanceImpl : public InstanceImpl {
 public:
  void init() override;
};

// The pieces of `text` between occurrences of `delimiter`, empty pieces
// dropped, nothing trimmed.
DIAGCORE_EXPORT std::vector<std::string> multiStringTok(std::string& text, char delimiter);

}  // namespace NQENDRA20

#endif  // DIAGCORE_INSTANCEBUILDER_H_
