#include "FuzzHost.h"

namespace diagcore_fuzz {
namespace {

// Every CIM type the builder reads, scalar and array, and one it does not
// (char16); string, numeric and reference keys; an association that refers
// to its own class, so that reference texts can nest.
const char* const kFuzzMof = R"MOF(
Qualifier Key : boolean = false, Scope(property, reference),
    Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association),
    Flavor(DisableOverride, ToSubclass);
Qualifier In : boolean = true, Scope(parameter), Flavor(DisableOverride, ToSubclass);

class FZ_Element {
    [Key] string CreationClassName;
    [Key] string DeviceID;
    string Caption;
    uint32 EnumOrder;
};

class FZ_AllTypes {
    [Key] string InstanceID;
    boolean Flag;
    uint8 U8;
    sint8 S8;
    uint16 U16;
    sint16 S16;
    uint32 U32;
    sint32 S32;
    uint64 U64;
    sint64 S64;
    real32 R32;
    real64 R64;
    string Text;
    datetime When;
    char16 Letter;
    boolean Flags[];
    uint8 U8s[];
    sint16 S16s[];
    uint32 U32s[];
    sint64 S64s[];
    real32 R32s[];
    real64 R64s[];
    string Texts[];
    datetime Whens[];
    uint32 Ping([In] string Text);
};

class FZ_Keys {
    [Key] boolean B;
    [Key] sint8 S8;
    [Key] uint64 U64;
    [Key] real64 R64;
    [Key] datetime When;
    [Key] char16 Letter;
};

[Association]
class FZ_Link {
    [Key] FZ_Element REF Antecedent;
    [Key] FZ_Element REF Dependent;
    string Note;
};

[Association]
class FZ_Chain {
    [Key] uint32 Id;
    [Key] FZ_Chain REF Next;
};
)MOF";

}  // namespace

cmpihost::Host& SharedHost() {
  static cmpihost::Host& host = []() -> cmpihost::Host& {
    static cmpihost::Host made;
    made.loadMofText(kFuzzMof, "fuzz-classes.mof");
    return made;
  }();
  return host;
}

std::string Chars(const CMPIString* text) {
  if (text == nullptr) {
    return "";
  }
  const char* chars = text->ft->getCharPtr(text, nullptr);
  return chars == nullptr ? std::string() : std::string(chars);
}

}  // namespace diagcore_fuzz
