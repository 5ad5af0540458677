// The embedded host that the fuzz targets run library code in.
#ifndef DIAGCORE_FUZZ_FUZZHOST_H_
#define DIAGCORE_FUZZ_FUZZHOST_H_

#include <cmpidt.h>
#include <cmpift.h>

#include <string>

#include "FuzzCheck.h"
#include "cmpihost/Host.h"

namespace diagcore_fuzz {

// A host with the classes of FuzzHost.cpp loaded into root/cimv2, made on
// first use and kept for the whole run. Log capture stays off, so the
// library's traces are dropped at once and the host does not grow.
cmpihost::Host& SharedHost();

// The characters of a broker string, "" for null.
std::string Chars(const CMPIString* text);

}  // namespace diagcore_fuzz

#endif  // DIAGCORE_FUZZ_FUZZHOST_H_
