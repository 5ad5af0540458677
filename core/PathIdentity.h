// What makes two object paths name the same object: the class and the keys
// as an unordered set, key names in any letter case. Internal to the library;
// see diagcore/InstanceRegistry.h.
#ifndef DIAGCORE_CORE_PATHIDENTITY_H_
#define DIAGCORE_CORE_PATHIDENTITY_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

namespace NQENDRA20 {

// A text equal for two paths exactly when they have the same keys with the
// same values, whatever the order of the keys and the letter case of their
// names. Key values keep their case; host, namespace and the class are left
// out (callers file by class already). Values compare by their text, so a
// number sent as a string by a client still meets the number. A reference
// key's value is the identity of the path it holds, with its class.
std::string KeyIdentity(const CMPIObjectPath* path);

// The class name in upper case, then the key identity: equal for two paths
// that name the same object of the same class.
std::string ObjectIdentity(const CMPIObjectPath* path);

}  // namespace NQENDRA20

#endif  // DIAGCORE_CORE_PATHIDENTITY_H_
