// The two ways an entry point hands one registered instance to a CIMOM's
// result: whole, or as its object path. Interchangeable, so that the
// associator entry points can take either. Internal to the library.
#ifndef DIAGCORE_PROVIDER_RESULTDELIVERY_H_
#define DIAGCORE_PROVIDER_RESULTDELIVERY_H_

#include <cmpidt.h>
#include <cmpift.h>

namespace NQENDRA20 {

// returnInstance of `inst`; the status is discarded.
__attribute__((visibility("hidden"))) void ReturnInstance(const CMPIResult* rslt,
                                                          CMPIInstance* inst);

// returnObjectPath of `inst`'s object path; the status is discarded.
__attribute__((visibility("hidden"))) void ReturnObjectPath(const CMPIResult* rslt,
                                                            CMPIInstance* inst);

}  // namespace NQENDRA20

#endif  // DIAGCORE_PROVIDER_RESULTDELIVERY_H_
